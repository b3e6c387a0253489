// WMF object and line-art records: the handle table, pens, brushes and fonts, the drawing
// records, malformed counts, placeable files and byte-swapped files.
#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <cstring>
#include <optional>

#include "api/Logger.h"
#include "byteorder/BEndTools.h"
#include "byteorder/RecordReader.h"
#include "byteorder/WmfNormalisers.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"
#include "wmf/Wmf2SVG.h"

using mfb::Bytes;
using mfb::Wmf;
using testutil::Body;
using testutil::Convert;
using testutil::Document;

// Compares texts as 8-bit strings, so that a failure shows them.
#define EXPECT_TEXT(actual, expected) EXPECT_EQ((actual).toStdString(), (expected).toStdString())

namespace {

// --- record parameters ---------------------------------------------------------------------

Bytes Pen(uint16_t style, int16_t width, uint32_t colour) {
    return Bytes().u16(style).i16(width).i16(0).u32(colour);
}

Bytes Brush(uint16_t style, uint32_t colour, uint16_t hatch = 0) {
    return Bytes().u16(style).u32(colour).u16(hatch);
}

// A font object; `nameBytes` cuts the record inside the face name.
Bytes Font(int16_t height, const QByteArray& name = "Arial", int nameBytes = 32) {
    Bytes b;
    b.i16(height).i16(0).i16(0).i16(0).i16(400);
    for (int i = 0; i < 8; ++i) b.u8(0);
    return b.latin1(name, nameBytes);
}

Bytes Index(uint16_t slot) {
    return Bytes().u16(slot);
}

// META_MOVETO, META_LINETO, META_SETWINDOWORG and META_SETWINDOWEXT store y before x.
Bytes YX(int16_t x, int16_t y) {
    return Bytes().i16(y).i16(x);
}

Bytes Edges(int16_t left, int16_t top, int16_t right, int16_t bottom) {
    return Bytes().i16(bottom).i16(right).i16(top).i16(left);
}

Bytes PatBlt(int16_t x, int16_t y, int16_t width, int16_t height) {
    return Bytes().u32(0x00F00021).i16(height).i16(width).i16(y).i16(x);
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

// --- expected output -----------------------------------------------------------------------

const QString kDefaultStyle = QStringLiteral(" stroke=\"black\" stroke-width=\"1\" fill=\"none\"");
// The pen part of the style before any pen is selected, as polylines use it.
const QString kDefaultPenStyle =
    QStringLiteral("stroke=\"none\" stroke-width=\"1\"  fill=\"none\" ");

// The text of a solid pen with round caps and joins.
QString PenText(const QString& colour, const QString& width) {
    return QStringLiteral(
               " stroke=\"%1\" stroke-width=\"%2\" \n stroke-linecap = \"round\" "
               "stroke-linejoin = \"round\" ")
        .arg(colour, width);
}

// The current style once that pen is selected over the default brush.
QString PenSelected(const QString& colour, const QString& width = QStringLiteral("1")) {
    return PenText(colour, width) + QStringLiteral(" fill=\"white\"");
}

QString Line(int x1, int y1, int x2, int y2, const QString& style) {
    return QStringLiteral("<line x1=\"%1\" y1 = \"%2\" x2 =\"%3\" y2=\"%4\" ")
               .arg(x1)
               .arg(y1)
               .arg(x2)
               .arg(y2) +
           style + QStringLiteral("/>\n");
}

QString Rect(int x, int y, int w, int h, const QString& style = kDefaultStyle) {
    return QStringLiteral("<rect x=\"%1\" y=\"%2\" width=\"%3\" height=\"%4\" rx=\"0\" ry=\"0\" ")
               .arg(x)
               .arg(y)
               .arg(w)
               .arg(h) +
           style + QStringLiteral("/>\n");
}

QString Circle(int cx, int cy, int r) {
    return QStringLiteral("<circle cx=\"%1\" cy = \"%2\" r=\"%3\" ").arg(cx).arg(cy).arg(r) +
           kDefaultStyle + QStringLiteral("/>\n");
}

QString Ellipse(int cx, int cy, int rx, int ry) {
    return QStringLiteral("<ellipse cx=\"%1\" cy = \"%2\" rx = \"%3\" ry = \"%4 \" ")
               .arg(cx)
               .arg(cy)
               .arg(rx)
               .arg(ry) +
           kDefaultStyle + QStringLiteral("/>\n");
}

// `points` is the points text without its closing line feed, e.g. "0,0 10,1 ".
QString PolyLine(const QString& points) {
    return QStringLiteral("<polyline points=\"") + points + QStringLiteral("\n\" ") +
           kDefaultPenStyle + QStringLiteral("/>\n");
}

QString Polygon(const QString& points) {
    return QStringLiteral("<polygon points=\"") + points + QStringLiteral("\n\" ") + kDefaultStyle +
           QStringLiteral("/>\n");
}

QString Path(const QString& data) {
    return QStringLiteral("<path d=\"") + data + QStringLiteral("\" fill-rule=\"evenodd\"") +
           kDefaultStyle + QStringLiteral("/>\n");
}

// --- running a converter directly ----------------------------------------------------------

// Converts a built metafile with a converter of its own, so that its style state can be
// inspected afterwards; `log` receives the record log.
class Conversion {
  public:
    explicit Conversion(const QByteArray& file, CLogger* log = nullptr) : m_bytes(file) {
        auto* data = reinterpret_cast<unsigned char*>(m_bytes.data());
        _PlaceableMetaHeader placeable;
        std::memcpy(&placeable, data, sizeof placeable);
        InitPlaceableMetaHeader(placeable);
        const bool isPlaceable = placeable.Key == PLACEABLE_KEY;
        m_converter.InitializeCoordinates(isPlaceable ? 1 : 0, placeable);
        _WindowsMetaHeader header;
        std::memcpy(&header, data + (isPlaceable ? 22 : 0), sizeof header);
        InitWindowsMetaHeader(header);
        m_converter.ConvertWMFToSVG(data + m_converter.HeaderBytes(), (unsigned long)file.size(),
                                    header.mtMaxRecord, log ? *log : m_log);
        svg = m_converter.GetOutSVG();
    }
    CStyleManager& Style() { return m_converter.Writer().StyleManager(); }

    QString svg;

  private:
    QByteArray m_bytes;
    CLogger m_log;
    WMF2SVGConverter m_converter;
};

QString BodyOf(const Wmf& file) {
    const auto r = Convert(file.build());
    EXPECT_EQ(r.status, 2);
    return Body(r.svg);
}

}  // namespace

// --- object records --------------------------------------------------------------------------

TEST(WmfObjects, CreationTakesTheLowestFreeSlot) {
    Wmf f;
    f.record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x000000FF))     // slot 0
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(0, 0x0000FF00))  // slot 1
        .record(mfb::META_CREATEFONTINDIRECT, Font(200))              // slot 2
        .record(mfb::META_DELETEOBJECT, Index(1))                     //
        .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x00FF0000))  // slot 1
        .record(mfb::META_DELETEOBJECT, Index(0))                     //
        .record(mfb::META_DELETEOBJECT, Index(2))                     //
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(0, 0x0000FFFF))  // slot 0
        .record(mfb::META_CREATEFONTINDIRECT, Font(200))              // slot 2
        .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x00808080))  // slot 3
        .record(mfb::META_SELECTOBJECT, Index(1))
        .record(mfb::META_LINETO, YX(150, 151))
        .record(mfb::META_SELECTOBJECT, Index(3))
        .record(mfb::META_LINETO, YX(300, 301))
        .record(mfb::META_SELECTOBJECT, Index(0))
        .record(mfb::META_LINETO, YX(450, 451));
    const QString gray = PenText(QStringLiteral("#808080"), QStringLiteral("1"));
    EXPECT_TEXT(BodyOf(f), Line(0, 0, 10, 10, PenSelected(QStringLiteral("#0000ff"))) +
                               Line(10, 10, 20, 20, gray + QStringLiteral(" fill=\"white\"")) +
                               Line(20, 20, 30, 30, gray + QStringLiteral("  fill=\"#ffff00\"\n")));
}

