#define TRACE_FILE "BEndTools"
#include "byteorder/WmfNormalisers.h"

#include <cstring>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "byteorder/RecordReader.h"

namespace {
// Reads a little-endian 16-bit field at `offset` of the record bytes.
int16_t Read16(const unsigned char* src, size_t offset) {
    uint16_t v;
    std::memcpy(&v, src + offset, 2);
    return (int16_t)LE2BE_Word(v);
}

uint16_t ReadU16(const unsigned char* src, size_t offset) {
    return (uint16_t)Read16(src, offset);
}

// Reads a little-endian 32-bit field at `offset` of the record bytes.
uint32_t ReadU32(const unsigned char* src, size_t offset) {
    uint32_t v;
    std::memcpy(&v, src + offset, 4);
    return LE2BE_DWord(v);
}

// Reads a 16-bit field of a record of `size` bytes when it lies inside; 0 otherwise.
uint16_t ReadU16Inside(const unsigned char* src, size_t offset, unsigned int size) {
    return records::Fits(offset, 2, size) ? ReadU16(src, offset) : 0;
}

// Reads a 16-bit field of host-order record bytes when it lies inside; 0 otherwise.
uint16_t HostU16(const unsigned char* record, size_t offset, unsigned int size) {
    uint16_t v = 0;
    if (records::Fits(offset, 2, size)) std::memcpy(&v, record + offset, 2);
    return v;
}

// Converts the record prefix of an array record when the record holds one.
void ConvertPrefix(void* dst, const unsigned char* src, unsigned int size) {
    if (records::Fits(0, sizeof(tagWMR), size)) InitWMR(static_cast<tagWMR*>(dst), src);
}

// Converts `count` points from `src` into `dst`, both starting at `offset`.
void ConvertPoints(unsigned char* dst, const unsigned char* src, size_t offset, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        const size_t at = offset + (size_t)i * sizeof(tagPOINTS);
        InitWMRPOINTS(reinterpret_cast<tagPOINTS*>(dst + at), src + at);
    }
}

// The record prefix at the start of a copying normaliser's destination.
tagWMR* Prefix(void* dst) {
    return static_cast<tagWMR*>(dst);
}
}  // namespace

uint32_t WmfPolyLinePoints(const tagWMRPOLYLINE& record, unsigned int size) {
    return records::FitCount(record.NumberOfPoints, kWmfPolyLinePointsOffset, sizeof(tagPOINTS),
                             size);
}

WmfPolyPolygonLayout GetWmfPolyPolygonLayout(const unsigned char* record, unsigned int size) {
    WmfPolyPolygonLayout layout;
    const uint16_t polygons = HostU16(record, offsetof(tagWMRPOLYPOLYLINE, NumberOfPolygons), size);
    layout.counts =
        records::FitCount(polygons, kWmfPolyPolygonCountsOffset, sizeof(uint16_t), size);
    uint64_t declared = 0;
    for (uint32_t i = 0; i < layout.counts; ++i)
        declared +=
            HostU16(record, kWmfPolyPolygonCountsOffset + (size_t)i * sizeof(uint16_t), size);
    layout.pointsOffset = kWmfPolyPolygonCountsOffset + (size_t)polygons * sizeof(uint16_t);
    layout.points = records::FitCount(declared, layout.pointsOffset, sizeof(tagPOINTS), size);
    return layout;
}

int InitWMRPOINTS(tagPOINTS* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    dst->x = Read16(src, 0);
    dst->y = Read16(src, 2);
    TRACE_RETURN(1);
}

int InitLOGPEN16(tagLOGPEN16* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    dst->lopnStyle = ReadU16(src, offsetof(tagLOGPEN16, lopnStyle));
    tagPOINTS width;
    InitWMRPOINTS(&width, src + offsetof(tagLOGPEN16, lopnWidth));
    dst->lopnWidth = width;
    dst->lopnColor = ReadU32(src, offsetof(tagLOGPEN16, lopnColor));
    TRACE_RETURN(1);
}

