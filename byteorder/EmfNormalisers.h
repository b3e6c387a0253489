// Byte-order normalisers of the EMF records (in place; see BEndTools.h for the contract).
#ifndef SVGMODULE_EMFNORMALISERS_H
#define SVGMODULE_EMFNORMALISERS_H

#include "MetafileStructs.h"

int InitEMRMAPMODE(tagEMRSETMAPMODE& r);
int InitEMRORIGIN(tagEMRSETVIEWPORTORGEX& r);
int InitEMREXT(tagEMRSETVIEWPORTEXTEX& r);
int InitEMRSETWORLDTRANSFORM(tagEMRSETWORLDTRANSFORM& r);
int InitEMRMODIFYWORLDTRANSFORM(tagEMRMODIFYWORLDTRANSFORM& r);

#endif
