// WMF object and line-art records: the handle table, pens and fonts, the drawing records,
// malformed counts and byte-swapped files.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <optional>

#include "byteorder/WmfNormalisers.h"
#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"
#include "wmf/Wmf2SVG.h"

using namespace mfb;
using testutil::Convert;

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

const QString kStyle = QStringLiteral(" stroke=\"black\" stroke-width=\"1\" fill=\"none\"/>\n");

// The current style once a round-capped pen is selected over the default brush.
QString PenSelected(const char* colour, int width = 1) {
    return QString::asprintf(
        " stroke=\"%s\" stroke-width=\"%d\" \n stroke-linecap = \"round\" "
        "stroke-linejoin = \"round\"  fill=\"white\"/>\n",
        colour, width);
}
QString Line(int x1, int y1, int x2, int y2, const QString& style = kStyle) {
    return QString::asprintf("<line x1=\"%d\" y1 = \"%d\" x2 =\"%d\" y2=\"%d\" ", x1, y1, x2, y2) +
           style;
}

QString BodyOf(const Wmf& file) {
    const auto r = Convert(file.build());
    EXPECT_EQ(r.status, 2);
    return testutil::Body(r.svg);
}

// One record as a file holds it, in a scratch copy the normalisers may rewrite.
struct Record {
    Record(uint16_t function, const Bytes& params, bool swapped)
        : bytes(
              Bytes().u32(3 + params.size() / 2).u16(function).append(params).toByteArray(swapped)),
          copy(reinterpret_cast<const unsigned char*>(bytes.constData()), (size_t)bytes.size()) {}
    QByteArray bytes;
    records::ScratchCopy copy;
};

// A converter fed record by record through its dispatcher, so that tests can inspect its state.
struct Player {
    explicit Player(uint16_t inch) {
        _PlaceableMetaHeader header = {};
        header.BoundingBox = tagRECT16{0, 0, 1000, 1000};
        header.Inch = inch;
        converter.InitializeCoordinates(inch != 0, header);
        converter.InitWMFRecHandlers();
    }
    Player& play(uint16_t function, const Bytes& params, bool swapped) {
        Record r(function, params, swapped);
        converter.HandleWMFRecordData(r.copy.data(), (unsigned int)r.bytes.size(), log);
        return *this;
    }
    CLogger log;
    WMF2SVGConverter converter;
};

}  // namespace

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
        .record(META_CREATEBRUSHINDIRECT, Brush(0, 0x0000FFFF))  // 0
        .record(META_CREATEFONTINDIRECT, Font(200))              // 2
        .record(META_CREATEPENINDIRECT, Pen(0, 15, 0x00808080))  // 3
        .record(META_SELECTOBJECT, Index(1))
        .record(META_LINETO, YX(150, 151))
        .record(META_SELECTOBJECT, Index(3))
        .record(META_LINETO, YX(300, 301))
        .record(META_SELECTOBJECT, Index(0))
        .record(META_LINETO, YX(450, 451));
    QString yellowBrush = PenSelected("#808080");
    yellowBrush.replace(QStringLiteral(" fill=\"white\""), QStringLiteral("  fill=\"#ffff00\"\n"));
    EXPECT_EQ(BodyOf(f), Line(0, 0, 10, 10, PenSelected("#0000ff")) +
                             Line(10, 10, 20, 20, PenSelected("#808080")) +
                             Line(20, 20, 30, 30, yellowBrush));
}

// Widths are divided by the scale (15 without a placeable header) and truncated; a width
// of 0 draws as 1 and PS_NULL as 0.
TEST(WmfObjects, PenWidthsAreDividedByTheScale) {
    const int cases[][3] = {{0, 0, 1}, {0, 14, 1}, {0, 44, 2}, {5, 30, 0}};  // style, width, px
    for (const auto& c : cases) {
        Wmf f;
        f.record(META_CREATEPENINDIRECT, Pen(c[0], c[1], 0))
            .record(META_SELECTOBJECT, Index(0))
            .record(META_LINETO, YX(150, 151));
        EXPECT_EQ(BodyOf(f), Line(0, 0, 10, 10, PenSelected("black", c[2])))
            << "style " << c[0] << " width " << c[1];
    }
}

// Heights are unsigned 16-bit values divided by the units per inch; a record that ends inside
// the face name reads the rest as zeros. META_SETBKMODE's reserved word is read when present.
// Both byte orders read alike.
TEST(WmfObjects, FontsAndBkModeInBothByteOrders) {
    // Inch (0: no placeable header, 1440), height, face name bytes, expected height.
    const int fonts[][4] = {
        {0, 2880, 32, 2}, {0, -200, 32, 45}, {720, 2880, 32, 4}, {0, 2880, 2, 2}};
    for (bool swapped : {false, true}) {
        std::optional<testutil::ForceBigEndian> order;
        if (swapped) order.emplace();
        for (const auto& c : fonts) {
            Player p((uint16_t)c[0]);
            p.play(META_CREATEFONTINDIRECT, Font((int16_t)c[1], c[2]), swapped)
                .play(META_SELECTOBJECT, Index(0), swapped);
            CStyleManager& style = p.converter.Writer().StyleManager();
            EXPECT_EQ(style.GetCurrentFontHeight(), c[3]) << "height " << c[1];
            EXPECT_EQ(style.GetCurrentFontFamily(), QStringLiteral("Arial").left(c[2]));
        }
        Record full(META_SETBKMODE, Bytes().u16(1).u16(7), swapped);
        Record shortened(META_SETBKMODE, Bytes().u16(2), swapped);
        const tagWMRSETBKMODE a = ReadWmfRecord(full.copy.data(), InitWMRSETBKMODE);
        const tagWMRSETBKMODE b = ReadWmfRecord(shortened.copy.data(), InitWMRSETBKMODE);
        EXPECT_EQ(std::make_pair(a.BkMode, a.Reserved), std::make_pair(uint16_t(1), uint16_t(7)));
        EXPECT_EQ(std::make_pair(b.BkMode, b.Reserved), std::make_pair(uint16_t(2), uint16_t(0)));
    }
}

