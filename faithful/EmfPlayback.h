// The faithful EMF player: walks the records of an EMF and hands each to a thin decoder that
// reads its fields and calls the device context.
//
// The walk is bounded like every walk of this library: a record that does not fit in the file
// or is shorter than its own 8-byte header ends it, EMR_EOF ends it, and so does the header's
// record count. Each record is copied into a zero-padded buffer before its decoder reads the
// fixed fields; trailing arrays are read only as far as FitCount places them in the record.
#ifndef SVGMODULE_FAITHFUL_EMFPLAYBACK_H
#define SVGMODULE_FAITHFUL_EMFPLAYBACK_H

#include <QByteArray>
#include <cstdint>
#include <vector>

#include "MetafileStructs.h"
#include "byteorder/RecordReader.h"
#include "faithful/DeviceContext.h"
#include "faithful/DeviceSvg.h"

namespace faithful {

class EmfPlayer {
  public:
    EmfPlayer();

    // Plays the records within the first `size` bytes of an EMF (its header already found to
    // carry the signature, and `size` no more than the input holds) and returns the document.
    QByteArray Play(const unsigned char* data, uint64_t size);

    // A decoder: the record copy (at least its fixed bytes readable) and its real size.
    using Decoder = void (EmfPlayer::*)(unsigned char* record, uint32_t size);
    struct Entry {
        Decoder decode = nullptr;
        size_t fixed = 0;  // the bytes of fixed fields the decoder reads
    };
    // The decoder of a record type, null for types that are skipped.
    static const Entry* EntryFor(uint32_t type);

  private:
    void SetupDevice(const tagENHMETAHEADER& header, const unsigned char* data, uint64_t size);
    // Plays the records within the first `end` bytes.
    void Walk(const unsigned char* data, uint64_t end, const tagENHMETAHEADER& header);
    // The document's size in CSS pixels and its device-space rectangle.
    QByteArray Finish(const tagENHMETAHEADER& header);

    // State and mapping (EmfPlaybackState.cpp).
    void OnSetMapMode(unsigned char* r, uint32_t size);
    void OnSetWindowExt(unsigned char* r, uint32_t size);
    void OnSetWindowOrg(unsigned char* r, uint32_t size);
    void OnSetViewportExt(unsigned char* r, uint32_t size);
    void OnSetViewportOrg(unsigned char* r, uint32_t size);
    void OnScaleViewportExt(unsigned char* r, uint32_t size);
    void OnScaleWindowExt(unsigned char* r, uint32_t size);
    void OnSetBrushOrg(unsigned char* r, uint32_t size);
    void OnSaveDC(unsigned char* r, uint32_t size);
    void OnRestoreDC(unsigned char* r, uint32_t size);
    void OnSetWorldTransform(unsigned char* r, uint32_t size);
    void OnModifyWorldTransform(unsigned char* r, uint32_t size);
    void OnSetMode(unsigned char* r, uint32_t size);  // the records of one 32-bit mode
    void OnSetColor(unsigned char* r, uint32_t size);
    void OnSetMiterLimit(unsigned char* r, uint32_t size);

    // Objects (EmfPlaybackObjects.cpp).
    void OnCreatePen(unsigned char* r, uint32_t size);
    void OnExtCreatePen(unsigned char* r, uint32_t size);
    void OnCreateBrush(unsigned char* r, uint32_t size);
    void OnCreatePatternBrush(unsigned char* r, uint32_t size);  // DIB pattern and mono brushes
    void OnCreateFont(unsigned char* r, uint32_t size);
    void OnCreateOther(unsigned char* r, uint32_t size);  // palettes and colour spaces
    void OnSelectObject(unsigned char* r, uint32_t size);
    void OnDeleteObject(unsigned char* r, uint32_t size);

    // Lines and curves (EmfPlaybackLines.cpp).
    void OnMoveTo(unsigned char* r, uint32_t size);
    void OnLineTo(unsigned char* r, uint32_t size);
    void OnPointList(unsigned char* r, uint32_t size);
    void OnPointList16(unsigned char* r, uint32_t size);
    void OnPolyPoly(unsigned char* r, uint32_t size);
    void OnPolyPoly16(unsigned char* r, uint32_t size);
    void OnPolyDraw(unsigned char* r, uint32_t size);
    void OnPolyDraw16(unsigned char* r, uint32_t size);
    // Sends a point list to the call its record type names.
    void DrawPoints(uint32_t type, const std::vector<PointF>& points);

    // Shapes, arcs and fills (EmfPlaybackShapes.cpp).
    void OnBox(unsigned char* r, uint32_t size);  // EMR_RECTANGLE, EMR_ELLIPSE
    void OnRoundRect(unsigned char* r, uint32_t size);
    void OnArc(unsigned char* r, uint32_t size);  // EMR_ARC, ARCTO, CHORD, PIE
    void OnAngleArc(unsigned char* r, uint32_t size);
    void OnSetPixel(unsigned char* r, uint32_t size);

    // Bit blocks (EmfPlaybackBitmaps.cpp).
    void OnBitBlt(unsigned char* r, uint32_t size);  // BITBLT, STRETCHBLT, MASKBLT, ...
    void OnPlgBlt(unsigned char* r, uint32_t size);
    void OnStretchDIBits(unsigned char* r, uint32_t size);
    void OnSetDIBitsToDevice(unsigned char* r, uint32_t size);

