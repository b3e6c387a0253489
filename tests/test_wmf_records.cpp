// WMF object and line-art records: the handle table, pens and fonts, the drawing records,
// malformed counts, placeable and byte-swapped files, coordinate mapping.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <optional>

#include "byteorder/BEndTools.h"
#include "byteorder/WmfNormalisers.h"
#include "svgmodule.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"
#include "wmf/Wmf2SVG.h"

using mfb::Bytes;
using mfb::Wmf;
using testutil::Convert;

// The function numbers of the records handled here.
const uint16_t kHandled[] = {0x0102, 0x012D, 0x01F0, 0x0213, 0x0214, 0x02FA, 0x02FB, 0x02FC,
                             0x0324, 0x0325, 0x0418, 0x041B, 0x0538, 0x061D, 0x0817};

// Compares texts as 8-bit strings, so that a failure shows them.
#define EXPECT_TEXT(actual, expected) EXPECT_EQ((actual).toStdString(), (expected).toStdString())

namespace {

// --- record parameters (WMF stores y before x, and rectangles bottom-right first) ----------
Bytes Pen(uint16_t style, int16_t width, uint32_t colour) {
    return Bytes().u16(style).i16(width).i16(0).u32(colour);
}
Bytes Brush(uint16_t style, uint32_t colour, uint16_t hatch = 0) {
    return Bytes().u16(style).u32(colour).u16(hatch);
}
// A font object; `nameBytes` ends the record inside the face name.
Bytes Font(int16_t height, int nameBytes = 32) {
    return Bytes().i16(height).i16(0).i16(0).i16(0).i16(400).zeros(8).latin1("Arial", nameBytes);
}
Bytes Index(uint16_t slot) {
    return Bytes().u16(slot);
}
Bytes YX(int16_t x, int16_t y) {
    return Bytes().i16(y).i16(x);
}
Bytes Edges(int16_t l, int16_t t, int16_t r, int16_t b) {
    return Bytes().i16(b).i16(r).i16(t).i16(l);
}
Bytes Blt(int16_t x, int16_t y, int16_t w, int16_t h) {
    return Bytes().u32(0x00F00021).i16(h).i16(w).i16(y).i16(x);
}
Bytes Poly(uint16_t declared, std::initializer_list<std::pair<int, int>> points) {
    return Bytes().u16(declared).append(mfb::Points16(points));
}
Bytes PolyPoly(std::initializer_list<uint16_t> counts,
               std::initializer_list<std::pair<int, int>> points, int declared = -1) {
    Bytes b;
    b.u16(declared >= 0 ? (uint16_t)declared : (uint16_t)counts.size());
    for (uint16_t c : counts) b.u16(c);
    return b.append(mfb::Points16(points));
}

// --- expected output ---------------------------------------------------------------------
const QString kStyle = QStringLiteral(" stroke=\"black\" stroke-width=\"1\" fill=\"none\"");
const QString kPenStyle = QStringLiteral("stroke=\"none\" stroke-width=\"1\"  fill=\"none\" ");

// The current style once a round-capped pen is selected over the default brush.
QString PenSelected(const char* colour, int width = 1) {
    return QString::asprintf(
        " stroke=\"%s\" stroke-width=\"%d\" \n stroke-linecap = \"round\" "
        "stroke-linejoin = \"round\"  fill=\"white\"",
        colour, width);
}
QString Line(int x1, int y1, int x2, int y2, const QString& style = kStyle) {
    return QString::asprintf("<line x1=\"%d\" y1 = \"%d\" x2 =\"%d\" y2=\"%d\" ", x1, y1, x2, y2) +
           style + "/>\n";
}
QString Rect(int x, int y, int w, int h) {
    return QString::asprintf(
               "<rect x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" rx=\"0\" ry=\"0\" ", x, y, w,
               h) +
           kStyle + "/>\n";
}
QString Circle(int cx, int cy, int r) {
    return QString::asprintf("<circle cx=\"%d\" cy = \"%d\" r=\"%d\" ", cx, cy, r) + kStyle +
           "/>\n";
}
QString Ellipse(int cx, int cy, int rx, int ry) {
    return QString::asprintf("<ellipse cx=\"%d\" cy = \"%d\" rx = \"%d\" ry = \"%d \" ", cx, cy, rx,
                             ry) +
           kStyle + "/>\n";
}
QString PolyLine(const char* points) {
    return QStringLiteral("<polyline points=\"%1\n\" ").arg(points) + kPenStyle + "/>\n";
}
QString Polygon(const char* points) {
    return QStringLiteral("<polygon points=\"%1\n\" ").arg(points) + kStyle + "/>\n";
}
QString Path(const char* data) {
    return QStringLiteral("<path d=\"%1\" fill-rule=\"evenodd\"").arg(data) + kStyle + "/>\n";
}

QString BodyOf(const Wmf& file) {
    const auto r = Convert(file.build());
    EXPECT_EQ(r.status, 2);
    return testutil::Body(r.svg);
}

// A converter fed record by record through its dispatcher, so that tests can inspect its state.
struct Player {
    explicit Player(uint16_t inch = 0, int16_t right = 0, int16_t bottom = 0) {
        _PlaceableMetaHeader header = {};
        header.BoundingBox = tagRECT16{0, 0, right, bottom};
        header.Inch = inch;
        converter.InitializeCoordinates(inch != 0, header);
        converter.InitWMFRecHandlers();
    }
    Player& play(uint16_t function, const Bytes& params, bool swapped = false) {
        const QByteArray bytes =
            Bytes().u32(3 + params.size() / 2).u16(function).append(params).toByteArray(swapped);
        records::ScratchCopy copy(reinterpret_cast<const unsigned char*>(bytes.constData()),
                                  (size_t)bytes.size());
        converter.HandleWMFRecordData(copy.data(), (unsigned int)bytes.size(), log);
        return *this;
    }
    CStyleManager& style() { return converter.Writer().StyleManager(); }