// Each case follows a META_MOVETO and is followed by one with non-zero bytes, which clipped
// counts must never read as points.
TEST(WmfDrawing, RecordsMapToWriterElementsWithCountsClipped) {
    const QString rect = R"(<rect x="0" y="0" width="10" height="10" rx="0" ry="0" )" + kStyle;
    const QString circle = R"(<circle cx="10" cy = "10" r="10" )" + kStyle;
    const QString polyline = "\n\" stroke=\"none\" stroke-width=\"1\"  fill=\"none\" />\n";
    const QString polygon = "\n\" " + kStyle;
    const QString path = "\" fill-rule=\"evenodd\"" + kStyle;
    const struct {
        const char* name;
        uint16_t function;
        Bytes params;
        QString body;
    } cases[] = {
        {"line", META_LINETO, YX(300, 301), Line(10, 10, 20, 20)},
        {"rectangle", META_RECTANGLE, Edges(0, 16, 150, 151),
         R"(<rect x="0" y="1" width="10" height="9" rx="0" ry="0" )" + kStyle},
        {"short rectangle", META_RECTANGLE, Bytes().i16(151).i16(150), rect},
        {"circle", META_ELLIPSE, Edges(0, 1, 300, 301), circle},
        {"radii equal once halved", META_ELLIPSE, Edges(0, 1, 315, 301), circle},
        {"ellipse", META_ELLIPSE, Edges(0, 1, 300, 151),
         R"(<ellipse cx="10" cy = "5" rx = "10" ry = "5 " )" + kStyle},
        {"pattern blit", META_PATBLT, Blt(0, 1, 150, 151), rect},
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
    for (const auto& c : cases) {
        Wmf file;
        file.record(META_MOVETO, YX(150, 151))
            .record(c.function, c.params)
            .record(META_MOVETO, YX(0x0707, 0x0707));
        EXPECT_EQ(BodyOf(file), c.body) << c.name;
    }
}

// A file holding every record handled here converts alike in both byte orders, and none of
// its records reaches the record log.
TEST(WmfByteOrder, SwappedFileConvertsAlike) {
    Wmf f;
    f.record(META_SETWINDOWORG, YX(-30, 16))
        .record(META_SETBKMODE, Bytes().u16(1).u16(0))
        .record(META_CREATEPENINDIRECT, Pen(0x0201, 45, 0x00123456))
        .record(META_CREATEBRUSHINDIRECT, Brush(0, 0x00654321))
        .record(META_CREATEFONTINDIRECT, Font(-2880))
        .record(META_SELECTOBJECT, Index(0))
        .record(META_SELECTOBJECT, Index(1))
        .record(META_SELECTOBJECT, Index(2))
        .record(META_MOVETO, YX(-300, 451))
        .record(META_LINETO, YX(1234, -567))
        .record(META_POLYLINE, Poly(3, {{-15, 31}, {600, -700}, {3000, 3000}}))
        .record(META_POLYGON, Poly(4, {{1, 2}, {300, 2}, {300, 400}}))
        .record(META_POLYPOLYGON,
                PolyPoly({3, 0, 4}, {{0, 1}, {150, 1}, {0, 151}, {-300, 301}, {450, -301}}))
        .record(META_RECTANGLE, Edges(-150, 16, 1500, 1510))
        .record(META_ELLIPSE, Edges(-300, 1, 300, 151))
        .record(META_PATBLT, Blt(-150, 31, 1500, 751))
        .record(META_ARC, Edges(1, 2, 3, 4).append(Edges(5, 6, 7, 8)))
        .record(META_DELETEOBJECT, Index(1))
        .record(META_CREATEBRUSHINDIRECT, Brush(2, 0x000000FF, 3))
        .record(META_SELECTOBJECT, Index(1))
        .record(META_RECTANGLE, Edges(0, 1, 300, 301));
    QTemporaryDir dir;
    const QString logName = dir.filePath(QStringLiteral("records.txt"));
    EnableLogging(true, logName);
    const auto little = Convert(f.build());
    EnableLogging(false, QString());
    QFile log(logName);
    ASSERT_TRUE(log.open(QIODevice::ReadOnly));
    EXPECT_EQ(log.readAll().toStdString(), "#Start Of File\n\n\nEnd of File\n\n");
    EXPECT_TRUE(little.svg.contains(QStringLiteral("<path d=\"")));
    testutil::ForceBigEndian bigEndian;
    EXPECT_EQ(Convert(f.build(true, true)).svg, little.svg);
}

// Records of every short length filled with 0xFF, in both byte orders: counts of 65535 and
// extreme coordinates neither read outside the record nor stop the conversion.
TEST(WmfRobustness, ShortAndSaturatedRecords) {
    for (bool swapped : {false, true}) {
        std::optional<testutil::ForceBigEndian> order;
        if (swapped) order.emplace();
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
    testutil::ForceBigEndian bigEndian;
    for (unsigned int size = 2; size <= 40; size += 2) {
        std::vector<unsigned char> src(size, 0xFF);
        if (size > 6) src[6] = 0x03;
        records::ScratchCopy dst(src.data(), size);
        InitWMRPOLYLINE(reinterpret_cast<tagWMRPOLYLINE*>(dst.data()), src.data(), size);
        InitWMRPOLYPOLYLINE(reinterpret_cast<tagWMRPOLYPOLYLINE*>(dst.data()), src.data(), size);
    }
}
