// The faithful interpreter: the device context's mapping, styles, text, bit blocks and clips,
// the writer, and files of both formats played end to end, hostile records included.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <utility>
#include <vector>

#include "byteorder/BEndTools.h"
#include "faithful/DeviceContext.h"
#include "faithful/DeviceSvg.h"
#include "faithful/Faithful.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using namespace faithful;

namespace {

using testutil::Capture;

using DC = DeviceContext;
using Steps = std::function<void(DC&)>;

// The default reference device of the test files: 1024 x 768 units over 320 x 240 mm.
void TestDevice(DeviceContext& dc) {
    dc.SetReferenceDevice(1024, 768, 320, 240);
}

Matrix Scale(double s) {
    return Matrix::Scale(s, s);
}
Matrix Move(double x, double y) {
    return Matrix::Translate(x, y);
}

QString Svg(const QByteArray& file, int* status = nullptr) {
    QByteArray out;
    const int s = faithful::Convert(reinterpret_cast<const unsigned char*>(file.constData()),
                                    file.size(), out);
    if (status) *status = s;
    return QString::fromUtf8(out);
}

// A file of these records, after `start`'s.
using Record = std::pair<uint32_t, mfb::Bytes>;
Record R(uint32_t type, const mfb::Bytes& payload = mfb::Bytes()) {
    return {type, payload};
}
mfb::Emf Records(std::initializer_list<Record> records, mfb::Emf start = mfb::Emf()) {
    for (const auto& r : records) start.record(r.first, r.second);
    return start;
}

// An EMR_GRADIENTFILL payload: counts, mode, vertices (x, y, red, green, blue), indices.
mfb::Bytes Gradient(std::vector<uint32_t> counts, std::vector<std::vector<int>> vertices,
                    std::vector<uint32_t> indices) {
    mfb::Bytes b = mfb::Bytes().zeros(16).u32(counts[0]).u32(counts[1]).u32(counts[2]);
    for (const auto& v : vertices) b.i32(v[0]).i32(v[1]).u16(v[2]).u16(v[3]).u16(v[4]).u16(0);
    for (uint32_t i : indices) b.u32(i);
    return b;
}
const int kGradientFill = 118;

// A file as built and byte-swapped (unless `swap` is false), and the status it converts with.
// EMF characters are read as the little-endian bytes they are on any host, which the swapped
// build, reversing them, does not model.
struct File {
    File(const mfb::Emf& f, bool swap = true)
        : bytes(f.build()), swapped(swap ? f.build(true, true) : QByteArray()), status(1) {}
    File(const mfb::Wmf& f) : bytes(f.build()), swapped(f.build(true, true)), status(2) {}
    QByteArray bytes, swapped;
    int status;
};
// A fragment of a document, and how many times it stands there (-1: at least once).
struct Has {
    Has(const char* text, int count = -1) : text(text), count(count) {}
    const char* text;
    int count;
};
// What a document holds: one fragment, or several with their counts.
struct Expect : std::vector<Has> {
    Expect(const char* one) : std::vector<Has>{Has(one)} {}
    Expect(std::initializer_list<Has> all) : std::vector<Has>(all) {}
};

LogFont Font(int32_t height, const char* face = "Arial", uint8_t charSet = 0, int esc = 0) {
    LogFont f;
    f.height = height;
    f.faceName = QString::fromLatin1(face);
    f.charSet = charSet;
    f.escapement = esc;
    return f;
}

void Select(DeviceContext& dc, const LogFont& f) {
    dc.CreateObjectAt(1, {GdiObject::Kind::Font, {}, {}, f});
    dc.SelectObject(1);
}

// What a text operation holds: "text|x...|y|angle|size|anchor".
QString Describe(const TextOp& op) {
    QString xs, y = QStringLiteral("-");
    for (const PointF& p : op.positions) {
        xs += QString::number(p.x) + QLatin1Char(' ');
        y = QString::number(p.y);
    }
    return QStringLiteral("%1|%2|%3|%4|%5|%6")
        .arg(op.text, xs.trimmed(), y)
        .arg(op.angle)
        .arg(op.size)
        .arg((int)op.anchor);
}

// A 4 x 2 bitmap: red, green, blue, white over four black pixels; or a 1-bit mask whose left
// half is 0 (black) and right half 1 (white).
std::shared_ptr<const QImage> Bitmap(bool mask = false) {
    QImage im(4, 2, mask ? QImage::Format_Mono : QImage::Format_RGB32);
    if (mask) {
        im.setColorTable({0xFF000000u, 0xFFFFFFFFu});
        for (int x = 0; x < 4; ++x)
            im.setPixel(x, 0, x < 2 ? 0 : 1), im.setPixel(x, 1, x < 2 ? 0 : 1);
    } else {
        const QRgb top[4] = {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu, 0xFFFFFFFFu};
        for (int x = 0; x < 4; ++x) im.setPixel(x, 0, top[x]), im.setPixel(x, 1, 0xFF000000u);
    }
    return std::make_shared<const QImage>(im);
}

// A block of the bitmap blended as `blend` says.
BitmapBlt Blt(RectF src, double x, double y, double w, double h, uint32_t rop = 0x00CC0020,
              BitmapBlt::Blend blend = BitmapBlt::Blend::Rop, uint8_t alpha = 255,
              uint32_t key = 0) {
    BitmapBlt b;
    b.bitmap = Bitmap();
    b.src = src;
    b.dest[0] = {x, y};
    b.dest[1] = {x + w, y};
    b.dest[2] = {x, y + h};
    b.rop = rop, b.blend = blend, b.constantAlpha = alpha, b.key = key;
    return b;
}

// Lengths halved on both axes.
void Halved(DeviceContext& dc) {
    dc.SetMapMode(gdi::MM_ANISOTROPIC);
    dc.SetWindowExt(100, 100);
    dc.SetViewportExt(50, 50);
}

}  // namespace