int InitLOGBRUSH16(tagLOGBRUSH16* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    dst->lbStyle = ReadU16(src, offsetof(tagLOGBRUSH16, lbStyle));
    dst->lbColor = ReadU32(src, offsetof(tagLOGBRUSH16, lbColor));
    dst->lbHatch = ReadU16(src, offsetof(tagLOGBRUSH16, lbHatch));
    TRACE_RETURN(1);
}

int InitFONTSPEC(FONTSPEC* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    // The byte fields and the face name keep their bytes.
    std::memcpy(dst, src, sizeof *dst);
    dst->Height = Read16(src, offsetof(FONTSPEC, Height));
    dst->Width = Read16(src, offsetof(FONTSPEC, Width));
    dst->Escapement = Read16(src, offsetof(FONTSPEC, Escapement));
    dst->Orientation = Read16(src, offsetof(FONTSPEC, Orientation));
    dst->Weight = Read16(src, offsetof(FONTSPEC, Weight));
    TRACE_RETURN(1);
}

int InitWMRSETVIEWPORTORGEX(tagWMRSETVIEWPORTORGEX* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(&dst->wmr, src);
    dst->y = Read16(src, 6);
    dst->x = Read16(src, 8);
    TRACE_RETURN(1);
}

int InitWMRCREATEPEN(tagWMRCREATEPEN* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    tagLOGPEN16 pen;
    InitLOGPEN16(&pen, src + offsetof(tagWMRCREATEPEN, pen));
    dst->pen = pen;
    TRACE_RETURN(1);
}

int InitWMRCREATEBRUSHINDIRECT(tagWMRCREATEBRUSHINDIRECT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    tagLOGBRUSH16 brush;
    InitLOGBRUSH16(&brush, src + offsetof(tagWMRCREATEBRUSHINDIRECT, brush));
    dst->brush = brush;
    TRACE_RETURN(1);
}

int InitWMREXTCREATEFONTINDIRECT(tagWMREXTCREATEFONTINDIRECT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    FONTSPEC font;
    InitFONTSPEC(&font, src + offsetof(tagWMREXTCREATEFONTINDIRECT, font));
    dst->font = font;
    TRACE_RETURN(1);
}

int InitWMRSELECTOBJECT(tagWMRSELECTOBJECT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    dst->ObjectIndex = ReadU16(src, offsetof(tagWMRSELECTOBJECT, ObjectIndex));
    TRACE_RETURN(1);
}

// Not traced, as the record's handler is not.
int InitWMRSETBKMODE(tagWMRSETBKMODE* dst, const unsigned char* src) {
    if (!IsBigEndian()) return 0;
    InitWMR(Prefix(dst), src);
    dst->BkMode = ReadU16(src, offsetof(tagWMRSETBKMODE, BkMode));
    dst->Reserved = ReadU16(src, offsetof(tagWMRSETBKMODE, Reserved));
    return 1;
}

int InitWMRLINETO(tagWMRLINETO* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    dst->y = Read16(src, offsetof(tagWMRLINETO, y));
    dst->x = Read16(src, offsetof(tagWMRLINETO, x));
    TRACE_RETURN(1);
}

int InitWMRELLIPSE(tagWMRELLIPSE* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    // The four 16-bit edges, in file order (bottom, right, top, left).
    tagRECT16 edges;
    std::memcpy(&edges, src + offsetof(tagWMRELLIPSE, BottomRect), sizeof edges);
    InitRECT16(edges);
    dst->BottomRect = edges.left;
    dst->RightRect = edges.top;
    dst->TopRect = edges.right;
    dst->LeftRect = edges.bottom;
    TRACE_RETURN(1);
}

