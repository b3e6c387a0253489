// Coordinate mapping of both interpreters, driven by their mapping records.

#include <array>
#include <memory>

#include "api/Logger.h"
#include "emf/Emf2SVG.h"
#include "tests/TestUtil.h"

namespace {

using namespace mfb;

// Converters run over a file, kept for questions about their mapping.
std::unique_ptr<Emf2SvgConverter> RunEmf(QByteArray file) {
    auto converter = std::make_unique<Emf2SvgConverter>();
    converter->ConvertEMFToSVG(reinterpret_cast<unsigned char*>(file.data()), g_Logger);
    return converter;
}
QString Text(const tagXFORM& t) {
    return QString::asprintf("%g %g %g %g %g %g", t.eM11, t.eM12, t.eM21, t.eM22, t.eDx, t.eDy);
}

}  // namespace

// Without MM_ANISOTROPIC the divisors are 1. The default header's frame
// gives 31.25 units per logical unit, which MM_ANISOTROPIC keeps until both
// extents of an axis are known and non-zero. Lengths (withOrigin 0) round half
// up; positions truncate after the window and picture origins are subtracted.
TEST(EmfMapping, DivisorsRoundingAndOrigins) {
    using Record = std::pair<uint32_t, Bytes>;
    const auto emf = [](std::initializer_list<Record> records, Emf e = Emf()) {
        for (const auto& r : records) e.record(r.first, r.second);
        return e.build();
    };
    const auto mode = [](uint32_t m) { return Record{EMR_SETMAPMODE, Bytes().u32(m)}; };
    const auto window = [](int x, int y) { return Record{9, Bytes().i32(x).i32(y)}; };
    const auto viewport = [](int x, int y) { return Record{11, Bytes().i32(x).i32(y)}; };
    const QByteArray halved = emf({mode(8), window(1000, 1000), viewport(500, 500)});
    const std::tuple<const char*, QByteArray, int, int, int, int> cases[] = {
        {"window then viewport", halved, 1000, 0, 500, 500},
        {"viewport then window", emf({mode(8), viewport(500, 500), window(1000, 1000)}), 1000, 0,
         32, 32},
        {"negative viewport", emf({mode(8), window(1000, 1000), viewport(500, -500)}), 1000, 0, 500,
         -500},
        {"zero extent", emf({mode(8), window(1000, 0), viewport(500, 500)}), 1000, 0, 500, 32},
        {"not anisotropic", emf({window(1000, 1000), viewport(500, 500)}), 1000, 0, 1000, 1000},
        {"MM_TEXT after MM_ANISOTROPIC",
         emf({mode(8), mode(1), window(1000, 1000), viewport(500, 500)}), 1000, 0, 500, 500},
        {"length rounds half up", halved, 5, 0, 3, 3},
        {"position truncates", halved, 5, 1, 2, 2},
        {"negative length rounds half up", halved, -5, 0, -2, -2},
        {"negative position truncates", halved, -5, 1, -2, -2},
        // The frame's corner matches the bounds' (40, 30): that is the picture
        // origin.
        {"window and picture origins",
         emf({mode(8), window(200, 200), viewport(100, 100), {10, Bytes().i32(100).i32(50)}},
             Emf().bounds(40, 30, 140, 130).frame(1250, 938, 4375, 4063)),
         300, 1, 150 - 100 - 40, 150 - 50 - 30},
        {"one axis agreeing is enough",
         Emf().bounds(40, 30, 140, 130).frame(1250, 2000, 4375, 5125).build(), 10, 1, -30, -20},
        {"picture origin from the frame",
         Emf().bounds(0, 0, 100, 100).frame(1000, 2000, 4125, 5125).build(), 10, 1, 0, -10},
    };
    for (const auto& [what, file, in, withOrigin, x, y] : cases) {
        const auto converter = RunEmf(file);
        EXPECT_EQ(converter->MapX(in, withOrigin), x) << what;
        EXPECT_EQ(converter->MapY(in, withOrigin), y) << what;
    }
}

// MapPoint rounds each product to a float before it is added: 4097 * (1 -
// 2^-13) rounds to 4096.5, so both coordinates come to 100. A fused
// multiply-add, which a compiler may emit for an FMA machine (s390x, or x86
// with -march=haswell), gives 99 on one axis at least.
TEST(WorldTransform, MapPointRoundsEachProduct) {
    const float nearOne = 1.0f - 1.0f / 8192;
    const Bytes xform = Bytes().f32(nearOne).f32(-1).f32(-1).f32(nearOne).f32(100.5f).f32(100.5f);
    tagPOINTS out{};
    RunEmf(Emf().record(EMR_SETWORLDTRANSFORM, xform).build())
        ->MapPoint(tagPOINTS{4097, 4097}, out);
    EXPECT_EQ(out.x, 100);
    EXPECT_EQ(out.y, 100);
}