    // Text (EmfPlaybackText.cpp).
    void OnExtTextOut(unsigned char* r, uint32_t size);   // EMR_EXTTEXTOUTA, EXTTEXTOUTW
    void OnPolyTextOut(unsigned char* r, uint32_t size);  // EMR_POLYTEXTOUTA, POLYTEXTOUTW
    void OnSmallTextOut(unsigned char* r, uint32_t size);
    // Draws the EMRTEXT at byte `at` of the record (its 40 bytes inside the record).
    void DrawEmrText(const unsigned char* r, uint32_t size, size_t at, bool wide);

    // Gradient fills (EmfPlaybackGradient.cpp).
    void OnGradientFill(unsigned char* r, uint32_t size);
    // Clipping and regions (EmfPlaybackClip.cpp).
    void OnClipRect(unsigned char* r, uint32_t size);  // INTERSECTCLIPRECT, EXCLUDECLIPRECT
    void OnOffsetClipRgn(unsigned char* r, uint32_t size);
    void OnSetMetaRgn(unsigned char* r, uint32_t size);
    void OnExtSelectClipRgn(unsigned char* r, uint32_t size);
    void OnDrawRegion(unsigned char* r, uint32_t size);  // FILLRGN, FRAMERGN, INVERTRGN, PAINTRGN

    // Path brackets (EmfPlaybackPaths.cpp).
    void OnPathRecord(unsigned char* r, uint32_t size);

    DeviceSvg m_writer;
    DeviceContext m_dc;
    records::RecordBuffer m_copy;
    std::vector<PointF> m_points;  // reused for every point list
    // The type of the record being decoded, read before any normaliser converts the record's
    // header in place (decoders that serve several types tell them apart by it).
    uint32_t m_type = 0;
};

// The 32-bit little-endian field at `offset` of a record copy, in host order (for records no
// normaliser names).
uint32_t Field32(const unsigned char* record, size_t offset);
inline int32_t SignedField32(const unsigned char* record, size_t offset) {
    return (int32_t)Field32(record, offset);
}

// The EMF record types the player decodes.
namespace emr {
enum : uint32_t {
    HEADER = 1,
    POLYBEZIER = 2,
    POLYGON = 3,
    POLYLINE = 4,
    POLYBEZIERTO = 5,
    POLYLINETO = 6,
    POLYPOLYLINE = 7,
    POLYPOLYGON = 8,
    SETWINDOWEXTEX = 9,
    SETWINDOWORGEX = 10,
    SETVIEWPORTEXTEX = 11,
    SETVIEWPORTORGEX = 12,
    SETBRUSHORGEX = 13,
    EOF_ = 14,
    SETPIXELV = 15,
    SETMAPMODE = 17,
    SETBKMODE = 18,
    SETPOLYFILLMODE = 19,
    SETROP2 = 20,
    SETSTRETCHBLTMODE = 21,
    SETTEXTALIGN = 22,
    SETTEXTCOLOR = 24,
    SETBKCOLOR = 25,
    OFFSETCLIPRGN = 26,
    SETMETARGN = 28,
    EXCLUDECLIPRECT = 29,
    INTERSECTCLIPRECT = 30,
    MOVETOEX = 27,
    SCALEVIEWPORTEXTEX = 31,
    SCALEWINDOWEXTEX = 32,
    SAVEDC = 33,
    RESTOREDC = 34,
    SETWORLDTRANSFORM = 35,
    MODIFYWORLDTRANSFORM = 36,
    SELECTOBJECT = 37,
    CREATEPEN = 38,
    CREATEBRUSHINDIRECT = 39,
    DELETEOBJECT = 40,
    ANGLEARC = 41,
    ELLIPSE = 42,
    RECTANGLE = 43,
    ROUNDRECT = 44,
    ARC = 45,
    CHORD = 46,
    PIE = 47,
    CREATEPALETTE = 49,
    LINETO = 54,
    ARCTO = 55,
    POLYDRAW = 56,
    SETARCDIRECTION = 57,
    SETMITERLIMIT = 58,
    BEGINPATH = 59,
    ENDPATH = 60,
    CLOSEFIGURE = 61,
    FILLPATH = 62,
    STROKEANDFILLPATH = 63,
    STROKEPATH = 64,
    FLATTENPATH = 65,
    WIDENPATH = 66,
    SELECTCLIPPATH = 67,
    ABORTPATH = 68,
    FILLRGN = 71,
    FRAMERGN = 72,
    INVERTRGN = 73,
    PAINTRGN = 74,
    EXTSELECTCLIPRGN = 75,
    BITBLT = 76,
    STRETCHBLT = 77,
    MASKBLT = 78,
    PLGBLT = 79,
    SETDIBITSTODEVICE = 80,
    STRETCHDIBITS = 81,
    EXTCREATEFONTINDIRECTW = 82,
    EXTTEXTOUTA = 83,
    EXTTEXTOUTW = 84,
    POLYBEZIER16 = 85,
    POLYGON16 = 86,
    POLYLINE16 = 87,
    POLYBEZIERTO16 = 88,
    POLYLINETO16 = 89,
    POLYPOLYLINE16 = 90,
    POLYPOLYGON16 = 91,
    POLYDRAW16 = 92,
    CREATEMONOBRUSH = 93,
    CREATEDIBPATTERNBRUSHPT = 94,
    EXTCREATEPEN = 95,
    CREATECOLORSPACE = 99,
    ALPHABLEND = 114,
    TRANSPARENTBLT = 116,
    GRADIENTFILL = 118,
    POLYTEXTOUTA = 96,
    POLYTEXTOUTW = 97,
    SMALLTEXTOUT = 108,
    CREATECOLORSPACEW = 122,
};
}  // namespace emr

}  // namespace faithful

#endif
