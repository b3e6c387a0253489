// Builds EMF and WMF byte streams record by record, for tests, fuzz seeds and examples.
//
//     QByteArray emf = mfb::Emf().bounds(0, 0, 100, 50)
//                          .record(mfb::EMR_MOVETOEX, mfb::Bytes().i32(10).i32(20))
//                          .build();
//     QByteArray wmf = mfb::Wmf().placeable(0, 0, 2880, 1440, 1440)
//                          .record(0x0213, mfb::Bytes().i16(20).i16(10))
//                          .build();
//
// Every multi-byte field is remembered with its width, so build(true) can write the same
// metafile with each field's bytes reversed: what a little-endian file looks like to a
// big-endian host, for running the byte-order normalisers.
#ifndef SVGMODULE_TESTS_METAFILEBUILDER_H
#define SVGMODULE_TESTS_METAFILEBUILDER_H

#include <QByteArray>
#include <QString>
#include <array>
#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

namespace mfb {

// EMF record types used by the tests.
enum EmfType : uint32_t {
    EMR_HEADER = 1,
    EMR_POLYBEZIER = 2,
    EMR_POLYGON = 3,
    EMR_POLYLINE = 4,
    EMR_POLYBEZIERTO = 5,
    EMR_POLYLINETO = 6,
    EMR_POLYPOLYLINE = 7,
    EMR_POLYPOLYGON = 8,
    EMR_SETWINDOWEXTEX = 9,
    EMR_SETWINDOWORGEX = 10,
    EMR_SETVIEWPORTEXTEX = 11,
    EMR_SETVIEWPORTORGEX = 12,
    EMR_EOF = 14,
    EMR_SETMAPMODE = 17,
    EMR_SETBKMODE = 18,
    EMR_SETROP2 = 20,
    EMR_SETTEXTALIGN = 22,
    EMR_SETTEXTCOLOR = 24,
    EMR_SETBKCOLOR = 25,
    EMR_MOVETOEX = 27,
    EMR_INTERSECTCLIPRECT = 30,
    EMR_SETWORLDTRANSFORM = 35,
    EMR_MODIFYWORLDTRANSFORM = 36,
    EMR_SELECTOBJECT = 37,
    EMR_CREATEPEN = 38,
    EMR_CREATEBRUSHINDIRECT = 39,
    EMR_DELETEOBJECT = 40,
    EMR_ANGLEARC = 41,
    EMR_ELLIPSE = 42,
    EMR_RECTANGLE = 43,
    EMR_ROUNDRECT = 44,
    EMR_ARC = 45,
    EMR_CHORD = 46,
    EMR_PIE = 47,
    EMR_LINETO = 54,
    EMR_ARCTO = 55,
    EMR_BEGINPATH = 59,
    EMR_ENDPATH = 60,
    EMR_CLOSEFIGURE = 61,
    EMR_FILLPATH = 62,
    EMR_STROKEPATH = 64,
    EMR_SELECTCLIPPATH = 67,
    EMR_ABORTPATH = 68,
    EMR_FILLRGN = 71,
    EMR_FRAMERGN = 72,
    EMR_EXTSELECTCLIPRGN = 75,
    EMR_BITBLT = 76,
    EMR_STRETCHBLT = 77,
    EMR_MASKBLT = 78,
    EMR_PLGBLT = 79,
    EMR_STRETCHDIBITS = 81,
    EMR_EXTCREATEFONTINDIRECTW = 82,
    EMR_EXTTEXTOUTW = 84,
    EMR_POLYBEZIER16 = 85,
    EMR_POLYGON16 = 86,
    EMR_POLYLINE16 = 87,
    EMR_POLYBEZIERTO16 = 88,
    EMR_POLYLINETO16 = 89,
    EMR_POLYPOLYLINE16 = 90,
    EMR_POLYPOLYGON16 = 91,
    EMR_POLYDRAW16 = 92,
    EMR_CREATEMONOBRUSH = 93,
    EMR_EXTCREATEPEN = 95,
    EMR_SMALLTEXTOUT = 108,
    EMR_TRANSPARENTBLT = 116,
};

// WMF function numbers used by the tests.
enum WmfFunction : uint16_t {
    META_EOF = 0x0000,
    META_SETBKMODE = 0x0102,
    META_SETMAPMODE = 0x0103,
    META_SELECTOBJECT = 0x012D,
    META_SETTEXTALIGN = 0x012E,
    META_DELETEOBJECT = 0x01F0,
    META_SETBKCOLOR = 0x0201,
    META_SETWINDOWORG = 0x020B,
    META_SETWINDOWEXT = 0x020C,
    META_LINETO = 0x0213,
    META_MOVETO = 0x0214,
    META_CREATEPENINDIRECT = 0x02FA,
    META_CREATEFONTINDIRECT = 0x02FB,
    META_CREATEBRUSHINDIRECT = 0x02FC,
    META_POLYGON = 0x0324,
    META_POLYLINE = 0x0325,
    META_ELLIPSE = 0x0418,
    META_RECTANGLE = 0x041B,
    META_POLYPOLYGON = 0x0538,
    META_PATBLT = 0x061D,
    META_ARC = 0x0817,
    META_EXTTEXTOUT = 0x0A32,
    META_CREATEBITMAP = 0x06FE,
};

// A run of little-endian fields.
class Bytes {
  public:
    Bytes& u8(uint8_t v);
    Bytes& u16(uint16_t v) { return put(v, 2); }
    Bytes& i16(int16_t v) { return put((uint16_t)v, 2); }
    Bytes& u32(uint32_t v) { return put(v, 4); }
    Bytes& i32(int32_t v) { return put((uint32_t)v, 4); }
    Bytes& f32(float v);
    // `units` UTF-16 code units of `text`, NUL-padded (or cut) to that length.
    Bytes& utf16(const QString& text, int units);
    // `count` bytes of `text`, NUL-padded (or cut) to that length.
    Bytes& latin1(const QByteArray& text, int count);
    Bytes& zeros(int count);
    Bytes& append(const Bytes& other);

