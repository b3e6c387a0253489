// The faithful WMF player: the page of placeable and other files, every decoded record against
// the device context's own call (parameters in reverse order), the object table's
// lowest-free-slot rule, and hostile files; each file in both byte orders.
#include <QRegularExpression>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

#include "faithful/WmfPlayback.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using namespace mfb;
using namespace faithful;

namespace {

// Parameters as WMF stores them: y before x, rectangles bottom-right first.
const auto YX = [](int x, int y) { return Bytes().i16(y).i16(x); };
const auto Edges = [](int l, int t, int r, int b) { return Bytes().i16(b).i16(r).i16(t).i16(l); };
const auto Pen = [](int style, int width, uint32_t colour) {
    return Bytes().u16(style).i16(width).i16(0).u32(colour);
};
const auto Brush = [](int style, uint32_t colour, int hatch = 0) {
    return Bytes().u16(style).u32(colour).u16(hatch);
};
const auto Word = [](int v) { return Bytes().u16((uint16_t)v); };

const uint16_t SAVEDC = 0x001E, CREATEPALETTE = 0x00F7, SETROP2 = 0x0104, SETPOLYFILLMODE = 0x0106,
               RESTOREDC = 0x0127, DIBCREATEPATTERNBRUSH = 0x0142, CREATEPATTERNBRUSH = 0x01F9,
               SETTEXTCOLOR = 0x0209, SETVIEWPORTORG = 0x020D, SETVIEWPORTEXT = 0x020E,
               OFFSETWINDOWORG = 0x020F, OFFSETVIEWPORTORG = 0x0211, SCALEWINDOWEXT = 0x0410,
               SCALEVIEWPORTEXT = 0x0412, SETPIXEL = 0x041F, ROUNDRECT = 0x061C,
               CREATEREGION = 0x06FF, PIE = 0x081A, CHORD = 0x0830, DIBBITBLT = 0x0940;

// A file of these records, after `start`'s.
using Record = std::pair<uint16_t, Bytes>;
Record R(uint16_t function, const Bytes& params) {
    return {function, params};
}
Wmf Records(std::initializer_list<Record> records, Wmf start = Wmf()) {
    for (const auto& r : records) start.record(r.first, r.second);
    return start;
}

struct Run {
    int status = 0;
    QByteArray svg;
    WmfPlayer player;
};

// Plays the file as built, or byte-swapped on a host that reads as big-endian.
std::unique_ptr<Run> Play(const QByteArray& bytes, bool swapped = false) {
    auto run = std::make_unique<Run>();
    testutil::ForceBigEndian order(swapped);
    run->status = run->player.Play(reinterpret_cast<const unsigned char*>(bytes.constData()),
                                   (uint64_t)bytes.size(), run->svg);
    return run;
}

// Both byte orders must give the same document; the little-endian run is returned.
std::unique_ptr<Run> PlayBoth(const Wmf& file) {
    auto run = Play(file.build());
    EXPECT_EQ(Play(file.build(true, true), true)->svg.toStdString(), run->svg.toStdString());
    return run;
}

// What follows the document's root element.
std::string Body(const QByteArray& svg) {
    const int root = svg.indexOf("<svg");
    return root < 0 ? std::string() : svg.mid(svg.indexOf('\n', root) + 1).toStdString();
}

// The root's width, height and view box.
std::string Page(const QByteArray& svg) {
    const QString v = QStringLiteral("=\"([^\"]*)\"");
    const auto m = QRegularExpression(" width" + v + " height" + v + " viewBox" + v)
                       .match(QString::fromUtf8(svg));
    return (m.captured(1) + ' ' + m.captured(2) + ' ' + m.captured(3)).toStdString();
}

}  // namespace

