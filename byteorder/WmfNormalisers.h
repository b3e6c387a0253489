// Byte-order normalisers of the WMF records (copying form; see BEndTools.h for the contract).
#ifndef SVGMODULE_WMFNORMALISERS_H
#define SVGMODULE_WMFNORMALISERS_H

#include "MetafileStructs.h"

int InitWMRSETVIEWPORTORGEX(tagWMRSETVIEWPORTORGEX* dst, const unsigned char* src);

#endif