// EMR_SETWORLDTRANSFORM hands the matrix (here a rotation by 90 degrees) to the
// writer, whose modify modes follow: left and right multiplication differ for
// this matrix, the translation is replaced rather than composed, and an unknown
// mode changes nothing.
TEST(WorldTransform, SetReachesTheWriterAndModifyModesCompose) {
    const Bytes rotation = Bytes().f32(0).f32(1).f32(-1).f32(0).f32(0).f32(0);
    const auto converter = RunEmf(Emf().record(EMR_SETWORLDTRANSFORM, rotation).build());
    CMySVGWriter& w = converter->Writer();
    EXPECT_EQ(Text(w.WorldTransform()), "0 1 -1 0 0 0");
    const std::tuple<unsigned long, std::array<float, 6>, bool, const char*> steps[] = {
        {2, {1, 2, 3, 4, 5, 6}, true, "-2 1 -4 3 5 6"},
        {3, {0, 1, 1, 0, 0, 0}, true, "1 -2 3 -4 0 0"},
        {0, {9, 9, 9, 9, 9, 9}, false, "1 -2 3 -4 0 0"},
        {5, {9, 9, 9, 9, 9, 9}, false, "1 -2 3 -4 0 0"},
        {4, {2, 0, 0, 2, 10, 20}, true, "2 0 0 2 10 20"},
        {1, {9, 9, 9, 9, 9, 9}, true, "1 0 0 1 0 0"},
    };
    for (const auto& [mode, m, accepted, after] : steps) {
        EXPECT_EQ(w.ModifyWorldTransform(m[0], m[1], m[2], m[3], m[4], m[5], mode), accepted);
        EXPECT_EQ(Text(w.WorldTransform()), after) << "mode " << mode;
    }
}

// Without a placeable header a coordinate is divided by 15 after its distance
// from the window origin (whose y starts at 1) is cut to 16 bits; a window
// extent changes nothing. Placeable files divide by Inch / 96 (an Inch of 0
// reads as 1440) and stretch by bounding box over window extent (a zero extent:
// by the box itself); results outside 16 bits read -32768. Seen through
// META_LINETO, which draws from (0, 0) to the mapped point.
TEST(WmfMapping, ScaleOriginAndWindowExtent) {
    const auto yx = [](int y, int x) { return Bytes().i16((int16_t)y).i16((int16_t)x); };
    const auto placeable = [&](int inch, int box, int extX, int extY) {
        Wmf f = Wmf().placeable(0, 0, box, box / 2, inch).record(META_SETWINDOWORG, yx(0, 0));
        if (extX >= 0) f.record(META_SETWINDOWEXT, yx(extY, extX));
        return f;
    };
    const Wmf moved =
        Wmf().record(META_SETWINDOWEXT, yx(10, 10)).record(META_SETWINDOWORG, yx(100, 200));
    const std::tuple<const char*, Wmf, int, int, int, int> cases[] = {
        {"twips", Wmf(), 30, 2, 45, 2},
        {"twips, truncated toward zero", Wmf(), -29, -1, -45, -3},
        {"window origin", moved, 250, 3, 100, 0},
        {"distance wraps in 16 bits", Wmf().record(META_SETWINDOWORG, yx(0, -2)), 32767, -2184,
         32767, 2184},
        {"extent matches the box", placeable(1440, 2880, 2880, 1440), 2880, 192, 1440, 96},
        {"half the box", placeable(1440, 2880, 1440, 720), 2880, 384, 1440, 192},
        {"zero extent", placeable(1440, 2880, 0, 720), 15, 2880, 15, 1440},
        {"no extent yet", placeable(1440, 2880, -1, -1), 2880, 192, 1440, 96},
        {"Inch 0", placeable(0, 1440, -1, -1), 1440, 96, 1440, 96},
        {"out of range", placeable(96, 30000, 1, 1), 10, -32768, 10, -32768},
    };
    for (auto [what, file, xIn, x, yIn, y] : cases)
        EXPECT_EQ(testutil::BothOrders(file.record(META_LINETO, yx(yIn, xIn))),
                  testutil::Line(0, 0, x, y))
            << what;
}