TEST(WmfObjects, OnlyCreatedObjectsTakeSlots) {
    const QString red = PenSelected(QStringLiteral("#ff0000"));
    const QString nothingSelected =
        QStringLiteral("stroke=\"none\" stroke-width=\"1\"  fill=\"white\"");
    // A palette (object 0 for the file) takes no slot here, so the pen is slot 0.
    Wmf palette;
    palette.record(0x00F7, Bytes().u16(0x0300).u16(1).u32(0x00FF00FF))
        .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x000000FF))
        .record(mfb::META_SELECTOBJECT, Index(1))
        .record(mfb::META_LINETO, YX(150, 151))
        .record(mfb::META_SELECTOBJECT, Index(0))
        .record(mfb::META_LINETO, YX(300, 301));
    EXPECT_TEXT(BodyOf(palette), Line(0, 0, 10, 10, nothingSelected) + Line(10, 10, 20, 20, red));

    // Deleting a slot that was never created frees nothing: the next object is slot 1.
    Wmf unknownDelete;
    unknownDelete.record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x00FF0000))
        .record(mfb::META_DELETEOBJECT, Index(5))
        .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0x000000FF))
        .record(mfb::META_SELECTOBJECT, Index(1))
        .record(mfb::META_LINETO, YX(150, 151));
    EXPECT_TEXT(BodyOf(unknownDelete), Line(0, 0, 10, 10, red));
}

