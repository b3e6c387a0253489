// The faithful interpreter's clipping and regions: the clip through the transforms, the
// combination modes, saved states, the meta region, regions drawn, the writer's clip groups,
// and hostile clip records.
#include <gtest/gtest.h>

#include <functional>

#include "faithful/DeviceContext.h"
#include "faithful/DeviceSvg.h"
#include "faithful/Faithful.h"
#include "tests/MetafileBuilder.h"

using namespace faithful;

namespace {

struct Capture : DrawSink {
    std::vector<DrawOp> ops;
    void Draw(const DrawOp& op) override { ops.push_back(op); }
};

void Halved(DeviceContext& dc) {
    dc.SetMapMode(gdi::MM_ANISOTROPIC);
    dc.SetWindowExt(100, 100);
    dc.SetViewportExt(50, 50);
}

}  // namespace

TEST(FaithfulClip, Table) {
    const QRegion right(5, 0, 10, 10), box(0, 0, 10, 10);
    const auto base = [&](DeviceContext& dc, int mode) {
        dc.IntersectClipRect({0, 0, 10, 10});
        dc.SelectClipRegion(&right, mode);
    };
    const struct {
        const char* name;
        std::function<void(DeviceContext&)> steps;
        bool clipped;
        QRegion expected;
    } rows[] = {
        {"intersect, halved",
         [](DeviceContext& dc) {
             Halved(dc), dc.IntersectClipRect({10, 20, 50, 60});
         },
         true, QRegion(5, 10, 20, 20)},
        {"exclude",
         [](DeviceContext& dc) {
             dc.IntersectClipRect({0, 0, 10, 10}), dc.ExcludeClipRect({0, 0, 5, 10});
         },
         true, right.intersected(box)},
        {"exclude, no clip",
         [](DeviceContext& dc) {
             dc.ExcludeClipRect({0, 0, 5, 10});
         },
         true, QRegion(-65536, -65536, 131072, 131072).subtracted(QRegion(0, 0, 5, 10))},
        {"rotated",
         [](DeviceContext& dc) {
             dc.SetWorldTransform({0, 1, -1, 0, 0, 0}), dc.IntersectClipRect({0, 0, 10, 20});
         },
         true, QRegion(-20, 0, 20, 10)},
        {"and", [&](DeviceContext& dc) { base(dc, gdi::RGN_AND); }, true, QRegion(5, 0, 5, 10)},
        {"or", [&](DeviceContext& dc) { base(dc, gdi::RGN_OR); }, true, QRegion(0, 0, 15, 10)},
        {"xor", [&](DeviceContext& dc) { base(dc, gdi::RGN_XOR); }, true,
         QRegion(0, 0, 5, 10).united(QRegion(10, 0, 5, 10))},
        {"diff", [&](DeviceContext& dc) { base(dc, gdi::RGN_DIFF); }, true, QRegion(0, 0, 5, 10)},
        {"copy", [&](DeviceContext& dc) { base(dc, gdi::RGN_COPY); }, true, right},
        {"copy nothing",
         [&](DeviceContext& dc) {
             base(dc, gdi::RGN_AND), dc.SelectClipRegion(nullptr, gdi::RGN_COPY);
         },
         false, QRegion()},
        {"or, no clip", [&](DeviceContext& dc) { dc.SelectClipRegion(&right, gdi::RGN_OR); }, false,
         QRegion()},
        {"restored",
         [](DeviceContext& dc) {
             dc.IntersectClipRect({0, 0, 10, 10}), dc.SaveDC(), dc.IntersectClipRect({0, 0, 2, 2}),
                 dc.RestoreDC(-1);
         },
         true, QRegion(0, 0, 10, 10)},
        {"meta region",
         [&](DeviceContext& dc) {
             dc.SaveDC(), dc.IntersectClipRect({0, 0, 10, 10}), dc.SetMetaRgn(), dc.RestoreDC(-1),
                 dc.SelectClipRegion(nullptr, gdi::RGN_COPY), dc.IntersectClipRect({5, 5, 20, 20});
         },
         true, QRegion(5, 5, 5, 5)},
        {"offset, halved",
         [](DeviceContext& dc) {
             Halved(dc), dc.IntersectClipRect({0, 0, 20, 20}), dc.OffsetClipRgn(4, 6);
         },
         true, QRegion(2, 3, 10, 10)},
        {"clip path",
         [](DeviceContext& dc) {
             dc.BeginPath(), dc.Rectangle({0, 0, 10, 10}), dc.EndPath(),
                 dc.SelectClipPath(gdi::RGN_COPY);
         },
         true, QRegion(0, 0, 10, 10)},
        {"clip path past the budget",
         [](DeviceContext& dc) {
             dc.SetRegionBudget(1000), dc.BeginPath(), dc.Ellipse({0, 0, 1e6, 1e6}), dc.EndPath(),
                 dc.SelectClipPath(gdi::RGN_COPY);
         },
         false, QRegion()},
    };
    for (const auto& row : rows) {
        Capture sink;
        DeviceContext dc(sink);
        row.steps(dc);
        ASSERT_EQ(dc.CurrentClip() != nullptr, row.clipped) << row.name;
        if (row.clipped) EXPECT_EQ(dc.CurrentClip()->region, row.expected) << row.name;
    }
    // Deep saves of clips come back one by one.
    Capture sink;
    DeviceContext dc(sink);
    for (int i = 0; i < 3000; ++i) dc.SaveDC(), dc.IntersectClipRect({0, 0, 3000.0 - i, 10});
    dc.RestoreDC(2);
    EXPECT_EQ(dc.CurrentClip()->region, QRegion(0, 0, 3000, 10));
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

// The writer: one clipPath per distinct clip, shared; nothing through an empty clip; a rewind
// closes what it opened.
TEST(FaithfulClip, Writer) {
    DeviceSvg w;
    DrawOp op;
    op.path.MoveTo({0, 0});
    op.path.LineTo({10, 10});
    op.stroke.visible = true;
    const auto clip = std::make_shared<Clip>(Clip{QRegion(0, 0, 5, 5)});
    w.SetClip(clip);
    w.Draw(op);
    w.Draw(op);
    w.SetClip(std::make_shared<Clip>(Clip{QRegion()}));
    w.Draw(op);
    const DeviceSvg::Mark mark = w.GetMark();
    w.SetClip(clip);
    w.Draw(op);
    w.Rewind(mark);
    const QByteArray doc = w.Finish(10, 10, {0, 0, 10, 10});
    EXPECT_EQ(doc.count("<clipPath id=\"c1\"><path d=\"M0 0H5V5H0Z\"/></clipPath>"), 1);
    EXPECT_EQ(doc.count("<path d=\"M0 0 10 10\"/>"), 2);
    EXPECT_EQ(doc.count("<g"), doc.count("</g>"));
}

// Hostile clip records: counts past the record, a region scan count past the record.
TEST(FaithfulClip, HostileRecords) {
    using namespace mfb;
    const Bytes line = I32s({5, 5});
    Emf emf;
    emf.record(75, U32s({48 + 16, 1}).append(RegionData({{0, 0, 9, 9}}, 0x7FFFFFFF)));
    emf.record(71, U32s({0, 0, 0, 0, 9999, 0x80000000}).append(RegionData({}, 1 << 30)));
    emf.record(EMR_LINETO, line);
    const QByteArray file = emf.build();
    QByteArray out;
    EXPECT_EQ(faithful::Convert((const unsigned char*)file.constData(), file.size(), out), 1);
    EXPECT_TRUE(out.contains("<clipPath id=\"c1\"><path d=\"M0 0H9V9H0Z\"/>")) << out.constData();
    Wmf wmf;
    wmf.record(0x06FF, Bytes().zeros(10).u16(0xFFFF).zeros(10).u16(60000).i16(0).i16(9));
    wmf.record(0x012C, Bytes().u16(0));
    wmf.record(0x0213, Bytes().i16(5).i16(5));
    const QByteArray wfile = wmf.build();
    EXPECT_EQ(faithful::Convert((const unsigned char*)wfile.constData(), wfile.size(), out), 2);
    EXPECT_TRUE(out.endsWith("</svg>\n"));
}