// Logical to device through every map mode, the window and viewport records, each world
// transform mode and saved states.
TEST(FaithfulMapping, Table) {
    const auto ext = [](int mode, double wx, double wy, double vx, double vy) {
        return [=](DeviceContext& dc) {
            dc.SetMapMode(mode);
            dc.SetWindowExt(wx, wy);
            dc.SetViewportExt(vx, vy);
        };
    };
    const auto aniso = [&](double wx, double wy, double vx, double vy) {
        return ext(gdi::MM_ANISOTROPIC, wx, wy, vx, vy);
    };
    const auto metric = [](int mode) { return [=](DeviceContext& dc) { dc.SetMapMode(mode); }; };
    const auto world = [](Matrix first, Matrix m, int mode) {
        return [=](DeviceContext& dc) {
            dc.SetWorldTransform(first);
            dc.ModifyWorldTransform(m, mode);
        };
    };
    const auto origins = [](DeviceContext& dc) {
        dc.SetWindowOrg(100, 50);
        dc.SetViewportOrg(10, 10);
    };
    const auto saves = [](std::vector<int> restores) {
        return [=](DeviceContext& dc) {
            dc.SaveDC();
            dc.SetWindowOrg(10, 0);
            dc.SaveDC();
            dc.SetWindowOrg(20, 0);
            for (int r : restores) dc.RestoreDC(r);
        };
    };
    const struct {
        const char* name;
        PointF logical, device;
        Steps setup;
    } rows[] = {
        {"text", {10, 20}, {10, 20}, [](DeviceContext&) {}},
        {"origins", {100, 50}, {10, 10}, origins},
        {"offset origins",
         {0, 0},
         {15, 10},
         [&](DC& dc) { origins(dc), dc.OffsetWindowOrg(-100, -50), dc.OffsetViewportOrg(5, 0); }},
        // 3.2 device units per millimetre; y grows upwards.
        {"low metric", {100, 100}, {32, -32}, metric(gdi::MM_LOMETRIC)},
        {"high metric", {1000, 1000}, {32, -32}, metric(gdi::MM_HIMETRIC)},
        {"low English", {100, 100}, {81.28, -81.28}, metric(gdi::MM_LOENGLISH)},
        {"high English", {1000, 1000}, {81.28, -81.28}, metric(gdi::MM_HIENGLISH)},
        {"twips", {1440, 1440}, {81.28, -81.28}, metric(gdi::MM_TWIPS)},
        {"anisotropic", {100, 100}, {50, 100}, aniso(1000, 500, 500, 500)},
        {"isotropic", {100, 100}, {50, -50}, ext(gdi::MM_ISOTROPIC, 1000, 500, 500, -500)},
        {"fixed mode refuses extents", {3, 4}, {3, 4}, ext(gdi::MM_TEXT, 10, 10, 20, 20)},
        {"zero extent refused", {3, 4}, {3, 4}, aniso(10, 0, 0, 10)},
        {"scale viewport",
         {10, 10},
         {20, 30},
         [&](DC& dc) {
             aniso(100, 100, 100, 100)(dc);
             dc.ScaleViewportExt(2, 1, 3, 1);
             dc.ScaleWindowExt(1, 2, 1, 0);  // a zero denominator: refused
         }},
        {"scale window",
         {10, 20},
         {5, 5},
         [&](DC& dc) { aniso(100, 100, 100, 100)(dc), dc.ScaleWindowExt(2, 1, 4, 1); }},
        {"identity", {10, 0}, {10, 0}, world(Scale(2), Scale(3), gdi::MWT_IDENTITY)},
        {"left multiply", {10, 0}, {25, 0}, world(Move(5, 0), Scale(2), gdi::MWT_LEFTMULTIPLY)},
        {"right multiply", {10, 0}, {30, 0}, world(Move(5, 0), Scale(2), gdi::MWT_RIGHTMULTIPLY)},
        {"set", {10, 0}, {11, 2}, world(Scale(2), Move(1, 2), gdi::MWT_SET)},
        {"singular refused", {10, 0}, {20, 0}, world(Scale(2), Scale(0), gdi::MWT_SET)},
        {"unknown mode", {10, 0}, {20, 0}, world(Scale(2), Scale(3), 9)},
        {"world then page",
         {10, 10},
         {10, 5},
         [&](DC& dc) { aniso(2, 2, 1, 1)(dc), dc.SetWorldTransform(Move(10, 0)); }},
        {"restore -1", {15, 0}, {5, 0}, saves({-1})},
        {"restore -2", {5, 0}, {5, 0}, saves({-2})},
        {"restore absolute 2", {15, 0}, {5, 0}, saves({2})},
        {"restore too deep", {25, 0}, {5, 0}, saves({-3, 0, 3})},
    };
    for (const auto& row : rows) {
        Capture sink;
        DeviceContext dc(sink);
        TestDevice(dc);
        row.setup(dc);
        const PointF d = dc.ToDevice(row.logical);
        EXPECT_NEAR(d.x, row.device.x, 1e-9) << row.name;
        EXPECT_NEAR(d.y, row.device.y, 1e-9) << row.name;
    }
}