TEST(WmfObjects, PenWidthsAreDividedByTheScale) {
    struct Case {
        uint16_t style;
        int16_t width;
        const char* expected;
    } cases[] = {
        {0, 0, "1"}, {0, 14, "1"}, {0, 15, "1"}, {0, 30, "2"}, {0, 44, "2"}, {5, 30, "0"},
    };
    for (const Case& c : cases) {
        Wmf f;
        f.record(mfb::META_CREATEPENINDIRECT, Pen(c.style, c.width, 0))
            .record(mfb::META_SELECTOBJECT, Index(0))
            .record(mfb::META_LINETO, YX(150, 151));
        EXPECT_TEXT(
            BodyOf(f),
            Line(0, 0, 10, 10, PenSelected(QStringLiteral("black"), QLatin1String(c.expected))))
            << "style " << c.style << " width " << c.width;
    }
}

TEST(WmfObjects, FontSizesAreDividedByTheUnitsPerInch) {
    struct Case {
        uint16_t inch;  // 0: no placeable header, 1440 units per inch
        int16_t height;
        int expected;
    } cases[] = {
        {0, 2880, 2}, {0, 200, 0}, {0, -200, 45}, {0, 1439, 0}, {720, 2880, 4},
    };
    for (const Case& c : cases) {
        Wmf f;
        if (c.inch) f.placeable(0, 0, 1000, 1000, c.inch);
        f.record(mfb::META_CREATEFONTINDIRECT, Font(c.height))
            .record(mfb::META_SELECTOBJECT, Index(0));
        Conversion run(f.build());
        EXPECT_EQ(run.Style().GetCurrentFontHeight(), c.expected) << "height " << c.height;
        EXPECT_TEXT(run.Style().GetCurrentFontFamily(), QStringLiteral("Arial"));
    }
}

TEST(WmfObjects, ShortFontRecordReadsNoBytesOfTheNextRecord) {
    // The record ends two bytes into the face name; the next record's bytes are not part of it.
    Wmf f;
    f.record(mfb::META_CREATEFONTINDIRECT, Font(2880, "Arial", 2))
        .record(mfb::META_SELECTOBJECT, Index(0))
        .record(mfb::META_MOVETO, YX(0x4141, 0x4141));
    Conversion run(f.build());
    EXPECT_TEXT(run.Style().GetCurrentFontFamily(), QStringLiteral("Ar"));
    EXPECT_EQ(run.Style().GetCurrentFontHeight(), 2);
}