// Placeable files show their box at its units per inch; others the window their records set,
// at 1440 units per inch, or what they draw when they set none.
TEST(FaithfulWmf, Page) {
    const Bytes window = YX(10, 20), drawing = Edges(10, 20, 110, 70);
    const struct {
        const char* name;
        const char* page;  // width, height and view box
        Wmf file;
    } rows[] = {
        {"box", "192 96 0 0 192 96", Wmf().placeable(0, 0, 2880, 1440, 1440)},
        {"box, its own window", "96 96 0 0 96 96",
         Wmf().placeable(-100, 50, 620, 770, 720).record(META_SETWINDOWEXT, YX(10, 10))},
        {"reversed box, no inch", "48 48 0 0 48 48", Wmf().placeable(620, 770, -100, 50, 0)},
        {"window", "192 96 0 0 192 96",
         Records({R(META_SETWINDOWORG, window), R(META_SETWINDOWEXT, YX(2880, -1440))})},
        {"first window extent with an area", "96 48 0 0 96 48",
         Records({R(META_SETWINDOWEXT, YX(0, 5)), R(META_SETWINDOWEXT, YX(1440, 720))})},
        {"empty box, window at its inch", "96 48 0 0 96 48",
         Wmf().placeable(5, 5, 5, 100, 720).record(META_SETWINDOWEXT, YX(720, 360))},
        {"no window: the drawing, its pen's half pixel included", "101 51 9.5 19.5 101 51",
         Wmf().record(META_RECTANGLE, drawing)},
        {"no window, no drawing", "1 1 0 0 1 1", Wmf()},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto run = PlayBoth(row.file);
        EXPECT_EQ(run->status, 2);
        EXPECT_EQ(Page(run->svg), row.page);
    }
}

