// The faithful WMF player: reads the headers, sets up the device the way a host plays a
// metafile into a rectangle, walks the records and hands each to a thin decoder that reads
// its parameters and calls the device context.
//
// Device space. A placeable file is played as its host plays it: MM_ANISOTROPIC, the window
// at the header's bounding box (origin at its corner, extent its size) and the viewport the
// output rectangle, which here is (0, 0) to the box's size: one device unit is one unit of the
// box, and the document is the box at the header's units per inch. The file's own window
// records then replace the window. A file without the placeable header gets the same set-up
// with the window its records set (the first SETWINDOWORG and SETWINDOWEXT of the file),
// taken at 1440 units per inch; a file that sets no window extent is played in MM_TEXT with
// the page around what it draws.
//
// The walk is bounded like every walk of this library: the records end where the header's
// size says the file ends, or earlier where the input does; a record shorter than its own
// 3-word prefix or running past that end stops the walk, and so does META_EOF. Each record is
// copied into a zero-padded buffer before its decoder reads the fixed parameters; arrays are
// read only as far as FitCount places them in the record.
#ifndef SVGMODULE_FAITHFUL_WMFPLAYBACK_H
#define SVGMODULE_FAITHFUL_WMFPLAYBACK_H

#include <QByteArray>
#include <cstdint>
#include <vector>

#include "MetafileStructs.h"
#include "byteorder/RecordReader.h"
#include "faithful/DeviceContext.h"
#include "faithful/DeviceSvg.h"

namespace faithful {

// Converts the WMF of `size` bytes at `data` (with or without the placeable header). Returns 2
// when converted, -3 when the header is refused (its size is not 9 words or it declares
// parameters), 0 for no data; `out` receives the document only when 2 is returned.
int PlayWmf(const unsigned char* data, uint64_t size, QByteArray& out);

class WmfPlayer {
  public:
    WmfPlayer();

    // As PlayWmf.
    int Play(const unsigned char* data, uint64_t size, QByteArray& out);

    // The device context after Play (for tests).
    const DeviceContext& Context() const { return m_dc; }

    // A decoder: the record copy (at least its fixed bytes readable) and its real size in
    // bytes.
    using Decoder = void (WmfPlayer::*)(unsigned char* record, uint32_t size);
    struct Entry {
        Decoder decode = nullptr;
        size_t fixed = 0;  // the bytes of fixed fields the decoder reads, prefix included
    };
    // The decoder of a record function, null for functions that are skipped.
    static const Entry* EntryFor(uint16_t function);

  private:
    // The records between `begin` and `end` of the input, walked as described above; `visit`
    // is called with each record's offset, size in bytes and function, and returns false to
    // stop.
    template <class Visit>
    static void ForEachRecord(const unsigned char* data, uint64_t begin, uint64_t end, Visit visit);
    // The mapping and the page (WmfPlayback.cpp).
    void SetupDevice(const _PlaceableMetaHeader* placeable, const unsigned char* data,
                     uint64_t begin, uint64_t end);
    void Walk(const unsigned char* data, uint64_t begin, uint64_t end);
    QByteArray Finish();

    // State and mapping (WmfPlaybackState.cpp).
    void OnSetMapMode(unsigned char* r, uint32_t size);
    void OnWindowOrViewport(unsigned char* r, uint32_t size);  // the org, ext and offset records
    void OnScaleExt(unsigned char* r, uint32_t size);          // SCALEWINDOWEXT, SCALEVIEWPORTEXT
    void OnSaveDC(unsigned char* r, uint32_t size);
    void OnRestoreDC(unsigned char* r, uint32_t size);
    void OnSetMode(unsigned char* r, uint32_t size);  // the records of one 16-bit mode
    void OnSetColor(unsigned char* r, uint32_t size);

    // Objects (WmfPlaybackObjects.cpp).
    void OnCreatePen(unsigned char* r, uint32_t size);
    void OnCreateBrush(unsigned char* r, uint32_t size);
    void OnCreateFont(unsigned char* r, uint32_t size);
    void OnCreatePatternBrush(unsigned char* r, uint32_t size);     // a device-dependent bitmap
    void OnDibCreatePatternBrush(unsigned char* r, uint32_t size);  // a device-independent one
    void OnCreateOther(unsigned char* r, uint32_t size);  // palettes, regions, old bitmaps
    void OnSelectObject(unsigned char* r, uint32_t size);
    void OnDeleteObject(unsigned char* r, uint32_t size);

    // Drawing (WmfPlaybackDrawing.cpp).
    void OnMoveTo(unsigned char* r, uint32_t size);
    void OnLineTo(unsigned char* r, uint32_t size);
    void OnPoly(unsigned char* r, uint32_t size);  // POLYLINE, POLYGON
    void OnPolyPolygon(unsigned char* r, uint32_t size);
    void OnBox(unsigned char* r, uint32_t size);  // RECTANGLE, ELLIPSE
    void OnRoundRect(unsigned char* r, uint32_t size);
    void OnArc(unsigned char* r, uint32_t size);  // ARC, CHORD, PIE
    void OnSetPixel(unsigned char* r, uint32_t size);
    void OnPatBlt(unsigned char* r, uint32_t size);
    // Bit blocks (WmfPlaybackBitmaps.cpp).
    void OnBitBlt(unsigned char* r, uint32_t size);      // BITBLT, STRETCHBLT and DIB forms
    void OnStretchDib(unsigned char* r, uint32_t size);  // STRETCHDIB, SETDIBTODEV