TEST(WmfObjects, BkModeRecordCarriesItsReservedWord) {
    const struct {
        Bytes params;
        uint16_t mode;
        uint16_t reserved;
    } cases[] = {
        {Bytes().u16(2).u16(0), 2, 0},
        {Bytes().u16(1).u16(7), 1, 7},
        {Bytes().u16(1), 1, 0},  // without the reserved word
    };
    for (bool bigEndian : {false, true}) {
        std::optional<testutil::ForceBigEndian> order;
        if (bigEndian) order.emplace();
        for (const auto& c : cases) {
            const QByteArray bytes = Bytes()
                                         .u32(3 + c.params.size() / 2)
                                         .u16(mfb::META_SETBKMODE)
                                         .append(c.params)
                                         .toByteArray(bigEndian);
            records::ScratchCopy copy(reinterpret_cast<const unsigned char*>(bytes.constData()),
                                      (size_t)bytes.size());
            const tagWMRSETBKMODE r = ReadWmfRecord(copy.data(), InitWMRSETBKMODE);
            EXPECT_EQ(r.BkMode, c.mode);
            EXPECT_EQ(r.Reserved, c.reserved);
        }
    }
}

// Every record type handled here stays out of the record log; META_SETTEXTALIGN is named.
TEST(WmfObjects, SetTextAlignIsTheOnlyRecordLogged) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString name = dir.filePath(QStringLiteral("records.txt"));
    {
        CLogger log;
        log.setLogging(true, name);
        Wmf f;
        f.record(mfb::META_SETBKMODE, Bytes().u16(1).u16(0))
            .record(mfb::META_SETTEXTALIGN, Bytes().u16(24).u16(0))
            .record(mfb::META_CREATEPENINDIRECT, Pen(0, 15, 0))
            .record(mfb::META_CREATEBRUSHINDIRECT, Brush(0, 0))
            .record(mfb::META_CREATEFONTINDIRECT, Font(200))
            .record(mfb::META_SELECTOBJECT, Index(0))
            .record(mfb::META_DELETEOBJECT, Index(1))
            .record(mfb::META_MOVETO, YX(1, 1))
            .record(mfb::META_LINETO, YX(1, 1))
            .record(mfb::META_POLYLINE, Poly(1, {{1, 1}}))
            .record(mfb::META_POLYGON, Poly(1, {{1, 1}}))
            .record(mfb::META_POLYPOLYGON, PolyPoly({1}, {{1, 1}}))
            .record(mfb::META_RECTANGLE, Edges(0, 0, 1, 1))
            .record(mfb::META_ELLIPSE, Edges(0, 0, 1, 1))
            .record(mfb::META_PATBLT, PatBlt(0, 0, 1, 1))
            .record(mfb::META_ARC, Bytes().zeros(16));
        Conversion run(f.build(), &log);
    }
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("#Start Of File\n\nMETA_SETTEXTALIGN           \n"
                                         "\nEnd of File\n\n\n"));
}

// --- drawing records ---------------------------------------------------------------------------

struct DrawingCase {
    const char* name;
    Wmf file;
    QString body;
};

