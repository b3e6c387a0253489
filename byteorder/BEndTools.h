// Byte order. EMF and WMF store every multi-byte field little-endian; the interpreters read
// them through the structures of MetafileStructs.h, so on a big-endian host each structure is
// brought into host order first. On a little-endian host every normaliser returns at once.
//
// Normalisers come in two forms:
//  - in place, InitX(X&): returns 1; converts the fields only on a big-endian host;
//  - copying, InitX(X* dst, const unsigned char* src): returns 0 on a little-endian host and
//    leaves dst alone (the caller copies the bytes itself); on a big-endian host copies each
//    field from src into dst, converts it there and returns 1.
#ifndef SVGMODULE_BENDTOOLS_H
#define SVGMODULE_BENDTOOLS_H

#include <cstdint>
#include <cstring>

#include "MetafileStructs.h"

bool IsBigEndian();
unsigned short LE2BE_Word(unsigned short v);
unsigned int LE2BE_DWord(unsigned int v);
unsigned short Call_LE2BE_Word(unsigned short v);
unsigned int Call_LE2BE_DWord(unsigned int v);
float GetFloatFromBLOB(const unsigned char* p);

// Makes IsBigEndian answer `bigEndian` instead of probing the host (tests only: a byte-swapped
// metafile run with the override behaves as a little-endian file on a big-endian host).
void SetByteOrderOverride(bool enabled, bool bigEndian);

// Field swappers for the normalisers: each reverses the bytes of one field at its published
// width. They are called only after a positive IsBigEndian().
namespace byteorder {
inline void Swap(uint16_t& v) {
    v = LE2BE_Word(v);
}
inline void Swap(int16_t& v) {
    v = (int16_t)LE2BE_Word((uint16_t)v);
}
inline void Swap(uint32_t& v) {
    v = LE2BE_DWord(v);
}
inline void Swap(int32_t& v) {
    v = (int32_t)LE2BE_DWord((uint32_t)v);
}
inline void Swap(float& v) {
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    bits = LE2BE_DWord(bits);
    std::memcpy(&v, &bits, 4);
}
template <class... T>
inline void SwapAll(T&... fields) {
    (Swap(fields), ...);
}
// Converts a UTF-16 array unit by unit up to and including its first NUL.
void SwapWideString(WCHAR16* text, unsigned int capacity);
}  // namespace byteorder

// Header and record-prefix normalisers.
int InitEnhMetaHeader(tagENHMETAHEADER& h);
int InitEMR(tagEMR& r);
int InitEMRMETARECORD(tagEMR& r);
int InitWindowsMetaHeader(_WindowsMetaHeader& h);
int InitPlaceableMetaHeader(_PlaceableMetaHeader& h);
int InitWMR(tagWMR* dst, const unsigned char* src);
int InitMETARECORD(tagWMR* dst, const unsigned char* src);

// Embedded structures shared by many records.
int InitRECT(tagRECT& r);
int InitRECTL(tagRECT& r);
int InitPOINT(tagPOINT& p);
int InitPOINTL(tagPOINT& p);
int InitPOINTS(tagPOINTS& p);
int InitSIZEL(tagSIZE& s);
int InitXFORM(tagXFORM& x);
int InitRECT16(tagRECT16& r);

#endif