    CLogger log;
    WMF2SVGConverter converter;
};

}  // namespace

TEST(WmfObjects, CreationTakesTheLowestFreeSlot) {
    Wmf f;
    f.record(0x00F7, Bytes().u16(0x0300).u16(0))                      // palette: takes no slot
        .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x000000FF))  // 0
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(0, 0x0000FF00))  // 1
        .record(mfb::META_CREATEFONTINDIRECT, Font(200))              // 2
        .record(mfb::META_DELETEOBJECT, Index(1))
        .record(mfb::META_DELETEOBJECT, Index(9))                     // never created
        .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x00FF0000))  // 1
        .record(mfb::META_DELETEOBJECT, Index(0))
        .record(mfb::META_DELETEOBJECT, Index(2))
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(0, 0x0000FFFF))  // 0
        .record(mfb::META_CREATEFONTINDIRECT, Font(200))              // 2
        .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x00808080))  // 3
        .record(mfb::META_SELECTOBJECT, Index(1))
        .record(mfb::META_LINETO, YX(150, 151))
        .record(mfb::META_SELECTOBJECT, Index(3))
        .record(mfb::META_LINETO, YX(300, 301))
        .record(mfb::META_SELECTOBJECT, Index(0))
        .record(mfb::META_LINETO, YX(450, 451));
    QString yellowBrush = PenSelected("#808080");
    yellowBrush.replace(QStringLiteral(" fill=\"white\""), QStringLiteral("  fill=\"#ffff00\"\n"));
    EXPECT_TEXT(BodyOf(f), Line(0, 0, 10, 10, PenSelected("#0000ff")) +
                               Line(10, 10, 20, 20, PenSelected("#808080")) +
                               Line(20, 20, 30, 30, yellowBrush));
}

TEST(WmfObjects, PenWidthsAreDividedByTheScale) {
    const struct {
        uint16_t style;
        int16_t width;
        int expected;
    } cases[] = {{0, 0, 1}, {0, 14, 1}, {0, 15, 1}, {0, 30, 2}, {0, 44, 2}, {5, 30, 0}};
    for (const auto& c : cases) {
        Wmf f;
        f.record(mfb::META_CREATEPENINDIRECT, Pen(c.style, c.width, 0))
            .record(mfb::META_SELECTOBJECT, Index(0))
            .record(mfb::META_LINETO, YX(150, 151));
        EXPECT_TEXT(BodyOf(f), Line(0, 0, 10, 10, PenSelected("black", c.expected)))
            << "style " << c.style << " width " << c.width;
    }
}