int InitWMRPATBLT(tagWMRPATBLT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    dst->RasterOperation = ReadU32(src, offsetof(tagWMRPATBLT, RasterOperation));
    dst->Height = Read16(src, offsetof(tagWMRPATBLT, Height));
    dst->Width = Read16(src, offsetof(tagWMRPATBLT, Width));
    dst->YLeft = Read16(src, offsetof(tagWMRPATBLT, YLeft));
    dst->XLeft = Read16(src, offsetof(tagWMRPATBLT, XLeft));
    TRACE_RETURN(1);
}

// The characters that follow the fixed fields are single bytes and keep their order.
int InitWMREXTTEXTOUT(tagWMREXTTEXTOUT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    InitWMR(Prefix(dst), src);
    dst->y = Read16(src, offsetof(tagWMREXTTEXTOUT, y));
    dst->x = Read16(src, offsetof(tagWMREXTTEXTOUT, x));
    dst->StringLength = ReadU16(src, offsetof(tagWMREXTTEXTOUT, StringLength));
    dst->fwOpts = ReadU16(src, offsetof(tagWMREXTTEXTOUT, fwOpts));
    TRACE_RETURN(1);
}

int InitWMRPOLYLINE(tagWMRPOLYLINE* dst, const unsigned char* src, unsigned int size) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    ConvertPrefix(dst, src, size);
    dst->NumberOfPoints = ReadU16Inside(src, offsetof(tagWMRPOLYLINE, NumberOfPoints), size);
    ConvertPoints(reinterpret_cast<unsigned char*>(dst), src, kWmfPolyLinePointsOffset,
                  WmfPolyLinePoints(*dst, size));
    TRACE_RETURN(1);
}

int InitWMRPOLYPOLYLINE(tagWMRPOLYPOLYLINE* dst, const unsigned char* src, unsigned int size) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    ConvertPrefix(dst, src, size);
    dst->NumberOfPolygons =
        ReadU16Inside(src, offsetof(tagWMRPOLYPOLYLINE, NumberOfPolygons), size);
    unsigned char* out = reinterpret_cast<unsigned char*>(dst);
    const uint32_t counts = records::FitCount(dst->NumberOfPolygons, kWmfPolyPolygonCountsOffset,
                                              sizeof(uint16_t), size);
    for (uint32_t i = 0; i < counts; ++i) {
        const size_t at = kWmfPolyPolygonCountsOffset + (size_t)i * sizeof(uint16_t);
        const uint16_t count = ReadU16(src, at);
        std::memcpy(out + at, &count, sizeof count);
    }
    // The counts are in host order now, so the layout can be read from the destination.
    const WmfPolyPolygonLayout layout = GetWmfPolyPolygonLayout(out, size);
    ConvertPoints(out, src, layout.pointsOffset, layout.points);
    TRACE_RETURN(1);
}

// --- bitmap records ----------------------------------------------------------------------
// The raster operation (32 bits at offset 6) and then only 16-bit fields up to the bitmap.

namespace {
template <class R>
int ConvertBitmapRecord(R* dst, const unsigned char* src) {
    InitWMR(Prefix(dst), src);
    dst->RasterOperation = ReadU32(src, offsetof(R, RasterOperation));
    auto* bytes = reinterpret_cast<unsigned char*>(dst);
    for (size_t at = offsetof(R, RasterOperation) + 4; at < sizeof(R); at += 2) {
        const uint16_t v = ReadU16(src, at);
        std::memcpy(bytes + at, &v, 2);
    }
    return 1;
}
}  // namespace

int InitWMRBITBLT(tagWMRBITBLT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    TRACE_RETURN(ConvertBitmapRecord(dst, src));
}

int InitWMRDIBSTRETCHBLT(tagWMRDIBSTRETCHBLT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    TRACE_RETURN(ConvertBitmapRecord(dst, src));
}

int InitWMRSTRETCHBLT(tagWMRSTRETCHBLT* dst, const unsigned char* src) {
    TRACE_ENTER();
    if (!IsBigEndian()) TRACE_RETURN(0);
    TRACE_RETURN(ConvertBitmapRecord(dst, src));
}