TEST(WmfDrawing, RecordsMapToWriterElements) {
    const DrawingCase cases[] = {
        {"move then line",
         Wmf().record(mfb::META_MOVETO, YX(150, 151)).record(mfb::META_LINETO, YX(300, 301)),
         Line(10, 10, 20, 20, kDefaultStyle)},
        {"negative coordinates truncate toward zero",
         Wmf().record(mfb::META_MOVETO, YX(-29, -14)).record(mfb::META_LINETO, YX(0, 1)),
         Line(-1, -1, 0, 0, kDefaultStyle)},
        {"rectangle", Wmf().record(mfb::META_RECTANGLE, Edges(0, 16, 150, 151)), Rect(0, 1, 10, 9)},
        {"circle", Wmf().record(mfb::META_ELLIPSE, Edges(0, 1, 300, 301)), Circle(10, 10, 10)},
        {"radii equal after truncation", Wmf().record(mfb::META_ELLIPSE, Edges(0, 1, 315, 301)),
         Circle(10, 10, 10)},
        {"ellipse", Wmf().record(mfb::META_ELLIPSE, Edges(0, 1, 300, 151)), Ellipse(10, 5, 10, 5)},
        {"pattern blit maps its size as a position",
         Wmf().record(mfb::META_PATBLT, PatBlt(0, 1, 150, 151)), Rect(0, 0, 10, 10)},
        {"polyline", Wmf().record(mfb::META_POLYLINE, Poly(3, {{0, 1}, {150, 16}, {300, 301}})),
         PolyLine(QStringLiteral("0,0 10,1 20,20 "))},
        {"polygon", Wmf().record(mfb::META_POLYGON, Poly(3, {{0, 1}, {150, 16}, {300, 301}})),
         Polygon(QStringLiteral("0,0 10,1 20,20 "))},
        {"polypolygon of 3 and 4 points",
         Wmf().record(
             mfb::META_POLYPOLYGON,
             PolyPoly(
                 {3, 4},
                 {{0, 1}, {150, 1}, {0, 151}, {300, 301}, {450, 301}, {450, 451}, {300, 451}})),
         Path(QStringLiteral(" M0,0  L10,0  L0,10  Z M20,20  L30,20  L30,30  L20,30  Z"))},
        {"arc draws nothing", Wmf().record(mfb::META_ARC, Bytes().zeros(16)), QString()},
    };
    for (const DrawingCase& c : cases) EXPECT_TEXT(BodyOf(c.file), c.body) << c.name;
}

// Declared counts larger than the record are cut to the points present; the record after a
// short one (here a META_MOVETO with non-zero bytes) is never read as points.
TEST(WmfDrawing, CountsAreClippedToTheRecord) {
    const Bytes nextRecord = YX(0x0707, 0x0707);
    const DrawingCase cases[] = {
        {"polyline declares more points than it holds",
         Wmf().record(mfb::META_POLYLINE, Poly(5, {{0, 1}, {150, 16}})),
         PolyLine(QStringLiteral("0,0 10,1 "))},
        {"polygon declares fewer points than it holds",
         Wmf().record(mfb::META_POLYGON, Poly(2, {{0, 1}, {150, 16}, {300, 301}})),
         Polygon(QStringLiteral("0,0 10,1 "))},
        {"polyline without points", Wmf().record(mfb::META_POLYLINE, Poly(3, {})), QString()},
        {"polygon without a count", Wmf().record(mfb::META_POLYGON, Bytes()), QString()},
        {"polygon points run out",
         Wmf().record(mfb::META_POLYPOLYGON,
                      PolyPoly({3, 4}, {{0, 1}, {150, 1}, {0, 151}, {300, 301}, {450, 301}})),
         Path(QStringLiteral(" M0,0  L10,0  L0,10  Z M20,20  L30,20  Z"))},
        {"empty polygon left out",
         Wmf().record(mfb::META_POLYPOLYGON, PolyPoly({2, 0, 1}, {{0, 1}, {150, 1}, {300, 301}})),
         Path(QStringLiteral(" M0,0  L10,0  Z M20,20  Z"))},
        {"huge count", Wmf().record(mfb::META_POLYPOLYGON, PolyPoly({65535}, {{0, 1}, {150, 1}})),
         Path(QStringLiteral(" M0,0  L10,0  Z"))},
        {"counts run past the record", Wmf().record(mfb::META_POLYPOLYGON, PolyPoly({3}, {}, 40)),
         QString()},
        {"no polygons", Wmf().record(mfb::META_POLYPOLYGON, PolyPoly({}, {{0, 1}})), QString()},
        {"rectangle without top and left",
         Wmf().record(mfb::META_RECTANGLE, Bytes().i16(151).i16(150)), Rect(0, 0, 10, 10)},
    };
    for (const DrawingCase& c : cases) {
        Wmf file = c.file;
        file.record(mfb::META_MOVETO, nextRecord);
        EXPECT_TEXT(BodyOf(file), c.body) << c.name;
    }
}

