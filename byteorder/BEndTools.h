// Byte order. EMF and WMF store every multi-byte field little-endian; the interpreters read
// them through the structures of MetafileStructs.h, so on a big-endian host each structure is
// brought into host order first, by its layout (Layouts.h). On a little-endian host every
// normaliser returns at once.
//
// Normalisers come in two forms:
//  - in place, InitX(X&): returns 1; converts the fields only on a big-endian host;
//  - copying, InitX(X* dst, const unsigned char* src): returns 0 on a little-endian host and
//    leaves dst alone (the caller copies the bytes itself); on a big-endian host copies the
//    structure from src into dst, converts it there and returns 1.
// Each named normaliser (InitX here, in EmfNormalisers.h and WmfNormalisers.h) is one of the
// templates below for its structure.
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
inline constexpr auto& InitEnhMetaHeader = byteorder::InPlace<tagENHMETAHEADER>;
inline constexpr auto& InitEMR = byteorder::InPlace<tagEMR>;
inline constexpr auto& InitEMRMETARECORD = byteorder::InPlace<tagEMR>;
inline constexpr auto& InitWindowsMetaHeader = byteorder::InPlace<_WindowsMetaHeader>;
inline constexpr auto& InitPlaceableMetaHeader = byteorder::InPlace<_PlaceableMetaHeader>;
inline constexpr auto& InitWMR = byteorder::Copy<tagWMR>;
inline constexpr auto& InitMETARECORD = byteorder::Copy<tagWMR>;

// Embedded structures shared by many records.
inline constexpr auto& InitRECT = byteorder::InPlace<tagRECT>;
inline constexpr auto& InitRECTL = byteorder::InPlace<tagRECT>;
inline constexpr auto& InitPOINT = byteorder::InPlace<tagPOINT>;
inline constexpr auto& InitPOINTL = byteorder::InPlace<tagPOINT>;
inline constexpr auto& InitPOINTS = byteorder::InPlace<tagPOINTS>;
inline constexpr auto& InitSIZEL = byteorder::InPlace<tagSIZE>;
inline constexpr auto& InitXFORM = byteorder::InPlace<tagXFORM>;
inline constexpr auto& InitRECT16 = byteorder::InPlace<tagRECT16>;

#endif