// The stroke of a pen: widths in device units (at least one pixel), dashes, caps and raster
// operations. The mapping halves lengths unless a row says otherwise.
TEST(FaithfulPens, Table) {
    const auto pen = [](uint32_t style, double width, bool extended = false,
                        std::vector<double> user = {}) {
        LogPen p;
        p.style = style;
        p.width = width;
        p.color = 0x0000FF;  // red
        p.extended = extended;
        p.userStyle = user;
        return p;
    };
    const uint32_t geo = gdi::PS_GEOMETRIC;
    const Stroke::Cap round = Stroke::Cap::Round, flat = Stroke::Cap::Flat;
    const struct {
        const char* name;
        LogPen pen;
        double width;
        std::vector<double> dashes;
        Stroke::Cap cap;
        int rop2 = gdi::R2_COPYPEN;
        Rgb color = 0xFF0000;
        bool visible = true;
    } rows[] = {
        {"width 0", pen(gdi::PS_SOLID, 0), 1, {}, round},
        {"scaled", pen(gdi::PS_SOLID, 10), 5, {}, round},
        {"under a unit", pen(gdi::PS_SOLID, 1), 1, {}, round},
        {"cosmetic", pen(gdi::PS_SOLID, 10, true), 1, {}, round},
        {"geometric flat", pen(geo | gdi::PS_ENDCAP_FLAT, 10, true), 5, {}, flat},
        {"dash", pen(gdi::PS_DASH, 0), 1, {18, 6}, flat},
        {"dot", pen(gdi::PS_DOT, 0), 1, {3, 3}, flat},
        {"dash dot", pen(gdi::PS_DASHDOT, 0), 1, {9, 6, 3, 6}, flat},
        {"dash dot dot", pen(gdi::PS_DASHDOTDOT, 0), 1, {9, 3, 3, 3, 3, 3}, flat},
        {"wide dash", pen(gdi::PS_DASH, 8), 4, {12, 4}, round},
        {"alternate", pen(gdi::PS_ALTERNATE, 0, true), 1, {1, 1}, flat},
        {"user geometric", pen(geo | gdi::PS_USERSTYLE, 8, true, {8, 4}), 4, {4, 2}, round},
        {"user cosmetic", pen(gdi::PS_USERSTYLE, 1, true, {5, 2}), 1, {5, 2}, flat},
        {"user all zero", pen(gdi::PS_USERSTYLE, 1, true, {0, 0}), 1, {}, round},
        {"null", pen(gdi::PS_NULL, 10), 1, {}, round, gdi::R2_COPYPEN, 0, false},
        {"no-op", pen(gdi::PS_SOLID, 0), 1, {}, round, gdi::R2_NOP, 0, false},
        {"black", pen(gdi::PS_SOLID, 0), 1, {}, round, gdi::R2_BLACK, 0},
        {"white", pen(gdi::PS_SOLID, 0), 1, {}, round, gdi::R2_WHITE, 0xFFFFFF},
        {"not copy", pen(gdi::PS_SOLID, 0), 1, {}, round, gdi::R2_NOTCOPYPEN, 0x00FFFF},
        {"xor as copy", pen(gdi::PS_SOLID, 0), 1, {}, round, gdi::R2_XORPEN},
    };
    for (const auto& row : rows) {
        Capture sink;
        DeviceContext dc(sink);
        TestDevice(dc);
        dc.SetMapMode(gdi::MM_ANISOTROPIC);
        dc.SetWindowExt(2, 2);
        dc.CreateObjectAt(1, {GdiObject::Kind::Pen, row.pen});
        dc.SelectObject(1);
        dc.SetRop2(row.rop2);
        const Stroke s = dc.CurrentStroke();
        EXPECT_EQ(s.visible, row.visible) << row.name;
        if (!row.visible) continue;
        EXPECT_DOUBLE_EQ(s.width, row.width) << row.name;
        EXPECT_EQ(s.dashes, row.dashes) << row.name;
        EXPECT_EQ(s.cap, row.cap) << row.name;
        EXPECT_EQ(s.color, row.color) << row.name;
    }
    // On a fine device, the thinnest stroke is a pixel of 1/96 inch: 10 units at 2540 units
    // per inch... here 37.8 units per millimetre.
    Capture sink;
    DeviceContext fine(sink);
    fine.SetReferenceDevice(9600, 9600, 254, 254);
    EXPECT_DOUBLE_EQ(fine.PixelWidth(), 10);
    EXPECT_DOUBLE_EQ(fine.CurrentStroke().width, 10);
}

// Arcs are swept in the arc direction as seen on the device, whatever the mapping mirrors.
TEST(FaithfulShapes, ArcDirection) {
    const struct {
        int direction;
        bool mirrored;
        double top, bottom;  // the device-space extent of the arc
    } rows[] = {
        {gdi::AD_COUNTERCLOCKWISE, false, 0, 50},  // the upper right quarter
        {gdi::AD_CLOCKWISE, false, 0, 100},        // three quarters
        {gdi::AD_COUNTERCLOCKWISE, true, -100, 0},
        {gdi::AD_CLOCKWISE, true, -50, 0},
    };
    for (const auto& row : rows) {
        Capture sink;
        DeviceContext dc(sink);
        if (row.mirrored) dc.SetWorldTransform(Matrix::Scale(1, -1));
        dc.SetArcDirection(row.direction);
        dc.Arc({0, 0, 100, 100}, {100, 50}, {50, 0});
        ASSERT_EQ(sink.ops.size(), 1u);
        const RectF b = sink.ops[0].path.Bounds();
        EXPECT_NEAR(b.top, row.top, 1e-9) << row.direction << row.mirrored;
        EXPECT_NEAR(b.bottom, row.bottom, 1e-9) << row.direction << row.mirrored;
    }
}

// Numbers keep a hundredth with the fewest characters.
TEST(FaithfulWriter, Numbers) {
    SvgBuffer out;
    for (double v : {0.0, -1.0, -0.5, 1.2, 10.004, -0.004, 99.999, 1e20, (double)NAN, -123.456}) {
        AppendNumber(out, v);
        out.Append(' ');
    }
    EXPECT_EQ(out.Text(), QByteArray("0 -1 -.5 1.2 10 0 100 10000000000000 0 -123.46 "));
}

// The writer: one clipPath per distinct clip, shared; nothing through an empty clip; a rewind
// closes what it opened; a drawing that passes the output limit is undone, and the document
// still closes.
TEST(FaithfulWriter, ClipsRewindAndLimit) {
    DrawOp op;
    op.path.MoveTo({0, 0});
    op.path.LineTo({10, 10});
    op.stroke.visible = true;
    DeviceSvg w;
    const auto clip = std::make_shared<Clip>(Clip{QRegion(0, 0, 5, 5)});
    w.SetClip(clip);
    w.Draw(op);
    w.Draw(op);
    w.SetClip(std::make_shared<Clip>(Clip{QRegion()}));
    w.Draw(op);
    DeviceSvg::Mark mark = w.GetMark();
    w.SetClip(clip);
    w.Draw(op);
    w.Rewind(mark);
    QByteArray doc = w.Finish(10, 10, {0, 0, 10, 10});
    EXPECT_EQ(doc.count("<clipPath id=\"c1\"><path d=\"M0 0H5V5H0Z\"/></clipPath>"), 1);
    EXPECT_EQ(doc.count("<path d=\"M0 0 10 10\"/>"), 2);
    EXPECT_EQ(doc.count("<g"), doc.count("</g>"));

    DeviceSvg writer;
    writer.SetLimit(2048);
    bool stopped = false;
    for (int i = 0; i < 1000 && !stopped; ++i) {
        mark = writer.GetMark();
        try {
            writer.Draw(op);
            op.stroke.color = (Rgb)i;  // a new group each time
        } catch (const OutputLimitReached&) {
            writer.Rewind(mark);
            stopped = true;
        }
    }
    ASSERT_TRUE(stopped);
    doc = writer.Finish(10, 10, {0, 0, 10, 10});
    EXPECT_LE(doc.size(), 2048);
    EXPECT_TRUE(doc.endsWith("</g>\n</svg>\n"));
    EXPECT_EQ(doc.count("<g"), doc.count("</g>"));
}