    int size() const { return (int)m_data.size(); }
    // The bytes, with every multi-byte field reversed when `swapped`.
    QByteArray toByteArray(bool swapped = false) const;

  private:
    Bytes& put(uint32_t v, int width);

    std::vector<uint8_t> m_data;
    std::vector<std::pair<int, int>> m_fields;  // offset, width of multi-byte fields
};

class Emf {
  public:
    Emf& bounds(int32_t l, int32_t t, int32_t r, int32_t b) { return set(m_bounds, {l, t, r, b}); }
    Emf& frame(int32_t l, int32_t t, int32_t r, int32_t b) { return set(m_frame, {l, t, r, b}); }
    Emf& device(int32_t cx, int32_t cy) { return set(m_device, {cx, cy}); }
    Emf& millimeters(int32_t cx, int32_t cy) { return set(m_mm, {cx, cy}); }
    // Forces the header's nRecords (otherwise: the records plus header and EOF).
    Emf& recordCount(uint32_t n) { return set(m_recordCount, n); }
    // A record: 8-byte header (type, size = 8 + payload) then the payload.
    Emf& record(uint32_t type, const Bytes& payload) {
        return recordWithSize(type, (uint32_t)(8 + payload.size()), payload);
    }
    // A record whose size field says `size` whatever the payload holds.
    Emf& recordWithSize(uint32_t type, uint32_t size, const Bytes& payload) {
        m_body.u32(type).u32(size).append(payload);
        return set(m_records, m_records + 1);
    }
    // The file; `eof` appends EMR_EOF; `swapped` reverses every multi-byte field.
    QByteArray build(bool eof = true, bool swapped = false) const;
    // The size of the file built with EMR_EOF.
    int size() const { return 108 + m_body.size(); }