// Heights are unsigned 16-bit values divided by the units per inch; a record that ends inside
// the face name reads the rest as zeros. Both byte orders give the same font.
TEST(WmfObjects, FontHeightsAndShortFaceNames) {
    const struct {
        uint16_t inch;  // 0: no placeable header (1440)
        int16_t height;
        int nameBytes;
        int expected;
        const char* family;
    } cases[] = {{0, 2880, 32, 2, "Arial"},
                 {0, 200, 32, 0, "Arial"},
                 {0, -200, 32, 45, "Arial"},
                 {720, 2880, 32, 4, "Arial"},
                 {0, 2880, 2, 2, "Ar"}};
    for (bool swapped : {false, true}) {
        std::optional<testutil::ForceBigEndian> order;
        if (swapped) order.emplace();
        for (const auto& c : cases) {
            Player p(c.inch, 1000, 1000);
            p.play(mfb::META_CREATEFONTINDIRECT, Font(c.height, c.nameBytes), swapped)
                .play(mfb::META_SELECTOBJECT, Index(0), swapped);
            EXPECT_EQ(p.style().GetCurrentFontHeight(), c.expected) << "height " << c.height;
            EXPECT_TEXT(p.style().GetCurrentFontFamily(), QString(c.family));
        }
    }
}

// The mode reaches the writer with the reserved word as its high half; the mode itself only
// shows in text output, so the record is checked as the handler reads it.
TEST(WmfObjects, BkModeCarriesTheReservedWord) {
    const struct {
        Bytes params;
        uint16_t mode, reserved;
    } cases[] = {
        {Bytes().u16(2).u16(0), 2, 0}, {Bytes().u16(1).u16(7), 1, 7}, {Bytes().u16(1), 1, 0}};
    for (bool swapped : {false, true}) {
        std::optional<testutil::ForceBigEndian> order;
        if (swapped) order.emplace();
        for (const auto& c : cases) {
            const QByteArray bytes = Bytes()
                                         .u32(3 + c.params.size() / 2)
                                         .u16(mfb::META_SETBKMODE)
                                         .append(c.params)
                                         .toByteArray(swapped);
            records::ScratchCopy copy(reinterpret_cast<const unsigned char*>(bytes.constData()),
                                      (size_t)bytes.size());
            const tagWMRSETBKMODE r = ReadWmfRecord(copy.data(), InitWMRSETBKMODE);
            EXPECT_EQ(r.BkMode, c.mode);
            EXPECT_EQ(r.Reserved, c.reserved);
        }
    }
}

// All records handled here stay out of the record log; META_SETTEXTALIGN is named there.
TEST(WmfObjects, SetTextAlignIsTheOnlyRecordLogged) {
    QTemporaryDir dir;
    const QString name = dir.filePath(QStringLiteral("records.txt"));
    Wmf f;
    f.record(mfb::META_SETTEXTALIGN, Bytes().u16(24).u16(0));
    for (uint16_t function : kHandled) f.record(function, Bytes().zeros(8));
    EnableLogging(true, name);
    Convert(f.build());
    EnableLogging(false, QString());
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll().toStdString(),
              "#Start Of File\n\nMETA_SETTEXTALIGN           \n\nEnd of File\n\n");
}

struct DrawingCase {
    const char* name;
    Wmf file;
    QString body;
};