// One record through the device context: what is drawn, where and in which font.
TEST(FaithfulText, Placement) {
    const std::vector<PointF> ab{{10, 0}, {12, 0}},
        six{{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}, {6, 0}};
    const QString symbol = QString::fromUtf16(u"a\xF070");
    const struct {
        const char* name;
        LogFont font;
        uint32_t align;
        QString text;
        std::vector<PointF> advances;
        bool yUpHalved;
        const char* drawn;
    } rows[] = {
        {"advances, baseline", Font(-10), 24, "AB", ab, false, "AB|0 10|0|0|10|0"},
        {"right aligned, top", Font(-10), 2, "AB", ab, false, "AB|-22 -12|9|0|10|0"},
        {"centred flow, cell height", Font(112), 6 | 8, "AB", {}, false, "AB||-|0|100|1"},
        {"escapement", Font(-10, "Arial", 0, 900), 24, "A", {}, false, "A||-|-90|10|0"},
        {"y-up mapping stays upright", Font(-20), 24, "AB", ab, true, "AB|0 5|0|0|10|0"},
        {"hostile characters dropped with their places", Font(-10), 24,
         QString::fromUtf16(u"a\x01<&\xFFFE\xD800"), six, false, "a<&|0 3 6|0|0|10|0"},
        {"symbol font", Font(-10, "Symbol", 2), 24, symbol, {}, false, "\u03B1\u03C0||-|0|10|0"},
    };
    for (const auto& row : rows) {
        testutil::Capture sink;
        DeviceContext dc(sink);
        dc.SetBkMode(gdi::TRANSPARENT);
        if (row.yUpHalved) {
            dc.SetMapMode(gdi::MM_ANISOTROPIC);
            dc.SetWindowExt(200, -200);
            dc.SetViewportExt(100, 100);
        }
        Select(dc, row.font);
        dc.SetTextAlign(row.align);
        DeviceContext::TextCall call;
        call.reference = {40, 60};
        call.text = row.text;
        call.advances = row.advances;
        dc.ExtTextOut(call);
        ASSERT_EQ(sink.texts.size(), 1u) << row.name;
        EXPECT_EQ(Describe(sink.texts[0]), QString::fromUtf8(row.drawn)) << row.name;
    }
}

// 8-bit text by the font's character set; the advances of a character's bytes add up.
TEST(FaithfulText, CharacterSets) {
    const struct {
        uint8_t charSet;
        QByteArray bytes;
        std::vector<PointF> perByte;
        const char* decoded;  // "text|advances"
    } rows[] = {
        {0, "\x80\xE9", {{1, 0}, {2, 0}}, "\u20AC\u00E9|1 2"},
        {204, "\xC0", {{1, 0}}, "\u0410|1"},
        {238, "\x8A", {{1, 0}}, "\u0160|1"},
        {128, "\x82\xA0\x41", {{1, 0}, {2, 0}, {4, 0}}, "\u3042A|3 4"},
        {2, "\x61", {{1, 0}}, "a|1"},
    };
    for (const auto& row : rows) {
        testutil::Capture sink;
        DeviceContext dc(sink);
        Select(dc, Font(-10, "Arial", row.charSet));
        DeviceContext::TextCall call;
        dc.DecodeAnsi(reinterpret_cast<const unsigned char*>(row.bytes.constData()),
                      row.bytes.size(), row.perByte.data(), call);
        QString advances;
        for (const PointF& p : call.advances) advances += QString::number(p.x) + QLatin1Char(' ');
        EXPECT_EQ(call.text + QLatin1Char('|') + advances.trimmed(), QString::fromUtf8(row.decoded))
            << (int)row.charSet;
    }
}

