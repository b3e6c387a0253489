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
#include "byteorder/Layouts.h"

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

// The routine that converts any structure by its layout (Layouts.h).
namespace byteorder {

// The size in bytes of a layout string's fields.
size_t FieldsSize(const char* fields);
// The width in bytes of the field that starts `offset` bytes into a layout string; 0 when no
// field starts there.
unsigned FieldWidthAt(const char* fields, size_t offset);

// On a big-endian host, converts a record of `size` bytes in place: all its fixed fields, which
// must be readable (a record copy is zero-filled up to them), and, of its trailing array, the
// elements that lie inside the record, whatever count it declares. Returns 1.
int Normalise(void* record, const Layout& layout, size_t size);
// Returns 0 on a little-endian host. On a big-endian host copies `size` bytes from `src` into
// `dst`, zero-fills `dst` up to the end of the fixed fields when `size` stops short of it,
// converts the copy as Normalise does and returns 1.
int NormaliseCopy(void* dst, const unsigned char* src, size_t size, const Layout& layout);

// The forms of a structure T with layout kLayout<T>. Records with a trailing array take the
// record's size; the destination of CopyArray holds that size plus records::kRecordPadding.
template <class T>
int InPlace(T& r) {
    static_assert(kLayout<T>.fields && !kLayout<T>.element, "a fixed layout");
    return Normalise(&r, kLayout<T>, sizeof r);
}
template <class T>
int InPlaceArray(T& r, unsigned int size) {
    static_assert(kLayout<T>.element, "a layout with a trailing array");
    return Normalise(&r, kLayout<T>, size);
}
template <class T>
int Copy(T* dst, const unsigned char* src) {
    static_assert(kLayout<T>.fields && !kLayout<T>.element, "a fixed layout");
    return NormaliseCopy(dst, src, sizeof *dst, kLayout<T>);
}
template <class T>
int CopyArray(T* dst, const unsigned char* src, unsigned int size) {
    static_assert(kLayout<T>.element, "a layout with a trailing array");
    return NormaliseCopy(dst, src, size, kLayout<T>);
}

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