TEST(WmfDrawing, RecordsMapToWriterElements) {
    const DrawingCase cases[] = {
        {"move, line",
         Wmf().record(mfb::META_MOVETO, YX(150, 151)).record(mfb::META_LINETO, YX(300, 301)),
         Line(10, 10, 20, 20)},
        {"rectangle", Wmf().record(mfb::META_RECTANGLE, Edges(0, 16, 150, 151)), Rect(0, 1, 10, 9)},
        {"circle", Wmf().record(mfb::META_ELLIPSE, Edges(0, 1, 300, 301)), Circle(10, 10, 10)},
        {"radii equal once halved", Wmf().record(mfb::META_ELLIPSE, Edges(0, 1, 315, 301)),
         Circle(10, 10, 10)},
        {"ellipse", Wmf().record(mfb::META_ELLIPSE, Edges(0, 1, 300, 151)), Ellipse(10, 5, 10, 5)},
        {"pattern blit", Wmf().record(mfb::META_PATBLT, Blt(0, 1, 150, 151)), Rect(0, 0, 10, 10)},
        {"polyline", Wmf().record(mfb::META_POLYLINE, Poly(3, {{0, 1}, {150, 16}, {300, 301}})),
         PolyLine("0,0 10,1 20,20 ")},
        {"polygon", Wmf().record(mfb::META_POLYGON, Poly(3, {{0, 1}, {150, 16}, {300, 301}})),
         Polygon("0,0 10,1 20,20 ")},
        {"polypolygon",
         Wmf().record(
             mfb::META_POLYPOLYGON,
             PolyPoly(
                 {3, 4},
                 {{0, 1}, {150, 1}, {0, 151}, {300, 301}, {450, 301}, {450, 451}, {300, 451}})),
         Path(" M0,0  L10,0  L0,10  Z M20,20  L30,20  L30,30  L20,30  Z")},
        {"arc", Wmf().record(mfb::META_ARC, Bytes().zeros(16)), QString()},
    };
    for (const DrawingCase& c : cases) EXPECT_TEXT(BodyOf(c.file), c.body) << c.name;
}

// Declared counts are cut to the record; the record after each case (a META_MOVETO with
// non-zero bytes) is never read as points.
TEST(WmfDrawing, CountsAreClippedToTheRecord) {
    const DrawingCase cases[] = {
        {"more points declared", Wmf().record(mfb::META_POLYLINE, Poly(5, {{0, 1}, {150, 16}})),
         PolyLine("0,0 10,1 ")},
        {"fewer points declared",
         Wmf().record(mfb::META_POLYGON, Poly(2, {{0, 1}, {150, 16}, {300, 301}})),
         Polygon("0,0 10,1 ")},
        {"no points", Wmf().record(mfb::META_POLYLINE, Poly(3, {})), PolyLine("")},
        {"no count", Wmf().record(mfb::META_POLYGON, Bytes()), Polygon("")},
        {"points run out",
         Wmf().record(mfb::META_POLYPOLYGON,
                      PolyPoly({3, 4}, {{0, 1}, {150, 1}, {0, 151}, {300, 301}, {450, 301}})),
         Path(" M0,0  L10,0  L0,10  Z M20,20  L30,20  Z")},
        {"empty polygon",
         Wmf().record(mfb::META_POLYPOLYGON, PolyPoly({2, 0, 1}, {{0, 1}, {150, 1}, {300, 301}})),
         Path(" M0,0  L10,0  Z M20,20  Z")},
        {"huge count", Wmf().record(mfb::META_POLYPOLYGON, PolyPoly({65535}, {{0, 1}, {150, 1}})),
         Path(" M0,0  L10,0  Z")},
        {"counts past the end", Wmf().record(mfb::META_POLYPOLYGON, PolyPoly({3}, {}, 40)),
         QString()},
        {"short rectangle", Wmf().record(mfb::META_RECTANGLE, Bytes().i16(151).i16(150)),
         Rect(0, 0, 10, 10)},
    };
    for (const DrawingCase& c : cases) {
        Wmf file = c.file;
        file.record(mfb::META_MOVETO, YX(0x0707, 0x0707));
        EXPECT_TEXT(BodyOf(file), c.body) << c.name;
    }
}

// Positions are divided by Inch / 96 and stretched by box / window extent; pen widths are
// only divided.
TEST(WmfDrawing, PlaceableFileAppliesTheWindowExtent) {
    const struct {
        int16_t extX, extY;
        int x, y;
    } cases[] = {{2880, 1440, 192, 96}, {1440, 720, 384, 192}};
    for (const auto& c : cases) {
        Wmf f;
        f.placeable(0, 0, 2880, 1440, 1440)
            .record(mfb::META_SETWINDOWORG, YX(0, 0))
            .record(mfb::META_SETWINDOWEXT, YX(c.extX, c.extY))
            .record(mfb::META_CREATEPENINDIRECT, Pen(0, 30, 0))
            .record(mfb::META_SELECTOBJECT, Index(0))
            .record(mfb::META_LINETO, YX(2880, 1440));
        EXPECT_TEXT(Convert(f.build()).svg,
                    testutil::Document(192, 96, Line(0, 0, c.x, c.y, PenSelected("black", 2))));
    }
}