// Each record draws what the device context's call with its parameters in natural order draws.
TEST(FaithfulWmf, RecordsCallTheDeviceContext) {
    const RectF box{10, 20, 110, 70};
    const Bytes edges = Edges(10, 20, 110, 70), arc = YX(10, 45).append(YX(110, 30)).append(edges);
    const Bytes points = Points16({{1, 2}, {30, 4}, {5, 60}});
    const PointF three[] = {{1, 2}, {30, 4}, {5, 60}};
    const uint32_t one[] = {65535};
    const struct {
        const char* name;
        Wmf file;
        std::function<void(DeviceContext&)> calls;
    } rows[] = {
        {"lines and shapes",
         Records({R(META_MOVETO, YX(1, 2)), R(META_LINETO, YX(30, 40)), R(META_RECTANGLE, edges),
                  R(META_ELLIPSE, edges), R(ROUNDRECT, YX(12, 8).append(edges)), R(META_ARC, arc),
                  R(CHORD, arc), R(PIE, arc), R(SETPIXEL, Bytes().u32(0x00FF00).append(YX(7, 9)))}),
         [&](DeviceContext& dc) {
             dc.MoveTo({1, 2}), dc.LineTo({30, 40}), dc.Rectangle(box), dc.Ellipse(box);
             dc.RoundRect(box, 12, 8), dc.Arc(box, {110, 30}, {10, 45});
             dc.Chord(box, {110, 30}, {10, 45}), dc.Pie(box, {110, 30}, {10, 45});
             dc.SetPixel({7, 9}, 0x00FF00);
         }},
        {"point lists; counts past the points or the record",
         Records({R(META_POLYLINE, Word(60000).append(points)),
                  R(META_POLYGON, Word(3).append(points)),
                  R(META_POLYPOLYGON, Word(1).u16(65535).append(points)),
                  R(META_POLYPOLYGON, Word(65535).u16(3).append(points))}),
         [&](DeviceContext& dc) {
             dc.Polyline(three, 3), dc.Polygon(three, 3), dc.PolyPolygon(three, 3, one, 1);
         }},
        {"pattern blocks; a block that needs a bitmap",
         Records({R(META_PATBLT, Bytes().u32(gdi::PATCOPY).i16(50).i16(100).i16(20).i16(10)),
                  R(DIBBITBLT, Bytes().u32(gdi::BLACKNESS).zeros(6).i16(5).i16(6).i16(7).i16(8)),
                  R(DIBBITBLT, Bytes().u32(0x00CC0020).zeros(6).i16(5).i16(6).i16(7).i16(8))}),
         [](DeviceContext& dc) {
             dc.PatBlt({10, 20, 100, 50}, gdi::PATCOPY), dc.PatBlt({8, 7, 6, 5}, gdi::BLACKNESS);
         }},
        {"mapping",
         Records({R(META_SETMAPMODE, Word(gdi::MM_ANISOTROPIC)), R(META_SETWINDOWORG, YX(10, 20)),
                  R(META_SETWINDOWEXT, YX(200, 100)), R(SETVIEWPORTORG, YX(5, 6)),
                  R(SETVIEWPORTEXT, YX(400, -300)), R(OFFSETWINDOWORG, YX(3, 4)),
                  R(OFFSETVIEWPORTORG, YX(-7, 8)),
                  R(SCALEWINDOWEXT, Bytes().i16(4).i16(3).i16(2).i16(5)),
                  R(SCALEVIEWPORTEXT, Bytes().i16(1).i16(2).i16(3).i16(1)),
                  R(META_RECTANGLE, edges)}),
         [&](DeviceContext& dc) {
             dc.SetMapMode(gdi::MM_ANISOTROPIC), dc.SetWindowOrg(10, 20), dc.SetWindowExt(200, 100);
             dc.SetViewportOrg(5, 6), dc.SetViewportExt(400, -300), dc.OffsetWindowOrg(3, 4);
             dc.OffsetViewportOrg(-7, 8), dc.ScaleWindowExt(5, 2, 3, 4);
             dc.ScaleViewportExt(1, 3, 2, 1), dc.Rectangle(box);
         }},
        {"saved state, modes, objects",
         Records({R(META_CREATEPENINDIRECT, Pen(gdi::PS_DASH, 3, 0x0000FF)),
                  R(META_SELECTOBJECT, Word(0)), R(SAVEDC, Bytes()),
                  R(META_CREATEBRUSHINDIRECT, Brush(gdi::BS_HATCHED, 0x00FF00, 4)),
                  R(META_SELECTOBJECT, Word(1)), R(META_SETBKCOLOR, Bytes().u32(0x123456)),
                  R(SETTEXTCOLOR, Bytes().u32(0x654321)), R(META_SETBKMODE, Word(1)),
                  R(SETPOLYFILLMODE, Word(gdi::WINDING)), R(META_POLYGON, Word(3).append(points)),
                  R(RESTOREDC, Word(-1)), R(SETROP2, Word(gdi::R2_WHITE)),
                  R(META_POLYGON, Word(3).append(points))}),
         [&](DeviceContext& dc) {
             GdiObject pen, brush;
             pen.kind = GdiObject::Kind::Pen, brush.kind = GdiObject::Kind::Brush;
             pen.pen.style = gdi::PS_DASH, pen.pen.width = 3, pen.pen.color = 0x0000FF;
             brush.brush.style = gdi::BS_HATCHED, brush.brush.color = 0x00FF00,
             brush.brush.hatch = 4;
             dc.SelectObject((uint32_t)dc.CreateObjectInFreeSlot(pen)), dc.SaveDC();
             dc.SelectObject((uint32_t)dc.CreateObjectInFreeSlot(brush));
             dc.SetBkColor(0x123456), dc.SetTextColor(0x654321), dc.SetBkMode(gdi::TRANSPARENT);
             dc.SetPolyFillMode(gdi::WINDING), dc.Polygon(three, 3), dc.RestoreDC(-1);
             dc.SetRop2(gdi::R2_WHITE), dc.Polygon(three, 3);
         }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        DeviceSvg svg;
        DeviceContext dc(svg);
        row.calls(dc);
        EXPECT_EQ(Body(PlayBoth(row.file)->svg), Body(svg.Finish(1, 1, {0, 0, 1, 1})));
    }
}

// Every object takes the lowest free slot, palettes, regions and pattern brushes too; past
// the header's object count objects are dropped.
TEST(FaithfulWmf, ObjectTable) {
    using Kind = GdiObject::Kind;
    const Bytes dib = Word(gdi::BS_DIBPATTERNPT).u16(0).append(BitmapInfo(2, 2, 24)).zeros(16);
    const Bytes ddb = Bytes().i16(0).i16(8).i16(8).i16(2).u8(1).u8(1).u32(0).zeros(18 + 16);
    const Bytes font = Bytes().i16(-20).zeros(6).i16(700).zeros(8).latin1("Arial", 32);
    const Bytes pen = Pen(0, 1, 0), palette = Word(0x300).u16(0);
    const struct {
        Wmf file;
        std::vector<Kind> kinds;  // by slot; Other: empty
    } rows[] = {
        // Slots 0 to 2, 1 freed, then 1, 3, 4, 5, 0 and 3 freed, then 0 and 3.
        {Records({R(META_CREATEPENINDIRECT, pen), R(META_CREATEBRUSHINDIRECT, Brush(0, 0)),
                  R(META_CREATEFONTINDIRECT, font), R(META_DELETEOBJECT, Word(1)),
                  R(CREATEPALETTE, palette), R(CREATEREGION, Bytes().zeros(20)),
                  R(DIBCREATEPATTERNBRUSH, dib), R(CREATEPATTERNBRUSH, ddb),
                  R(META_DELETEOBJECT, Word(0)), R(META_DELETEOBJECT, Word(3)),
                  R(META_DELETEOBJECT, Word(99)), R(META_CREATEPENINDIRECT, pen),
                  R(META_CREATEBRUSHINDIRECT, Brush(0, 0))}),
         {Kind::Pen, Kind::Palette, Kind::Font, Kind::Brush, Kind::Brush, Kind::Brush,
          Kind::Other}},
        {Records({R(META_CREATEPENINDIRECT, pen), R(CREATEPATTERNBRUSH, ddb),
                  R(META_CREATEFONTINDIRECT, font), R(META_DELETEOBJECT, Word(0)),
                  R(CREATEPALETTE, palette)},
                 Wmf().objects(2)),
         {Kind::Palette, Kind::Brush, Kind::Other}},
    };
    for (bool swapped : {false, true}) {
        for (const auto& row : rows) {
            const auto run = Play(row.file.build(true, swapped), swapped);
            const DeviceContext& dc = run->player.Context();
            for (size_t slot = 0; slot < row.kinds.size(); ++slot) {
                const GdiObject* o = dc.ObjectAt((uint32_t)slot);
                EXPECT_EQ(o ? o->kind : Kind::Other, row.kinds[slot]) << slot;
            }
            if (&row != rows) continue;  // the first file's brushes and font
            ASSERT_TRUE(dc.ObjectAt(4)->brush.pattern && dc.ObjectAt(5)->brush.pattern);
            EXPECT_EQ(dc.ObjectAt(4)->brush.pattern->width(), 2);
            EXPECT_EQ(dc.ObjectAt(5)->brush.pattern->width(), 8);
            EXPECT_TRUE(dc.ObjectAt(5)->brush.monochrome);
            const LogFont& f = dc.ObjectAt(2)->font;
            EXPECT_EQ(f.faceName, QStringLiteral("Arial"));
            EXPECT_EQ(f.height * 1000 + f.weight, -20 * 1000 + 700);
        }
    }
}

// Hostile headers and walks: a defined status, and the walk ends where the records stop
// making sense (the last MOVETO played says where).
TEST(FaithfulWmf, HostileFiles) {
    const QByteArray two = Records({R(META_MOVETO, YX(1, 1)), R(META_MOVETO, YX(2, 2))}).build();
    // A MOVETO to 1, the record given, a MOVETO to 3.
    const auto around = [](uint16_t function, uint32_t words, const Bytes& params) {
        Wmf f = Records({R(META_MOVETO, YX(1, 1))});
        return f.recordWithSize(function, words, params).record(META_MOVETO, YX(3, 3)).build();
    };
    const auto patched = [&](int at, char value) {
        QByteArray b = two;
        b[at] = value;
        return b;
    };
    const struct {
        const char* name;
        QByteArray bytes;
        int status;
        double lastMove;
    } rows[] = {
        {"size past the file", around(META_MOVETO, 1000, YX(2, 2)), 2, 1},
        {"zero size", around(META_MOVETO, 0, YX(2, 2)), 2, 1},
        {"two words", around(META_MOVETO, 2, YX(2, 2)), 2, 1},
        {"end of file record", around(META_EOF, 3, Bytes()), 2, 1},
        {"file shorter than its header says", two.left(two.size() - 8), 2, 1},
        {"file longer than its header says", patched(6, 9 + 5), 2, 1},
        {"header size not 9", patched(2, 10), -3, 0},
        {"parameters declared", patched(16, 1), -3, 0},
        {"a few bytes", two.left(2), -3, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const auto run = Play(row.bytes);
        EXPECT_EQ(run->status, row.status);
        EXPECT_EQ(run->svg.isEmpty(), row.status != 2);
        EXPECT_EQ(run->player.Context().State().position.x, row.lastMove);
    }
    QByteArray out;
    EXPECT_EQ(PlayWmf(nullptr, 0, out), 0);
}
