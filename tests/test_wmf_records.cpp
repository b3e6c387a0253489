// WMF object and line-art records: the handle table, pens and fonts, the drawing records and
// malformed counts; every file converts alike in both byte orders.

#include "byteorder/RecordReader.h"
#include "byteorder/WmfNormalisers.h"
#include "tests/TestUtil.h"

using namespace mfb;
using namespace testutil;

namespace {

// The function numbers of the records handled here.
const uint16_t kHandled[] = {0x0102, 0x012D, 0x01F0, 0x0213, 0x0214, 0x02FA, 0x02FB, 0x02FC,
                             0x0324, 0x0325, 0x0418, 0x041B, 0x0538, 0x061D, 0x0817, 0x0A32};

// Record parameters: WMF stores y before x, and rectangles bottom-right first.
const auto Pen = [](int style, int w, uint32_t rgb) {
    return Bytes().u16(style).i16(w).i16(0).u32(rgb);
};
const auto Brush = [](int style, uint32_t rgb, int hatch = 0) {
    return Bytes().u16(style).u32(rgb).u16(hatch);
};
// A font object; `nameBytes` ends the record inside the face name.
const auto Font = [](int16_t height, int nameBytes = 32) {
    return Bytes().i16(height).i16(0).i16(0).i16(0).i16(400).zeros(8).latin1("Arial", nameBytes);
};
const auto Index = [](int slot) { return Bytes().u16(slot); };
const auto YX = [](int x, int y) { return Bytes().i16(y).i16(x); };
const auto Edges = [](int l, int t, int r, int b) { return Bytes().i16(b).i16(r).i16(t).i16(l); };
const auto Blt = [](int x, int y, int w, int h) {
    return Bytes().u32(0xF00021).i16(h).i16(w).i16(y).i16(x);
};
Bytes Poly(uint16_t declared, std::initializer_list<std::pair<int, int>> points) {
    return Bytes().u16(declared).append(Points16(points));
}
Bytes PolyPoly(std::initializer_list<uint16_t> counts,
               std::initializer_list<std::pair<int, int>> points) {
    Bytes b = Bytes().u16((uint16_t)counts.size());
    for (uint16_t c : counts) b.u16(c);
    return b.append(Points16(points));
}

const QString kStyle = QString(kDefaultStyle) + "/>\n";

// The current style once a round-capped pen is selected over the default brush.
QString PenSelected(const char* colour, int width = 1, const char* fill = " fill=\"white\"") {
    return QString::asprintf(
        " stroke=\"%s\" stroke-width=\"%d\" \n stroke-linecap = \"round\" "
        "stroke-linejoin = \"round\" %s",
        colour, width, fill);
}

}  // namespace

// Slots are taken lowest first; a hatched brush writes its pattern once, when it is made.
TEST(WmfObjects, CreationTakesTheLowestFreeSlot) {
    Wmf f;
    f.record(0x00F7, Bytes().u16(0x0300).u16(0))                 // palette: takes no slot
        .record(META_CREATEPENINDIRECT, Pen(0, 15, 0x000000FF))  // 0
        .record(META_CREATEBRUSHINDIRECT, Brush(0, 0x0000FF00))  // 1
        .record(META_CREATEFONTINDIRECT, Font(200))              // 2
        .record(META_DELETEOBJECT, Index(1))
        .record(META_DELETEOBJECT, Index(9))                     // never created
        .record(META_CREATEPENINDIRECT, Pen(0, 15, 0x00FF0000))  // 1
        .record(META_DELETEOBJECT, Index(0))
        .record(META_DELETEOBJECT, Index(2))
        .record(META_CREATEBRUSHINDIRECT, Brush(2, 0x0000FFFF, 3))  // 0
        .record(META_CREATEFONTINDIRECT, Font(200))                 // 2
        .record(META_CREATEPENINDIRECT, Pen(0, 15, 0x00808080))     // 3
        .record(META_SELECTOBJECT, Index(1))
        .record(META_LINETO, YX(150, 151))
        .record(META_SELECTOBJECT, Index(3))
        .record(META_LINETO, YX(300, 301))
        .record(META_SELECTOBJECT, Index(0))
        .record(META_LINETO, YX(450, 451));
    CStyleManager hatch;
    hatch.EmfCreateBrush(0, 2, 3, 0x0000FFFF);
    EXPECT_EQ(BothOrders(f),
              hatch.GetPatternDef(0) + Line(0, 0, 10, 10, PenSelected("#0000ff")) +
                  Line(10, 10, 20, 20, PenSelected("#808080")) +
                  Line(20, 20, 30, 30, PenSelected("#808080", 1, "  fill=\"url(#BRUSH_1)\" \n")));
}