TEST(WmfByteOrder, SwappedFileConvertsAlike) {
    Wmf f;
    f.record(mfb::META_SETWINDOWORG, YX(-30, 16))
        .record(mfb::META_SETBKMODE, Bytes().u16(1).u16(0))
        .record(mfb::META_CREATEPENINDIRECT, Pen(0x0201, 45, 0x00123456))
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(0, 0x00654321))
        .record(mfb::META_CREATEFONTINDIRECT, Font(-2880))
        .record(mfb::META_SELECTOBJECT, Index(0))
        .record(mfb::META_SELECTOBJECT, Index(1))
        .record(mfb::META_SELECTOBJECT, Index(2))
        .record(mfb::META_MOVETO, YX(-300, 451))
        .record(mfb::META_LINETO, YX(1234, -567))
        .record(mfb::META_POLYLINE, Poly(3, {{-15, 31}, {600, -700}, {3000, 3000}}))
        .record(mfb::META_POLYGON, Poly(4, {{1, 2}, {300, 2}, {300, 400}}))
        .record(mfb::META_POLYPOLYGON,
                PolyPoly({3, 0, 4}, {{0, 1}, {150, 1}, {0, 151}, {-300, 301}, {450, -301}}))
        .record(mfb::META_RECTANGLE, Edges(-150, 16, 1500, 1510))
        .record(mfb::META_ELLIPSE, Edges(-300, 1, 300, 151))
        .record(mfb::META_PATBLT, Blt(-150, 31, 1500, 751))
        .record(mfb::META_ARC, Edges(1, 2, 3, 4).append(Edges(5, 6, 7, 8)))
        .record(mfb::META_DELETEOBJECT, Index(1))
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(2, 0x000000FF, 3))
        .record(mfb::META_SELECTOBJECT, Index(1))
        .record(mfb::META_RECTANGLE, Edges(0, 1, 300, 301));
    const auto little = Convert(f.build());
    EXPECT_TRUE(little.svg.contains(QStringLiteral("<path d=\"")));
    testutil::ForceBigEndian bigEndian;
    EXPECT_TEXT(Convert(f.build(true, true)).svg, little.svg);
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

TEST(WmfCoordinates, MapXAndMapY) {
    const struct {
        const char* name;
        uint16_t inch;  // 0: no placeable header
        int16_t right, bottom, orgX, orgY, extX, extY, x, y, mappedX, mappedY;
    } cases[] = {
        // origin -1 means "no META_SETWINDOWORG": the origin stays (0, 1); extent 0 likewise.
        {"default origin", 0, 0, 0, -1, -1, 0, 0, 30, 45, 2, 2},
        {"window origin", 0, 0, 0, 100, 100, 0, 0, 100, 100, 0, 0},
        {"toward zero", 0, 0, 0, 0, 0, 0, 0, -29, -29, -1, -1},
        {"difference wraps", 0, 0, 0, -2, -2, 0, 0, 32767, 32767, -2184, -2184},
        {"extent is the box", 1440, 2880, 1440, 0, 0, 2880, 1440, 2880, 1440, 192, 96},
        {"extent half the box", 1440, 2880, 1440, 0, 0, 1440, 720, 2880, 1440, 384, 192},
        {"out of range", 96, 30000, 30000, 0, 0, 1, 1, 2, 1, -32768, 30000},
    };
    for (const auto& c : cases) {
        Player p(c.inch, c.right, c.bottom);
        if (c.orgX != -1) p.play(mfb::META_SETWINDOWORG, YX(c.orgX, c.orgY));
        if (c.extX != 0) p.play(mfb::META_SETWINDOWEXT, YX(c.extX, c.extY));
        WMF2SVGConverter& converter = p.converter;
        EXPECT_EQ(converter.MapX(c.x), c.mappedX) << c.name;
        EXPECT_EQ(converter.MapY(c.y), c.mappedY) << c.name;
    }
}