// A placeable file divides by Inch / 96 and then stretches by bounding box / window extent;
// pen widths only see the first step.
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
                    Document(192, 96,
                             Line(0, 0, c.x, c.y,
                                  PenSelected(QStringLiteral("black"), QStringLiteral("2")))))
            << "extent " << c.extX << " x " << c.extY;
    }
}

// --- byte order ----------------------------------------------------------------------------------

TEST(WmfByteOrder, SwappedFileConvertsAlike) {
    Wmf f;
    f.record(mfb::META_SETWINDOWORG, YX(-30, 16))
        .record(mfb::META_SETBKMODE, Bytes().u16(1).u16(0))
        .record(mfb::META_CREATEPENINDIRECT, Pen(0x0201, 45, 0x00123456))
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(0, 0x00654321))
        .record(mfb::META_CREATEFONTINDIRECT, Font(-2880, "Times"))
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
        .record(mfb::META_PATBLT, PatBlt(-150, 31, 1500, 751))
        .record(mfb::META_ARC, Bytes().i16(1).i16(2).i16(3).i16(4).i16(5).i16(6).i16(7).i16(8))
        .record(mfb::META_DELETEOBJECT, Index(1))
        .record(mfb::META_CREATEBRUSHINDIRECT, Brush(2, 0x000000FF, 3))
        .record(mfb::META_SELECTOBJECT, Index(1))
        .record(mfb::META_RECTANGLE, Edges(0, 1, 300, 301));

    const auto little = Convert(f.build());
    ASSERT_EQ(little.status, 2);
    EXPECT_TRUE(little.svg.contains(QStringLiteral("<path d=\""))) << little.svg.toStdString();
    Conversion littleRun(f.build());

    testutil::ForceBigEndian bigEndian;
    const auto big = Convert(f.build(true, true));
    EXPECT_EQ(big.status, 2);
    EXPECT_TEXT(big.svg, little.svg);
    Conversion bigRun(f.build(true, true));
    EXPECT_EQ(bigRun.Style().GetCurrentFontHeight(), littleRun.Style().GetCurrentFontHeight());
    EXPECT_TEXT(bigRun.Style().GetCurrentFontFamily(), QStringLiteral("Times"));
}

// --- coordinate mapping --------------------------------------------------------------------------

namespace {

// Plays one record through the converter's dispatcher.
void Play(WMF2SVGConverter& converter, uint16_t function, const Bytes& params) {
    const QByteArray bytes =
        Bytes().u32(3 + params.size() / 2).u16(function).append(params).toByteArray();
    records::ScratchCopy copy(reinterpret_cast<const unsigned char*>(bytes.constData()),
                              (size_t)bytes.size());
    CLogger log;
    converter.HandleWMFRecordData(copy.data(), (unsigned int)bytes.size(), log);
}

}  // namespace