// Pen widths are divided by the scale (15 without a placeable header) and truncated; a width
// of 0 draws as 1 and PS_NULL as 0. Font heights are unsigned 16-bit values divided by the
// units per inch (1440 without a placeable header); a record that ends inside the face name
// reads the rest as zeros.
TEST(WmfObjects, PenWidthsAndFontHeightsAreDividedByTheScale) {
    const auto text = Bytes().i16(0).i16(0).u16(1).u16(0).latin1("x", 1);
    const auto font = [](const char* face, int size) {
        return QString::asprintf(" font-family=\"%s\" font-size=\"%d\" ", face, size);
    };
    const auto line = [](int width) { return Line(0, 0, 10, 10, PenSelected("black", width)); };
    // Inch (0: no placeable header), the object, the record drawing with it, what it draws.
    const std::tuple<uint16_t, uint16_t, Bytes, uint16_t, Bytes, QString> cases[] = {
        {0, META_CREATEPENINDIRECT, Pen(0, 0, 0), META_LINETO, YX(150, 151), line(1)},
        {0, META_CREATEPENINDIRECT, Pen(0, 14, 0), META_LINETO, YX(150, 151), line(1)},
        {0, META_CREATEPENINDIRECT, Pen(0, 44, 0), META_LINETO, YX(150, 151), line(2)},
        {0, META_CREATEPENINDIRECT, Pen(5, 30, 0), META_LINETO, YX(150, 151), line(0)},
        {0, META_CREATEFONTINDIRECT, Font(2880), META_EXTTEXTOUT, text, font("Arial", 2)},
        {0, META_CREATEFONTINDIRECT, Font(-200), META_EXTTEXTOUT, text, font("Arial", 45)},
        {720, META_CREATEFONTINDIRECT, Font(2880), META_EXTTEXTOUT, text, font("Arial", 4)},
        {0, META_CREATEFONTINDIRECT, Font(2880, 2), META_EXTTEXTOUT, text, font("Ar", 2)},
    };
    for (const auto& [inch, create, object, draw, params, expected] : cases) {
        Wmf f;
        if (inch) f.placeable(0, 0, 1000, 1000, inch);
        f.record(create, object).record(META_SELECTOBJECT, Index(0)).record(draw, params);
        EXPECT_TRUE(BothOrders(f).contains(expected)) << expected.toStdString();
    }
}