    // Clipping and regions (WmfPlaybackClip.cpp).
    void OnCreateRegion(unsigned char* r, uint32_t size);
    void OnClipRect(unsigned char* r, uint32_t size);  // INTERSECTCLIPRECT, EXCLUDECLIPRECT
    void OnOffsetClipRgn(unsigned char* r, uint32_t size);
    void OnSelectClipRegion(unsigned char* r, uint32_t size);
    // FILLREGION, FRAMEREGION, INVERTREGION, PAINTREGION
    void OnDrawRegion(unsigned char* r, uint32_t size);

    // Text (WmfPlaybackText.cpp).
    void OnTextOut(unsigned char* r, uint32_t size);
    void OnExtTextOut(unsigned char* r, uint32_t size);

    DeviceSvg m_writer;
    DeviceContext m_dc;
    records::RecordBuffer m_copy;
    std::vector<PointF> m_points;    // reused for every point list
    std::vector<uint32_t> m_counts;  // reused for every poly-polygon
    // The document: its size in CSS pixels and the device-space rectangle it shows; an empty
    // rectangle leaves the page to what is drawn.
    double m_widthPx = 0, m_heightPx = 0;
    RectF m_page;
    bool m_pageFromDrawing = false;
};

// The 16-bit parameter `index` of a WMF record copy (counted after the 6-byte prefix), in host
// order; a 32-bit parameter spans two indices.
int16_t Param16(const unsigned char* record, size_t index);
uint32_t Param32(const unsigned char* record, size_t index);
// The function number of a WMF record copy.
uint16_t RecordFunction(const unsigned char* record);

// The WMF record functions the player decodes.
namespace meta {
enum : uint16_t {
    EOF_ = 0x0000,
    SAVEDC = 0x001E,
    CREATEPALETTE = 0x00F7,
    CREATEBRUSH = 0x00F8,
    SETBKMODE = 0x0102,
    SETMAPMODE = 0x0103,
    SETROP2 = 0x0104,
    SETPOLYFILLMODE = 0x0106,
    SETSTRETCHBLTMODE = 0x0107,
    RESTOREDC = 0x0127,
    SELECTOBJECT = 0x012D,
    SETTEXTALIGN = 0x012E,
    DIBCREATEPATTERNBRUSH = 0x0142,
    DELETEOBJECT = 0x01F0,
    CREATEPATTERNBRUSH = 0x01F9,
    SETBKCOLOR = 0x0201,
    SETTEXTCOLOR = 0x0209,
    SETWINDOWORG = 0x020B,
    SETWINDOWEXT = 0x020C,
    SETVIEWPORTORG = 0x020D,
    SETVIEWPORTEXT = 0x020E,
    OFFSETWINDOWORG = 0x020F,
    OFFSETVIEWPORTORG = 0x0211,
    LINETO = 0x0213,
    MOVETO = 0x0214,
    CREATEPENINDIRECT = 0x02FA,
    CREATEFONTINDIRECT = 0x02FB,
    CREATEBRUSHINDIRECT = 0x02FC,
    CREATEBITMAPINDIRECT = 0x02FD,
    POLYGON = 0x0324,
    POLYLINE = 0x0325,
    SCALEWINDOWEXT = 0x0410,
    SCALEVIEWPORTEXT = 0x0412,
    ELLIPSE = 0x0418,
    RECTANGLE = 0x041B,
    SETPIXEL = 0x041F,
    POLYPOLYGON = 0x0538,
    ROUNDRECT = 0x061C,
    PATBLT = 0x061D,
    CREATEBITMAP = 0x06FE,
    CREATEREGION = 0x06FF,
    ARC = 0x0817,
    PIE = 0x081A,
    CHORD = 0x0830,
    BITBLT = 0x0922,
    DIBBITBLT = 0x0940,
    STRETCHBLT = 0x0B23,
    DIBSTRETCHBLT = 0x0B41,
    SETDIBTODEV = 0x0D33,
    STRETCHDIB = 0x0F43,
    INVERTREGION = 0x012A,
    PAINTREGION = 0x012B,
    SELECTCLIPREGION = 0x012C,
    OFFSETCLIPRGN = 0x0220,
    FILLREGION = 0x0228,
    EXCLUDECLIPRECT = 0x0415,
    INTERSECTCLIPRECT = 0x0416,
    FRAMEREGION = 0x0429,
    TEXTOUT = 0x0521,
    EXTTEXTOUT = 0x0A32,
};
}  // namespace meta

}  // namespace faithful

#endif
