// The faithful interpreter: device-context mapping and styles, the writer, EMF playback end to
// end, and hostile records.
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

struct Capture : DrawSink {
    std::vector<DrawOp> ops;
    void Draw(const DrawOp& op) override { ops.push_back(op); }
};

using Steps = std::function<void(DeviceContext&)>;

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
        Steps setup;
        PointF logical, device;
    } rows[] = {
        {"text", [](DeviceContext&) {}, {10, 20}, {10, 20}},
        {"origins", origins, {100, 50}, {10, 10}},
        {"offset origins",
         [&](DeviceContext& dc) {
             origins(dc);
             dc.OffsetWindowOrg(-100, -50);
             dc.OffsetViewportOrg(5, 0);
         },
         {0, 0},
         {15, 10}},
        // 3.2 device units per millimetre; y grows upwards.
        {"low metric", metric(gdi::MM_LOMETRIC), {100, 100}, {32, -32}},
        {"high metric", metric(gdi::MM_HIMETRIC), {1000, 1000}, {32, -32}},
        {"low English", metric(gdi::MM_LOENGLISH), {100, 100}, {81.28, -81.28}},
        {"high English", metric(gdi::MM_HIENGLISH), {1000, 1000}, {81.28, -81.28}},
        {"twips", metric(gdi::MM_TWIPS), {1440, 1440}, {81.28, -81.28}},
        {"anisotropic", aniso(1000, 500, 500, 500), {100, 100}, {50, 100}},
        {"isotropic", ext(gdi::MM_ISOTROPIC, 1000, 500, 500, -500), {100, 100}, {50, -50}},
        {"fixed mode refuses extents", ext(gdi::MM_TEXT, 10, 10, 20, 20), {3, 4}, {3, 4}},
        {"zero extent refused", aniso(10, 0, 0, 10), {3, 4}, {3, 4}},
        {"scale viewport",
         [&](DeviceContext& dc) {
             aniso(100, 100, 100, 100)(dc);
             dc.ScaleViewportExt(2, 1, 3, 1);
             dc.ScaleWindowExt(1, 2, 1, 0);  // a zero denominator: refused
         },
         {10, 10},
         {20, 30}},
        {"scale window",
         [&](DeviceContext& dc) {
             aniso(100, 100, 100, 100)(dc);
             dc.ScaleWindowExt(2, 1, 4, 1);
         },
         {10, 20},
         {5, 5}},
        {"identity", world(Scale(2), Scale(3), gdi::MWT_IDENTITY), {10, 0}, {10, 0}},
        {"left multiply", world(Move(5, 0), Scale(2), gdi::MWT_LEFTMULTIPLY), {10, 0}, {25, 0}},
        {"right multiply", world(Move(5, 0), Scale(2), gdi::MWT_RIGHTMULTIPLY), {10, 0}, {30, 0}},
        {"set", world(Scale(2), Move(1, 2), gdi::MWT_SET), {10, 0}, {11, 2}},
        {"singular refused", world(Scale(2), Scale(0), gdi::MWT_SET), {10, 0}, {20, 0}},
        {"unknown mode", world(Scale(2), Scale(3), 9), {10, 0}, {20, 0}},
        {"world then page",
         [&](DeviceContext& dc) {
             aniso(2, 2, 1, 1)(dc);
             dc.SetWorldTransform(Move(10, 0));
         },
         {10, 10},
         {10, 5}},
        {"restore -1", saves({-1}), {15, 0}, {5, 0}},
        {"restore -2", saves({-2}), {5, 0}, {5, 0}},
        {"restore absolute 2", saves({2}), {15, 0}, {5, 0}},
        {"restore too deep", saves({-3, 0, 3}), {25, 0}, {5, 0}},
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
        GdiObject o;
        o.kind = GdiObject::Kind::Pen;
        o.pen = row.pen;
        dc.CreateObjectAt(1, o);
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

// Objects: stock objects, the lowest free WMF slot, and a deleted object that stays selected.
TEST(FaithfulObjects, SlotsStockAndDeletion) {
    Capture sink;
    DeviceContext dc(sink);
    GdiObject brush;
    brush.kind = GdiObject::Kind::Brush;
    brush.brush.color = 0x00FF00;
    dc.SetObjectTableSize(4);
    std::vector<int> taken;
    for (int i = 0; i < 3; ++i) taken.push_back(dc.CreateObjectInFreeSlot(brush));
    dc.SelectObject(1);
    dc.DeleteObject(1);
    EXPECT_EQ(dc.CurrentFill().color, 0x00FF00u);  // still selected after deletion
    EXPECT_EQ(dc.ObjectAt(1), nullptr);
    taken.push_back(dc.CreateObjectInFreeSlot(brush));  // the freed slot 1
    taken.push_back(dc.CreateObjectInFreeSlot(brush));  // 3
    taken.push_back(dc.CreateObjectInFreeSlot(brush));  // the table is full
    EXPECT_EQ(taken, (std::vector<int>{0, 1, 2, 1, 3, -1}));

    dc.SelectObject(gdi::kStockObject | 5);  // NULL_BRUSH
    EXPECT_EQ(dc.CurrentFill().kind, Fill::Kind::None);
    dc.SelectObject(gdi::kStockObject | 8);  // NULL_PEN
    EXPECT_FALSE(dc.CurrentStroke().visible);
    dc.SelectObject(gdi::kStockObject | 2);  // GRAY_BRUSH
    EXPECT_EQ(dc.CurrentFill().color, 0x808080u);
    dc.SelectObject(gdi::kStockObject | 99);  // no such stock object: nothing changes
    dc.SelectObject(0xFFFFFFF0);
    EXPECT_EQ(dc.CurrentFill().color, 0x808080u);
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

// A drawing that passes the output limit is undone, and the document still closes.
TEST(FaithfulWriter, LimitRewindsTheRecord) {
    DeviceSvg writer;
    writer.SetLimit(2048);
    DrawOp op;
    op.path.MoveTo({0, 0});
    op.path.LineTo({1234.5, 678.9});
    op.stroke.visible = true;
    DeviceSvg::Mark mark;
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
    const QByteArray doc = writer.Finish(10, 10, {0, 0, 10, 10});
    EXPECT_LE(doc.size(), 2048);
    EXPECT_TRUE(doc.endsWith("</g>\n</svg>\n"));
    EXPECT_EQ(doc.count("<g"), doc.count("</g>"));
}

// EMF files played end to end: the document, the drawing and the styles.
TEST(FaithfulEmf, EndToEnd) {
    using namespace mfb;
    const Emf halved =
        Records({R(EMR_SETMAPMODE, U32s({8})), R(EMR_SETWINDOWEXTEX, I32s({1000, 1000})),
                 R(EMR_SETVIEWPORTEXTEX, I32s({500, 500}))});
    const Bytes box = I32s({10, 20, 50, 60}), none = I32s({0, 0, 0, 0});
    const Bytes text = U32s({0, 0, 0, 76, 2, 1, 2, 3, 4, 0});  // an opaque rectangle, no characters
    const Record select = R(EMR_SELECTOBJECT, U32s({1}));
    const struct {
        const char* name;
        Emf file;
        std::vector<const char*> fragments;
    } rows[] = {
        {"document",
         Emf(),
         {"<svg xmlns=\"http://www.w3.org/2000/svg\" version=\"1.1\" width=\"118.11\" "
          "height=\"118.11\" viewBox=\"0 0 100 100\" preserveAspectRatio=\"none\" "
          "fill=\"none\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n</svg>\n"}},
        {"polyline halved",
         Records({R(EMR_POLYLINE16, U32s({0, 0, 0, 0, 2}).append(Points16({{10, 20}, {40, 60}})))},
                 halved),
         {"<g stroke=\"#000\">\n<path d=\"M5 10 20 30\"/>\n</g>\n"}},
        {"rectangle, white brush",
         Records({R(EMR_RECTANGLE, box)}, halved),
         {"<g fill=\"#fff\" stroke=\"#000\">\n<path d=\"M5 10H25V30H5Z\"/>"}},
        {"hatched brush, opaque",
         Records({R(EMR_CREATEBRUSHINDIRECT, U32s({1, 2, 0x0000FF, 4})), select,
                  R(EMR_RECTANGLE, box)}),
         {"fill=\"#fff\"/><path d=\"M0 3.5 8 3.5M3.5 0 3.5 8\" stroke=\"#f00\"", "url(#p1)"}},
        {"path bracket filled",
         Records({R(EMR_BEGINPATH), R(EMR_MOVETOEX, I32s({0, 0})), R(EMR_LINETO, I32s({10, 0})),
                  R(EMR_LINETO, I32s({10, 10})), R(EMR_CLOSEFIGURE), R(EMR_ENDPATH),
                  R(EMR_FILLPATH, none)}),
         {"<g fill=\"#fff\">\n<path d=\"M0 0H10V10Z\"/>"}},
        {"poly-polygon, alternate",
         Emf().record(EMR_POLYPOLYGON16,
                      Bytes().zeros(16).u32(2).u32(6).u32(3).u32(3).append(
                          Points16({{0, 0}, {9, 0}, {0, 9}, {1, 1}, {5, 1}, {1, 5}}))),
         {"fill-rule=\"evenodd\"", "<path d=\"M0 0H9L0 9ZM1 1H5L1 5Z\"/>"}},
        {"pattern-only bit block and a pixel",
         Records({R(EMR_BITBLT, EmfBlt(EMR_BITBLT, 10, 10, 20, 20, 0x42, Bytes(), Bytes())),
                  R(15, I32s({5, 5}).u32(0x0000FF))}),
         {"<g fill=\"#000\">\n<path d=\"M10 10H30V30H10Z\"/>",
          "<g fill=\"#f00\">\n<path d=\"M5 5H6V6H5Z\"/>"}},
        {"widened path filled with the brush",
         Records({R(EMR_BEGINPATH), R(EMR_LINETO, I32s({10, 10})), R(EMR_ENDPATH), R(66),
                  R(EMR_FILLPATH, none)}),
         {"<g stroke=\"#fff\">\n<path d=\"M0 0 10 10\"/>"}},
        {"opaque rectangle of a text record",
         Emf().record(EMR_EXTTEXTOUTW, U32s({0, 0, 0, 0, 1}).f32(1).f32(1).append(text)),
         {"<g fill=\"#fff\">\n<path d=\"M1 2H3V4H1Z\"/>"}},
        {"monochrome brush",
         Records(
             {R(EMR_CREATEMONOBRUSH,
                U32s({1, 0, 32, 48, 80, 32}).append(BitmapInfo(8, 8, 1, {0, 0xFFFFFF})).zeros(32)),
              select, R(EMR_RECTANGLE, box)}),
         {"xmlns:xlink=",
          "<image image-rendering=\"optimizeSpeed\" width=\"8\" height=\"8\" "
          "xlink:href=\"data:image/png;base64,"}},
        {"gradient rectangles, across and down",
         Records(
             {R(kGradientFill, Gradient({2, 2, 1}, {{0, 0, 0xFF00, 0, 0}, {100, 50, 0, 0, 0xFFFF}},
                                        {0, 1, 1, 0}))},
             halved),
         {"<linearGradient id=\"g1\" gradientUnits=\"userSpaceOnUse\" x1=\"0\" y1=\"0\" "
          "x2=\"0\" y2=\"25\"><stop stop-color=\"#f00\"/><stop offset=\"1\" "
          "stop-color=\"#00f\"/>",
          "x1=\"50\" y1=\"25\" x2=\"50\" y2=\"0\"><stop stop-color=\"#00f\"/>",
          "<g fill=\"url(#g1)\">\n<path d=\"M0 0H50V25H0Z\"/>"}},
        {"gradient triangle of two colours",
         Emf().record(kGradientFill,
                      Gradient({3, 1, 2},
                               {{0, 0, 0xFF00, 0, 0}, {10, 0, 0xFF00, 0, 0}, {0, 10, 0, 0xFF00, 0}},
                               {0, 1, 2})),
         {"x1=\"10\" y1=\"0\" x2=\"10\" y2=\"10\"><stop stop-color=\"#f00\"/><stop offset=\"1\" "
          "stop-color=\"#0f0\"/>",
          "<path d=\"M0 0H10L0 10Z\"/>"}},
        {"null pen dashes nothing",
         Records({R(EMR_CREATEPEN, U32s({1, 5, 0, 0, 0})), select, R(EMR_LINETO, I32s({10, 10}))}),
         {"\"round\">\n</svg>\n"}},
    };
    for (const auto& row : rows) {
        for (bool swapped : {false, true}) {
            SCOPED_TRACE(row.name);
            int status = 0;
            QString svg;
            {
                testutil::ForceBigEndian order(swapped);
                svg = Svg(row.file.build(true, swapped), &status);
            }
            EXPECT_EQ(status, 1);
            for (const char* f : row.fragments) EXPECT_TRUE(svg.contains(f)) << svg.toStdString();
        }
    }
}

// Hostile records: never a crash, always a closed document, and the named drawing.
TEST(FaithfulEmf, HostileRecords) {
    using namespace mfb;
    Emf saves;
    for (int i = 0; i < 5000; ++i) saves.record(33, Bytes());
    const Record line = R(EMR_LINETO, I32s({5, 5})), select = R(EMR_SELECTOBJECT, U32s({1}));
    const Bytes tri = Points16({{0, 0}, {9, 0}, {0, 9}});
    const struct {
        const char* name;
        Emf file;
        int paths;  // path elements drawn
    } rows[] = {
        {"points past the record",
         Records({R(EMR_POLYLINE16, U32s({0, 0, 0, 0, 1000000}).append(tri))}), 1},
        {"polygon counts past the record",
         Records({R(EMR_POLYPOLYGON16, U32s({0, 0, 0, 0, 0x40000000, 3, 3}))}), 0},
        {"point counts past the points",
         Records({R(EMR_POLYPOLYGON16, U32s({0, 0, 0, 0, 1, 9, 900}).append(tri))}), 1},
        {"poly-draw types past the record",
         Records({R(EMR_POLYDRAW16, U32s({0, 0, 0, 0, 3}).append(tri))}), 0},
        {"huge extents",
         Records({R(EMR_SETMAPMODE, U32s({8})), R(EMR_SETWINDOWEXTEX, I32s({1, 1})),
                  R(EMR_SETVIEWPORTEXTEX, I32s({INT32_MAX, INT32_MIN})),
                  R(EMR_LINETO, I32s({INT32_MAX, INT32_MIN}))}),
         1},
        {"zero extents",
         Records({R(EMR_SETMAPMODE, U32s({7})), R(EMR_SETWINDOWEXTEX, I32s({0, 0})),
                  R(EMR_SETVIEWPORTEXTEX, I32s({0, 5})), line}),
         1},
        {"singular transform",
         Records({R(EMR_SETWORLDTRANSFORM, Bytes().f32(0).f32(0).f32(0).f32(0).f32(1).f32(1)),
                  R(EMR_MODIFYWORLDTRANSFORM,
                    Bytes().f32(NAN).f32(0).f32(0).f32(1).f32(0).f32(0).u32(2)),
                  line}),
         1},
        {"deep saves", Records({R(34, I32s({-5000})), R(34, I32s({INT32_MIN})), line}, saves), 1},
        {"handles out of range",
         Records({R(EMR_SELECTOBJECT, U32s({0xFFFFFFFF})), R(EMR_DELETEOBJECT, U32s({0x80000063})),
                  R(EMR_CREATEPEN, U32s({0, 0, 5, 0, 0})), R(EMR_SELECTOBJECT, U32s({0})), line}),
         1},
        {"style entries past the record",
         Records({R(EMR_EXTCREATEPEN, U32s({1, 0, 0, 0, 0, 0x10007, 4, 0, 0, 0, 0xFFFFFFFF, 3})),
                  select, line}),
         1},
        {"angle arc not finite",
         Emf().record(EMR_ANGLEARC, Bytes().i32(5).i32(5).i32(5).f32(NAN).f32(INFINITY)), 0},
        {"pattern brush without bitmap",
         Records(
             {R(94, U32s({1, 0, 999, 40, 9999, 4})), select, R(EMR_RECTANGLE, I32s({0, 0, 9, 9}))}),
         1},
        {"gradient of three colours: 16 pieces",
         Emf().record(kGradientFill,
                      Gradient({3, 1, 2},
                               {{0, 0, 0xFF00, 0, 0}, {90, 0, 0, 0xFF00, 0}, {0, 90, 0, 0, 0xFF00}},
                               {0, 1, 2})),
         16},
        {"gradient vertices past the record",
         Emf().record(kGradientFill,
                      Gradient({99, 1, 0}, {{0, 0, 0, 0, 0}, {9, 9, 0, 0, 0}}, {0, 1})),
         0},
        {"gradient objects past the record, indices past the vertices",
         Emf().record(kGradientFill,
                      Gradient({2, 9, 1}, {{0, 0, 0, 0, 0}, {9, 9, 0, 0, 0}}, {0, 2, 1, 0, 0, 1})),
         2},
        {"record shorter than its header",
         Records({line}, Emf().recordWithSize(EMR_LINETO, 4, I32s({5, 5}))), 0},
    };
    for (const auto& row : rows) {
        int status = 0;
        const QString svg = Svg(row.file.build(), &status);
        EXPECT_EQ(status, 1) << row.name;
        EXPECT_TRUE(svg.endsWith("</svg>\n")) << row.name;
        EXPECT_EQ(svg.count("<path d="), row.paths) << row.name << "\n" << svg.toStdString();
    }
    // A header whose byte count is not the size given, and a file too short for any header.
    int status = 0;
    QByteArray file = Emf().build();
    file.append('\0');
    Svg(file, &status);
    EXPECT_EQ(status, -2);
    Svg(QByteArray(10, '\0'), &status);
    EXPECT_EQ(status, 0);
}