// Each case follows a META_MOVETO and is followed by one with non-zero bytes, which clipped
// counts must never read as points.
TEST(WmfDrawing, RecordsMapToWriterElementsWithCountsClipped) {
    const QString rect = R"(<rect x="0" y="0" width="10" height="10" rx="0" ry="0" )" + kStyle;
    const QString circle = R"(<circle cx="10" cy = "10" r="10" )" + kStyle;
    const QString polyline = "\n\" " + QString(kNoPen) + "/>\n";
    const QString polygon = "\n\" " + kStyle;
    const QString path = "\" fill-rule=\"evenodd\"" + kStyle;
    const std::tuple<const char*, uint16_t, Bytes, QString> cases[] = {
        {"line", META_LINETO, YX(300, 301), Line(10, 10, 20, 20)},
        {"rectangle", META_RECTANGLE, Edges(0, 16, 150, 151),
         R"(<rect x="0" y="1" width="10" height="9" rx="0" ry="0" )" + kStyle},
        {"short rectangle", META_RECTANGLE, Bytes().i16(151).i16(150), rect},
        {"circle", META_ELLIPSE, Edges(0, 1, 300, 301), circle},
        {"radii equal once halved", META_ELLIPSE, Edges(0, 1, 315, 301), circle},
        {"ellipse", META_ELLIPSE, Edges(0, 1, 300, 151),
         R"(<ellipse cx="10" cy = "5" rx = "10" ry = "5 " )" + kStyle},
        {"pattern blit", META_PATBLT, Blt(15, 31, 150, 151),
         R"(<rect x="1" y="2" width="10" height="10" rx="0" ry="0" )" + kStyle},
        {"arc", META_ARC, Bytes().zeros(16), QString()},
        {"more points declared", META_POLYLINE, Poly(5, {{0, 1}, {150, 16}}),
         "<polyline points=\"0,0 10,1 " + polyline},
        {"fewer points declared", META_POLYGON, Poly(2, {{0, 1}, {150, 16}, {300, 301}}),
         "<polygon points=\"0,0 10,1 " + polygon},
        {"no points", META_POLYLINE, Poly(3, {}), "<polyline points=\"" + polyline},
        {"no count", META_POLYGON, Bytes(), "<polygon points=\"" + polygon},
        {"polypolygon", META_POLYPOLYGON,
         PolyPoly({3, 4},
                  {{0, 1}, {150, 1}, {0, 151}, {300, 301}, {450, 301}, {450, 451}, {300, 451}}),
         "<path d=\" M0,0  L10,0  L0,10  Z M20,20  L30,20  L30,30  L20,30  Z" + path},
        {"points run out", META_POLYPOLYGON,
         PolyPoly({3, 4}, {{0, 1}, {150, 1}, {0, 151}, {300, 301}, {450, 301}}),
         "<path d=\" M0,0  L10,0  L0,10  Z M20,20  L30,20  Z" + path},
        {"empty polygon", META_POLYPOLYGON, PolyPoly({2, 0, 1}, {{0, 1}, {150, 1}, {300, 301}}),
         "<path d=\" M0,0  L10,0  Z M20,20  Z" + path},
        {"counts past the end", META_POLYPOLYGON, Bytes().u16(40).u16(3), QString()},
    };
    for (const auto& [name, function, params, body] : cases) {
        Wmf file;
        file.record(META_MOVETO, YX(150, 151))
            .record(function, params)
            .record(META_MOVETO, YX(0x0707, 0x0707));
        EXPECT_EQ(BothOrders(file), body) << name;
    }
}

// Records of every short length filled with 0xFF, in both byte orders: counts of 65535 and
// extreme coordinates neither read outside the record nor stop the conversion.
TEST(WmfRobustness, ShortAndSaturatedRecords) {
    for (bool swapped : {false, true}) {
        ForceBigEndian order(swapped);
        for (uint16_t function : kHandled) {
            Wmf f;
            for (int words = 0; words <= 30; ++words) {
                Bytes params;
                for (int i = 0; i < words; ++i) params.u16(0xFFFF);
                f.record(function, params);
            }
            EXPECT_EQ(Convert(f.build(true, swapped)).status, 2) << "function " << function;
        }
    }
    // The array normalisers read nothing past the record, even from a buffer that ends there.
    ForceBigEndian bigEndian;
    for (unsigned int size = 2; size <= 40; size += 2) {
        std::vector<unsigned char> src(size, 0xFF);
        if (size > 6) src[6] = 0x03;
        records::ScratchCopy dst(src.data(), size);
        InitWMRPOLYLINE(reinterpret_cast<tagWMRPOLYLINE*>(dst.data()), src.data(), size);
        InitWMRPOLYPOLYLINE(reinterpret_cast<tagWMRPOLYPOLYLINE*>(dst.data()), src.data(), size);
    }
}