  private:
    template <class T>
    Emf& set(T& field, const std::common_type_t<T>& value) {
        field = value;
        return *this;
    }

    // 1024 x 768 device units over 320 x 240 mm: 3.2 units per mm, so a frame of 31.25 mm
    // (3125 hundredths) gives a 100 x 100 picture over bounds 0, 0, 100, 100.
    std::array<int32_t, 4> m_bounds = {0, 0, 100, 100}, m_frame = {0, 0, 3125, 3125};
    std::array<int32_t, 2> m_device = {1024, 768}, m_mm = {320, 240};
    int64_t m_recordCount = -1;
    int m_records = 0;
    Bytes m_body;
};

class Wmf {
  public:
    // A placeable header with this bounding box and Inch.
    Wmf& placeable(int16_t l, int16_t t, int16_t r, int16_t b, uint16_t inch) {
        m_placeable = true, m_box = {l, t, r, b}, m_inch = inch;
        return *this;
    }
    Wmf& maxRecord(uint32_t words) { return set(m_maxRecord, words); }
    // The header's object count (otherwise 0).
    Wmf& objects(uint16_t count) { return set(m_objects, count); }
    // A record: rdSize (words), rdFunction, then the parameters.
    Wmf& record(uint16_t function, const Bytes& params) {
        return recordWithSize(function, (uint32_t)(3 + (params.size() + 1) / 2), params);
    }
    // A record whose rdSize says `words` whatever the parameters hold.
    Wmf& recordWithSize(uint16_t function, uint32_t words, const Bytes& params);
    QByteArray build(bool eof = true, bool swapped = false) const;
    // The size of the file built with META_EOF.
    int size() const { return (m_placeable ? 22 : 0) + 24 + m_body.size(); }

  private:
    template <class T>
    Wmf& set(T& field, const std::common_type_t<T>& value) {
        field = value;
        return *this;
    }

    bool m_placeable = false;
    std::array<int16_t, 4> m_box = {0, 0, 0, 0};
    uint16_t m_inch = 0;
    int64_t m_maxRecord = -1;
    uint16_t m_objects = 0;
    uint32_t m_largest = 3;
    Bytes m_body;
};

// Common payloads.
Bytes Points16(std::initializer_list<std::pair<int, int>> points);
// Region data: the header (dwSize, iType 1, nCount, nRgnSize, a zero rcBound) padded to
// `headerSize` bytes, then the rectangles (left, top, right, bottom). `count` replaces the
// rectangle count when it is not negative.
using Rect = std::array<int32_t, 4>;
Bytes RegionData(const std::vector<Rect>& rects, int64_t count = -1, uint32_t headerSize = 32);
// A bitmap header and its colour table, each entry 0x00RRGGBB stored as the bytes blue,
// green, red, 0.
Bytes BitmapInfo(int32_t width, int32_t height, uint16_t bitCount,
                 const std::vector<uint32_t>& colours = {});
// Bitmap record payloads of EMF. A bit-block record (EMR_BITBLT, EMR_STRETCHBLT,
// EMR_MASKBLT, EMR_TRANSPARENTBLT): destination, raster operation (or transparent colour) and
// the bitmap header and bits after the record's fixed fields, whose offsets are 0 when the
// header is empty. EMR_STRETCHDIBITS: the same for its own layout.
Bytes EmfBlt(uint32_t type, int x, int y, int cx, int cy, uint32_t rop, const Bytes& header,
             const Bytes& bits);
Bytes EmfStretchDib(int x, int y, int cx, int cy, uint32_t rop, const Bytes& header,
                    const Bytes& bits);
// Runs of 32-bit fields.
Bytes U32s(std::initializer_list<uint32_t> values);
Bytes I32s(std::initializer_list<int32_t> values);
// A LOGFONTW: height, escapement (tenths of a degree), weight and face name; the rest zero.
Bytes LogFontW(int32_t height, int32_t escapement, int32_t weight, const QString& face);

}  // namespace mfb

#endif