// Each row draws bit blocks through a device context (MM_TEXT), after a mask (SRCAND) when
// `masked`, and checks the one image it gives: its size, its map to the device, the alpha of
// its top-left and bottom-right pixels, its opacity.
TEST(FaithfulBitmaps, Blocks) {
    const auto alpha = BitmapBlt::Blend::Alpha, transparent = BitmapBlt::Blend::Transparent;
    const struct {
        const char* name;
        BitmapBlt blt;
        bool masked;
        int images, width;
        double m11, dx;
        int alphaFirst, alphaLast;
        double opacity;
    } rows[] = {
        {"crop", Blt({2, 0, 4, 2}, 10, 10, 40, 20), false, 1, 2, 10, 10, 255, 255, 1},
        {"mirror", Blt({0, 0, 4, 2}, 50, 10, -40, 20), false, 1, 4, -10, 50, 255, 255, 1},
        {"mask then image", Blt({0, 0, 4, 2}, 0, 0, 4, 2, 0x00EE0086), true, 1, 4, 1, 0, 255, 0, 1},
        {"srcand alone: white is transparent", Blt({0, 0, 4, 1}, 0, 0, 4, 1, 0x008800C6), false, 1,
         4, 1, 0, 255, 0, 1},
        {"constant alpha", Blt({0, 0, 4, 2}, 0, 0, 4, 2, 0x00CC0020, alpha, 51), false, 1, 4, 1, 0,
         255, 255, 0.2},
        {"transparent colour",
         Blt({0, 0, 4, 1}, 0, 0, 4, 1, 0x00CC0020, transparent, 255, 0xFFFFFF), false, 1, 4, 1, 0,
         255, 0, 1},
        {"empty source", Blt({0, 0, 0, 2}, 0, 0, 4, 2), false, 0, 0, 0, 0, 0, 0, 0},
        {"source outside", Blt({-9, 5, 4, 2}, 0, 0, 4, 2), false, 0, 0, 0, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        testutil::Capture sink;
        DeviceContext dc(sink);
        if (row.masked) {
            BitmapBlt mask = Blt({0, 0, 4, 2}, 0, 0, 4, 2, 0x008800C6);
            mask.bitmap = Bitmap(true), mask.monochrome = true;
            dc.DrawBitmap(mask);
        }
        dc.DrawBitmap(row.blt);
        dc.FlushBitmaps();
        EXPECT_EQ((int)sink.images.size(), row.images);
        if (!row.images || sink.images.empty()) continue;
        const ImageOp& op = sink.images[0];
        EXPECT_EQ(op.image->width(), row.width);
        EXPECT_DOUBLE_EQ(op.toDevice.m11, row.m11);
        EXPECT_DOUBLE_EQ(op.toDevice.dx, row.dx);
        const QImage& im = *op.image;
        EXPECT_EQ(qAlpha(im.pixel(0, 0)), row.alphaFirst);
        EXPECT_EQ(qAlpha(im.pixel(im.width() - 1, im.height() - 1)), row.alphaLast);
        EXPECT_NEAR(op.opacity, row.opacity, 0.01);
    }
}

// The clip through the mapping and the world transform, each combination mode, saved states
// and the meta region; an empty region: no clip.
TEST(FaithfulClip, Table) {
    const QRegion right(5, 0, 10, 10), box(0, 0, 10, 10);
    const auto base = [&](DC& d, int mode) {
        d.IntersectClipRect({0, 0, 10, 10});
        d.SelectClipRegion(&right, mode);
    };
    const struct {
        const char* name;
        QRegion expected;
        std::function<void(DeviceContext&)> steps;
    } rows[] = {
        {"intersect, halved", QRegion(5, 10, 20, 20),
         [](DC& d) {
             Halved(d), d.IntersectClipRect({10, 20, 50, 60});
         }},
        {"exclude", right.intersected(box),
         [](DC& d) {
             d.IntersectClipRect({0, 0, 10, 10}), d.ExcludeClipRect({0, 0, 5, 10});
         }},
        {"exclude, no clip",
         QRegion(-65536, -65536, 131072, 131072).subtracted(QRegion(0, 0, 5, 10)),
         [](DC& d) {
             d.ExcludeClipRect({0, 0, 5, 10});
         }},
        {"rotated", QRegion(-20, 0, 20, 10),
         [](DC& d) {
             d.SetWorldTransform({0, 1, -1, 0, 0, 0}), d.IntersectClipRect({0, 0, 10, 20});
         }},
        {"and", QRegion(5, 0, 5, 10), [&](DC& d) { base(d, gdi::RGN_AND); }},
        {"or", QRegion(0, 0, 15, 10), [&](DC& d) { base(d, gdi::RGN_OR); }},
        {"xor", QRegion(0, 0, 5, 10).united(QRegion(10, 0, 5, 10)),
         [&](DC& d) { base(d, gdi::RGN_XOR); }},
        {"diff", QRegion(0, 0, 5, 10), [&](DC& d) { base(d, gdi::RGN_DIFF); }},
        {"copy", right, [&](DC& d) { base(d, gdi::RGN_COPY); }},
        {"copy nothing", QRegion(),
         [&](DC& d) { base(d, gdi::RGN_AND), d.SelectClipRegion(nullptr, gdi::RGN_COPY); }},
        {"or, no clip", QRegion(), [&](DC& d) { d.SelectClipRegion(&right, gdi::RGN_OR); }},
        {"restored", QRegion(0, 0, 10, 10),
         [](DC& d) {
             d.IntersectClipRect({0, 0, 10, 10}), d.SaveDC(), d.IntersectClipRect({0, 0, 2, 2}),
                 d.RestoreDC(-1);
         }},
        {"meta region", QRegion(5, 5, 5, 5),
         [&](DC& d) {
             d.SaveDC(), d.IntersectClipRect({0, 0, 10, 10}), d.SetMetaRgn(), d.RestoreDC(-1),
                 d.SelectClipRegion(nullptr, gdi::RGN_COPY), d.IntersectClipRect({5, 5, 20, 20});
         }},
        {"offset, halved", QRegion(2, 3, 10, 10),
         [](DC& d) {
             Halved(d), d.IntersectClipRect({0, 0, 20, 20}), d.OffsetClipRgn(4, 6);
         }},
        {"clip path", QRegion(0, 0, 10, 10),
         [](DC& d) {
             d.BeginPath(), d.Rectangle({0, 0, 10, 10}), d.EndPath(),
                 d.SelectClipPath(gdi::RGN_COPY);
         }},
        {"clip path past the budget", QRegion(),
         [](DC& d) {
             d.SetRegionBudget(1000), d.BeginPath(), d.Ellipse({0, 0, 1e6, 1e6}), d.EndPath(),
                 d.SelectClipPath(gdi::RGN_COPY);
         }},
    };
    for (const auto& row : rows) {
        Capture sink;
        DeviceContext d(sink);
        row.steps(d);
        ASSERT_EQ(d.CurrentClip() != nullptr, !row.expected.isEmpty()) << row.name;
        if (d.CurrentClip()) EXPECT_EQ(d.CurrentClip()->region, row.expected) << row.name;
    }
    // Deep saves of clips come back one by one.
    Capture sink;
    DeviceContext d(sink);
    for (int i = 0; i < 3000; ++i) d.SaveDC(), d.IntersectClipRect({0, 0, 3000.0 - i, 10});
    d.RestoreDC(2);
    EXPECT_EQ(d.CurrentClip()->region, QRegion(0, 0, 3000, 10));
}

// Regions drawn: filled through the mapping, framed inside their edge.
TEST(FaithfulClip, RegionsDrawn) {
    Capture sink;
    DeviceContext dc(sink);
    Halved(dc);
    LogBrush red;
    red.color = 0x0000FF;
    dc.FillRegion(QRegion(10, 10, 20, 20), red);
    dc.FrameRegion(QRegion(0, 0, 20, 20), red, 2, 4);
    ASSERT_EQ(sink.ops.size(), 2u);
    const RectF b = sink.ops[0].path.Bounds();
    EXPECT_EQ(std::vector<double>({b.left, b.top, b.right, b.bottom}),
              std::vector<double>({5, 5, 15, 15}));
    EXPECT_EQ(sink.ops[0].fill.color, 0xFF0000u);
    EXPECT_EQ(sink.ops[1].path.FigureCount(), 4u);  // top, left, right and bottom bands
}

// Files played end to end in both byte orders: the document, the drawing, the styles, text,
// bitmaps, clips, and hostile records (never a crash, always a closed document, and the named
// drawing: a fragment the document holds, or how many times it does).
TEST(FaithfulEmf, EndToEnd) {
    using namespace mfb;
    const Emf halved =
        Records({R(EMR_SETMAPMODE, U32s({8})), R(EMR_SETWINDOWEXTEX, I32s({1000, 1000})),
                 R(EMR_SETVIEWPORTEXTEX, I32s({500, 500}))});
    const Bytes box = I32s({10, 20, 50, 60}), none = I32s({0, 0, 0, 0});
    const Bytes text = U32s({0, 0, 0, 76, 2, 1, 2, 3, 4, 0});  // an opaque rectangle, no characters
    const Record select = R(EMR_SELECTOBJECT, U32s({1})), line = R(EMR_LINETO, I32s({5, 5}));
    const Bytes tri = Points16({{0, 0}, {9, 0}, {0, 9}});
    Emf saves;
    for (int i = 0; i < 5000; ++i) saves.record(33, Bytes());
    // EMR_EXTTEXTOUTW with `declared` characters at 76, advances after them (offDx 0: none).
    const auto extText = [](uint32_t declared, const QString& text, uint32_t options,
                            const std::vector<int32_t>& dx) {
        const uint32_t offDx = dx.empty() ? 0 : 76 + 2 * ((text.size() + 1) & ~1);
        Bytes b = U32s({0, 0, 0, 0, 1}).f32(1).f32(1).append(I32s({10, 20}));
        b.u32(declared).u32(76).u32(options).append(I32s({0, 0, 30, 30})).u32(offDx);
        b.utf16(text, (text.size() + 1) & ~1);
        for (int32_t d : dx) b.i32(d);
        return b;
    };
    // The text record drawn in the font, in the transparent background mode.
    const auto inFont = [](const Bytes& logFont, const Bytes& text) {
        return Records({R(EMR_SETBKMODE, U32s({1})), R(82, U32s({1}).append(logFont)),
                        R(EMR_SELECTOBJECT, U32s({1})), R(EMR_EXTTEXTOUTW, text)});
    };
    // EMR_STRETCHDIBITS of a 2 x 1 source to 10 x 10 at x.
    const auto dib = [](int x, const Bytes& header, const Bytes& bits) {
        Bytes b = Bytes().zeros(16).i32(x).i32(0).i32(0).i32(0).i32(2).i32(1);
        b.u32(80).u32(header.size()).u32(80 + header.size()).u32(bits.size()).u32(0);
        return R(EMR_STRETCHDIBITS, b.u32(0x00CC0020).i32(10).i32(10).append(header).append(bits));
    };
    const Bytes pixels = Bytes().u32(0x00FF0000).u32(0x0000FF00);  // 2 x 1, 32 bits
    const Bytes rle = Bytes().u32(40).i32(60000).i32(60000).u16(1).u16(8).u32(1).zeros(20);
    const auto paths = [](int n) { return Expect{{"<path d=", n}}; };
    const auto images = [](int n, int uses) { return Expect{{"<image", n}, {"<use", uses}}; };
    const struct {
        const char* name;
        Expect has;
        File file;
    } rows[] = {
        {"document",
         {"<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"118.11\" "
          "height=\"118.11\" viewBox=\"0 0 100 100\" preserveAspectRatio=\"none\" "
          "fill=\"none\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n</svg>\n"},
         Emf()},
        {"polyline halved", "<g stroke=\"#000\">\n<path d=\"M5 10 20 30\"/>\n</g>\n",
         Records({R(EMR_POLYLINE16, U32s({0, 0, 0, 0, 2}).append(Points16({{10, 20}, {40, 60}})))},
                 halved)},
        {"rectangle, white brush",
         "<g fill=\"#fff\" stroke=\"#000\">\n<path d=\"M5 10H25V30H5Z\"/>",
         Records({R(EMR_RECTANGLE, box)}, halved)},
        {"hatched brush, opaque",
         {"fill=\"#fff\"/><path d=\"M0 3.5 8 3.5M3.5 0 3.5 8\" stroke=\"#f00\"", "url(#p1)"},
         Records({R(EMR_CREATEBRUSHINDIRECT, U32s({1, 2, 0x0000FF, 4})), select,
                  R(EMR_RECTANGLE, box)})},
        {"path bracket filled", "<g fill=\"#fff\">\n<path d=\"M0 0H10V10Z\"/>",
         Records({R(EMR_BEGINPATH), R(EMR_MOVETOEX, I32s({0, 0})), R(EMR_LINETO, I32s({10, 0})),
                  R(EMR_LINETO, I32s({10, 10})), R(EMR_CLOSEFIGURE), R(EMR_ENDPATH),
                  R(EMR_FILLPATH, none)})},
        {"poly-polygon, alternate",
         {"fill-rule=\"evenodd\"", "<path d=\"M0 0H9L0 9ZM1 1H5L1 5Z\"/>"},
         Emf().record(EMR_POLYPOLYGON16,
                      Bytes().zeros(16).u32(2).u32(6).u32(3).u32(3).append(
                          Points16({{0, 0}, {9, 0}, {0, 9}, {1, 1}, {5, 1}, {1, 5}})))},
        {"pattern-only bit block and a pixel",
         {"<g fill=\"#000\">\n<path d=\"M10 10H30V30H10Z\"/>",
          "<g fill=\"#f00\">\n<path d=\"M5 5H6V6H5Z\"/>"},
         Records({R(EMR_BITBLT, EmfBlt(EMR_BITBLT, 10, 10, 20, 20, 0x42, Bytes(), Bytes())),
                  R(15, I32s({5, 5}).u32(0x0000FF))})},
        {"widened path filled with the brush", "<g stroke=\"#fff\">\n<path d=\"M0 0 10 10\"/>",
         Records({R(EMR_BEGINPATH), R(EMR_LINETO, I32s({10, 10})), R(EMR_ENDPATH), R(66),
                  R(EMR_FILLPATH, none)})},
        {"opaque rectangle of a text record", "<g fill=\"#fff\">\n<path d=\"M1 2H3V4H1Z\"/>",
         Emf().record(EMR_EXTTEXTOUTW, U32s({0, 0, 0, 0, 1}).f32(1).f32(1).append(text))},
        {"monochrome brush",
         {"xmlns:xlink=",
          "<image image-rendering=\"optimizeSpeed\" width=\"8\" height=\"8\" "
          "xlink:href=\"data:image/png;base64,"},
         Records(
             {R(EMR_CREATEMONOBRUSH,
                U32s({1, 0, 32, 48, 80, 32}).append(BitmapInfo(8, 8, 1, {0, 0xFFFFFF})).zeros(32)),
              select, R(EMR_RECTANGLE, box)})},
        {"gradient rectangles, across and down",
         {"<linearGradient id=\"g1\" gradientUnits=\"userSpaceOnUse\" x1=\"0\" y1=\"0\" "
          "x2=\"0\" y2=\"25\"><stop stop-color=\"#f00\"/><stop offset=\"1\" "
          "stop-color=\"#00f\"/>",
          "x1=\"50\" y1=\"25\" x2=\"50\" y2=\"0\"><stop stop-color=\"#00f\"/>",
          "<g fill=\"url(#g1)\">\n<path d=\"M0 0H50V25H0Z\"/>"},
         Records(
             {R(kGradientFill, Gradient({2, 2, 1}, {{0, 0, 0xFF00, 0, 0}, {100, 50, 0, 0, 0xFFFF}},
                                        {0, 1, 1, 0}))},
             halved)},
        {"gradient triangle of two colours",
         {"x1=\"10\" y1=\"0\" x2=\"10\" y2=\"10\"><stop stop-color=\"#f00\"/><stop offset=\"1\" "
          "stop-color=\"#0f0\"/>",
          "<path d=\"M0 0H10L0 10Z\"/>"},
         Emf().record(kGradientFill,
                      Gradient({3, 1, 2},
                               {{0, 0, 0xFF00, 0, 0}, {10, 0, 0xFF00, 0, 0}, {0, 10, 0, 0xFF00, 0}},
                               {0, 1, 2}))},
        // Objects: stock ones (unknown ones change nothing), a deleted one that stays selected.
        {"stock brush", "<g fill=\"#808080\" stroke=\"#000\">",
         Records({R(EMR_SELECTOBJECT, U32s({0x80000002})), R(EMR_SELECTOBJECT, U32s({0x80000063})),
                  R(EMR_SELECTOBJECT, U32s({0xFFFFFFF0})), R(EMR_RECTANGLE, box)})},
        {"stock null pen and brush", paths(0),
         Records({R(EMR_SELECTOBJECT, U32s({0x80000005})), R(EMR_SELECTOBJECT, U32s({0x80000008})),
                  R(EMR_RECTANGLE, box)})},
        {"deleted brush still selected", "<g fill=\"#0f0\" stroke=\"#000\">",
         Records({R(EMR_CREATEBRUSHINDIRECT, U32s({1, 0, 0x00FF00, 0})), select,
                  R(EMR_DELETEOBJECT, U32s({1})), R(EMR_RECTANGLE, box)})},
        {"null pen dashes nothing", "\"round\">\n</svg>\n",
         Records({R(EMR_CREATEPEN, U32s({1, 5, 0, 0, 0})), select, R(EMR_LINETO, I32s({10, 10}))})},
        // Text: escaping, clipping, arrays cut to the record, hostile fonts.
        {"text escaped, placed, clipped",
         {"font-family=\"'AB', sans-serif\" font-size=\"12\" font-weight=\"bold\"",
          "<clipPath id=\"t1\"><path d=\"M0 0H30V30H0Z\"/></clipPath>",
          "<text clip-path=\"url(#t1)\" x=\"10 15 21\" y=\"30.8\" "
          "xml:space=\"preserve\">&lt;&amp;&gt;</text>"},
         {inFont(LogFontW(-12, 0, 700, "A&B<\"'"), extText(3, "<&>", 4, {5, 6, 7})), false}},
        {"rotated line of text",
         "<text transform=\"translate(10 20) rotate(-90)\" x=\"0 5\" y=\"10.8\"",
         inFont(LogFontW(-12, 900, 400, "Arial"), extText(2, "ab", 0, {5, 6}))},
        {"hostile font: no face, extreme height, escapement and weight",
         {"font-family=\"sans-serif\"", "font-weight=\"900\"", ">ab</text>"},
         {inFont(LogFontW(INT32_MIN, INT32_MIN, INT32_MAX, ""),
                 extText(2, "ab", 0, {INT32_MAX, INT32_MAX})),
          false}},
        {"turned world, compatible mode: the glyphs stay upright", "<text x=\"-20 -15\" y=\"21.7\"",
         Records({R(35, Bytes().f32(0).f32(1).f32(-1).f32(0).f32(0).f32(0)),
                  R(EMR_EXTTEXTOUTW, extText(2, "ab", 0, {5, 6}))})},
        {"characters past the record, advances cut",
         {"<g fill=\"#fff\">", "x=\"10 11\"", ">ab</text>"},
         {Emf().record(EMR_EXTTEXTOUTW, extText(1000000, "abcd", 0, {1, 2})), false}},
        {"wmf text out, no face",
         {"font-family=\"sans-serif\" font-size=\"10\"",
          "x=\"5\" y=\"16\" xml:space=\"preserve\">x\u00E9y</text>"},
         Wmf()
             .record(META_CREATEFONTINDIRECT, Bytes().i16(-10).zeros(16))
             .record(META_SELECTOBJECT, Bytes().u16(0))
             .record(0x0521, Bytes().u16(3).latin1("x\xE9y", 4).i16(7).i16(5))},
        // Bitmaps: one drawn twice is written once; hostile ones draw nothing.
        {"bitmap shared", images(1, 2),
         Records({dib(0, BitmapInfo(2, 1, 32), pixels), dib(20, BitmapInfo(2, 1, 32), pixels)})},
        {"bitmap rows past the record", images(0, 0),
         Records({dib(0, BitmapInfo(65536, 65536, 32), pixels)})},
        {"run-length claim past its bytes", images(0, 0),
         Records({dib(0, rle, Bytes().u32(0x01000204))})},
        // Hostile clip records: counts past the record, a region scan count past the record.
        {"clip counts past the record", "<clipPath id=\"c1\"><path d=\"M0 0H9V9H0Z\"/>",
         Records({R(75, U32s({48 + 16, 1}).append(RegionData({{0, 0, 9, 9}}, 0x7FFFFFFF))),
                  R(71, U32s({0, 0, 0, 0, 9999, 0x80000000}).append(RegionData({}, 1 << 30))),
                  line})},
        {"wmf region scans past the record",
         {},
         Wmf()
             .record(0x06FF, Bytes().zeros(10).u16(0xFFFF).zeros(10).u16(60000).i16(0).i16(9))
             .record(0x012C, Bytes().u16(0))
             .record(0x0213, Bytes().i16(5).i16(5))},
        // Hostile records.
        {"points past the record", paths(1),
         Records({R(EMR_POLYLINE16, U32s({0, 0, 0, 0, 1000000}).append(tri))})},
        {"polygon counts past the record", paths(0),
         Records({R(EMR_POLYPOLYGON16, U32s({0, 0, 0, 0, 0x40000000, 3, 3}))})},
        {"point counts past the points", paths(1),
         Records({R(EMR_POLYPOLYGON16, U32s({0, 0, 0, 0, 1, 9, 900}).append(tri))})},
        {"poly-draw types past the record", paths(0),
         Records({R(EMR_POLYDRAW16, U32s({0, 0, 0, 0, 3}).append(tri))})},
        {"huge extents", paths(1),
         Records({R(EMR_SETMAPMODE, U32s({8})), R(EMR_SETWINDOWEXTEX, I32s({1, 1})),
                  R(EMR_SETVIEWPORTEXTEX, I32s({INT32_MAX, INT32_MIN})),
                  R(EMR_LINETO, I32s({INT32_MAX, INT32_MIN}))})},
        {"zero extents", paths(1),
         Records({R(EMR_SETMAPMODE, U32s({7})), R(EMR_SETWINDOWEXTEX, I32s({0, 0})),
                  R(EMR_SETVIEWPORTEXTEX, I32s({0, 5})), line})},
        {"singular transform", paths(1),
         Records({R(EMR_SETWORLDTRANSFORM, Bytes().f32(0).f32(0).f32(0).f32(0).f32(1).f32(1)),
                  R(EMR_MODIFYWORLDTRANSFORM,
                    Bytes().f32(NAN).f32(0).f32(0).f32(1).f32(0).f32(0).u32(2)),
                  line})},
        {"deep saves", paths(1),
         Records({R(34, I32s({-5000})), R(34, I32s({INT32_MIN})), line}, saves)},
        {"handles out of range", paths(1),
         Records({R(EMR_SELECTOBJECT, U32s({0xFFFFFFFF})), R(EMR_DELETEOBJECT, U32s({0x80000063})),
                  R(EMR_CREATEPEN, U32s({0, 0, 5, 0, 0})), R(EMR_SELECTOBJECT, U32s({0})), line})},
        {"style entries past the record", paths(1),
         Records({R(EMR_EXTCREATEPEN, U32s({1, 0, 0, 0, 0, 0x10007, 4, 0, 0, 0, 0xFFFFFFFF, 3})),
                  select, line})},
        {"angle arc not finite", paths(0),
         Emf().record(EMR_ANGLEARC, Bytes().i32(5).i32(5).i32(5).f32(NAN).f32(INFINITY))},
        {"pattern brush without bitmap", paths(1),
         Records({R(94, U32s({1, 0, 999, 40, 9999, 4})), select,
                  R(EMR_RECTANGLE, I32s({0, 0, 9, 9}))})},
        {"gradient of three colours: 16 pieces", paths(16),
         Emf().record(kGradientFill,
                      Gradient({3, 1, 2},
                               {{0, 0, 0xFF00, 0, 0}, {90, 0, 0, 0xFF00, 0}, {0, 90, 0, 0, 0xFF00}},
                               {0, 1, 2}))},
        {"gradient vertices past the record", paths(0),
         Emf().record(kGradientFill,
                      Gradient({99, 1, 0}, {{0, 0, 0, 0, 0}, {9, 9, 0, 0, 0}}, {0, 1}))},
        {"gradient objects past the record, indices past the vertices", paths(2),
         Emf().record(kGradientFill,
                      Gradient({2, 9, 1}, {{0, 0, 0, 0, 0}, {9, 9, 0, 0, 0}}, {0, 2, 1, 0, 0, 1}))},
        {"record shorter than its header", paths(0),
         Records({line}, Emf().recordWithSize(EMR_LINETO, 4, I32s({5, 5})))},
    };
    for (const auto& row : rows) {
        for (bool swapped : {false, true}) {
            if (swapped && row.file.swapped.isEmpty()) continue;
            SCOPED_TRACE(row.name);
            int status = 0;
            QString svg;
            {
                testutil::ForceBigEndian order(swapped);
                svg = Svg(swapped ? row.file.swapped : row.file.bytes, &status);
            }
            EXPECT_EQ(status, row.file.status);
            EXPECT_TRUE(svg.endsWith("</svg>\n"));
            for (const Has& h : row.has) {
                const QString f = QString::fromUtf8(h.text);
                if (h.count < 0)
                    EXPECT_TRUE(svg.contains(f)) << h.text << "\n" << svg.toStdString();
                if (h.count >= 0) EXPECT_EQ(svg.count(f), h.count) << h.text;
            }
        }
    }
    // A header whose byte count is not the size given is drawn as far as both go, one that
    // declares less than a header is refused, and so is a file too short for any header.
    int status = 0;
    QByteArray file = Emf().build();
    EXPECT_TRUE(Svg(file + '\0', &status).endsWith("</svg>\n"));
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(Svg(file.left(file.size() - 20), &status).endsWith("</svg>\n"));
    EXPECT_EQ(status, 1);
    file[48] = 80;
    Svg(file, &status);
    EXPECT_EQ(status, -2);
    Svg(QByteArray(10, '\0'), &status);
    EXPECT_EQ(status, 0);
}