TEST(WmfCoordinates, MapXAndMapY) {
    const struct {
        const char* name;
        bool placeable;
        int16_t right, bottom;  // bounding box from (0, 0)
        uint16_t inch;
        bool setOrigin;
        int16_t orgX, orgY;
        bool setExtent;
        int16_t extX, extY;
        int16_t x, y;
        int16_t mappedX, mappedY;
    } cases[] = {
        {"default origin (0, 1)", false, 0, 0, 0, false, 0, 0, false, 0, 0, 30, 45, 2, 2},
        {"extent ignored", false, 0, 0, 0, false, 0, 0, true, 100, 100, 30, 45, 2, 2},
        {"window origin", false, 0, 0, 0, true, 100, 100, false, 0, 0, 100, 100, 0, 0},
        {"toward zero", false, 0, 0, 0, true, 0, 0, false, 0, 0, -29, -29, -1, -1},
        {"difference wraps", false, 0, 0, 0, true, -1, -1, false, 0, 0, 32767, 32767, -2184, -2184},
        {"extent matches box", true, 2880, 1440, 1440, true, 0, 0, true, 2880, 1440, 2880, 1440,
         192, 96},
        {"extent half the box", true, 2880, 1440, 1440, true, 0, 0, true, 1440, 720, 2880, 1440,
         384, 192},
        {"zero extent", true, 2880, 1440, 1440, true, 0, 0, true, 0, 720, 15, 15, 2880, 1440},
        {"out of range", true, 30000, 30000, 96, true, 0, 0, true, 1, 1, 2, 1, -32768, 30000},
    };
    for (const auto& c : cases) {
        WMF2SVGConverter converter;
        _PlaceableMetaHeader header = {};
        header.Key = PLACEABLE_KEY;
        header.BoundingBox = tagRECT16{0, 0, c.right, c.bottom};
        header.Inch = c.inch;
        converter.InitializeCoordinates(c.placeable ? 1 : 0, header);
        converter.InitWMFRecHandlers();
        if (c.setOrigin) Play(converter, mfb::META_SETWINDOWORG, YX(c.orgX, c.orgY));
        if (c.setExtent) Play(converter, mfb::META_SETWINDOWEXT, YX(c.extX, c.extY));
        EXPECT_EQ(converter.MapX(c.x), c.mappedX) << c.name;
        EXPECT_EQ(converter.MapY(c.y), c.mappedY) << c.name;
    }
}

// Records of every short length, filled with 0xFF: counts of 65535 and extreme coordinates
// must neither read outside the record nor stop the conversion.
TEST(WmfRobustness, ShortAndSaturatedRecords) {
    const uint16_t functions[] = {
        mfb::META_SETBKMODE,
        mfb::META_SELECTOBJECT,
        mfb::META_DELETEOBJECT,
        mfb::META_LINETO,
        mfb::META_MOVETO,
        mfb::META_CREATEPENINDIRECT,
        mfb::META_CREATEFONTINDIRECT,
        mfb::META_CREATEBRUSHINDIRECT,
        mfb::META_POLYGON,
        mfb::META_POLYLINE,
        mfb::META_ELLIPSE,
        mfb::META_RECTANGLE,
        mfb::META_POLYPOLYGON,
        mfb::META_PATBLT,
        mfb::META_ARC,
    };
    for (bool swapped : {false, true}) {
        std::optional<testutil::ForceBigEndian> order;
        if (swapped) order.emplace();
        for (uint16_t function : functions) {
            Wmf f;
            for (int length = 0; length <= 60; length += 2) {
                Bytes params;
                for (int i = 0; i < length / 2; ++i) params.u16(0xFFFF);
                f.record(function, params);
            }
            EXPECT_EQ(Convert(f.build(true, swapped)).status, 2) << "function " << function;
        }
    }
}

// The array normalisers read no byte past the record, even with a source buffer that ends
// exactly there (the address sanitizer build checks this).
TEST(WmfRobustness, ArrayNormalisersStopAtTheRecordEnd) {
    testutil::ForceBigEndian bigEndian;
    for (unsigned int size = 2; size <= 40; size += 2) {
        std::vector<unsigned char> src(size, 0xFF);
        if (size > 6) src[6] = 0x03;  // a few polygons, so that the counts and points are walked
        records::ScratchCopy dst(src.data(), size);
        EXPECT_EQ(InitWMRPOLYLINE(reinterpret_cast<tagWMRPOLYLINE*>(dst.data()), src.data(), size),
                  1);
        EXPECT_EQ(InitWMRPOLYPOLYLINE(reinterpret_cast<tagWMRPOLYPOLYLINE*>(dst.data()), src.data(),
                                      size),
                  1);
    }
}
