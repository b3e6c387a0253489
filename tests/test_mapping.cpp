// Coordinate mapping of both interpreters, driven by their mapping records.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "api/Logger.h"
#include "byteorder/BEndTools.h"
#include "emf/Emf2SVG.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"
#include "wmf/Wmf2SVG.h"

namespace {

using mfb::Bytes;

// Runs a converter over a file and keeps it for questions about its mapping.
struct EmfRun {
    explicit EmfRun(const QByteArray& file) : bytes(file) {
        converter.ConvertEMFToSVG(reinterpret_cast<unsigned char*>(bytes.data()), g_Logger);
    }
    QByteArray bytes;
    Emf2SvgConverter converter;
};

Bytes Size(int cx, int cy) {
    return Bytes().i32(cx).i32(cy);
}

mfb::Emf Anisotropic() {
    return mfb::Emf().record(mfb::EMR_SETMAPMODE, Bytes().u32(8));
}

}  // namespace

TEST(EmfMapping, IdentityByDefault) {
    EmfRun run(mfb::Emf().build());
    for (int x : {0, 1, -1, 100, -12345, 16777216, -16777216}) {
        EXPECT_EQ(run.converter.MapX(x, 1), x);
        EXPECT_EQ(run.converter.MapY(x, 1), x);
        EXPECT_EQ(run.converter.MapX(x, 0), x);
    }
}

TEST(EmfMapping, ExtentsSetTheDivisorsOnlyInAnisotropicMode) {
    const struct {
        const char* what;
        QByteArray file;
        float divisorX, divisorY;
    } cases[] = {
        {"window then viewport",
         Anisotropic().record(9, Size(1000, 1000)).record(11, Size(500, 500)).build(), 2, 2},
        {"viewport then window keeps the header ratio",
         Anisotropic().record(11, Size(500, 500)).record(9, Size(1000, 1000)).build(), 31.25f,
         31.25f},
        {"negative viewport mirrors",
         Anisotropic().record(9, Size(1000, 1000)).record(11, Size(500, -500)).build(), 2, -2},
        {"zero extent leaves the divisor",
         Anisotropic().record(9, Size(1000, 0)).record(11, Size(500, 500)).build(), 2, 31.25f},
        {"not anisotropic",
         mfb::Emf().record(9, Size(1000, 1000)).record(11, Size(500, 500)).build(), 1, 1},
        {"MM_TEXT after MM_ANISOTROPIC keeps it",
         Anisotropic()
             .record(17, Bytes().u32(1))
             .record(9, Size(1000, 1000))
             .record(11, Size(500, 500))
             .build(),
         2, 2},
    };
    for (const auto& c : cases) {
        EmfRun run(c.file);
        EXPECT_EQ(run.converter.MapX(1000, 0), (int)std::floor(1000 / c.divisorX + 0.5)) << c.what;
        EXPECT_EQ(run.converter.MapY(1000, 0), (int)std::floor(1000 / c.divisorY + 0.5)) << c.what;
    }
}

TEST(EmfMapping, LengthsRoundHalfUpPositionsTruncate) {
    EmfRun run(Anisotropic().record(9, Size(1000, 1000)).record(11, Size(500, 500)).build());
    const struct {
        int in, position, length;
    } cases[] = {{100, 50, 50}, {101, 50, 51}, {5, 2, 3}, {-5, -2, -2}, {-3, -1, -1}, {-7, -3, -3}};
    for (const auto& c : cases) {
        EXPECT_EQ(run.converter.MapX(c.in, 1), c.position) << c.in;
        EXPECT_EQ(run.converter.MapX(c.in, 0), c.length) << c.in;
    }
}

TEST(EmfMapping, WindowAndPictureOriginsAreSubtractedAfterDividing) {
    // Bounds at (40, 30) matching the frame: the picture origin is (40, 30).
    EmfRun run(Anisotropic()
                   .bounds(40, 30, 140, 130)
                   .frame(1250, 938, 4375, 4063)
                   .record(9, Size(200, 200))
                   .record(11, Size(100, 100))
                   .record(mfb::EMR_SETWINDOWORGEX, Bytes().i32(100).i32(50))
                   .build());
    EXPECT_EQ(run.converter.MapX(300, 1), 300 / 2 - 100 - 40);
    EXPECT_EQ(run.converter.MapY(300, 1), 300 / 2 - 50 - 30);
    EXPECT_EQ(run.converter.MapX(300, 0), 150);
}

TEST(EmfMapping, PictureOriginFromFrameWhenBoundsDisagree) {
    EmfRun run(mfb::Emf().bounds(0, 0, 100, 100).frame(1000, 2000, 4125, 5125).build());
    EXPECT_EQ(run.converter.MapX(10, 1), 10 - 10);
    EXPECT_EQ(run.converter.MapY(10, 1), 10 - 20);
}

TEST(EmfMapping, WorldTransformAppliesToMapPointOnly) {
    // Rotation by 90 degrees: (10, 0) becomes (0, 10).
    EmfRun run(
        mfb::Emf()
            .record(mfb::EMR_SETWORLDTRANSFORM, Bytes().f32(0).f32(1).f32(-1).f32(0).f32(0).f32(0))
            .build());
    tagPOINTS out{};
    run.converter.MapPoint(tagPOINTS{10, 0}, out);
    EXPECT_EQ(out.x, 0);
    EXPECT_EQ(out.y, 10);
    EXPECT_EQ(run.converter.MapX(10, 1), 10);
    const tagXFORM& w = run.converter.Writer().WorldTransform();
    EXPECT_EQ(w.eM12, 1.0f);
    EXPECT_EQ(w.eM21, -1.0f);

    // Each product is rounded to a float before it is added: 4097 * (1 - 2^-13) rounds to
    // 4096.5, so both coordinates come to 100. A fused multiply-add, which a compiler may emit
    // for an FMA machine (s390x, or x86 with -march=haswell), gives 99 on one axis at least.
    const float nearOne = 1.0f - 1.0f / 8192;
    EmfRun fused(
        mfb::Emf()
            .record(mfb::EMR_SETWORLDTRANSFORM,
                    Bytes().f32(nearOne).f32(-1).f32(-1).f32(nearOne).f32(100.5f).f32(100.5f))
            .build());
    fused.converter.MapPoint(tagPOINTS{4097, 4097}, out);
    EXPECT_EQ(out.x, 100);
    EXPECT_EQ(out.y, 100);
}

TEST(WorldTransform, ModifyModes) {
    CMySVGWriter w;
    EXPECT_TRUE(w.ModifyWorldTransform(2, 0, 0, 2, 10, 20, 2));
    EXPECT_TRUE(w.ModifyWorldTransform(2, 0, 0, 2, 10, 20, 2));
    EXPECT_EQ(w.WorldTransform().eM11, 4.0f);
    EXPECT_EQ(w.WorldTransform().eM22, 4.0f);
    EXPECT_EQ(w.WorldTransform().eDx, 10.0f);  // replaced, not composed
    EXPECT_TRUE(w.ModifyWorldTransform(1, 2, 3, 4, 5, 6, 3));
    EXPECT_EQ(w.WorldTransform().eM11, 4.0f);
    EXPECT_EQ(w.WorldTransform().eM12, 8.0f);
    EXPECT_FALSE(w.ModifyWorldTransform(9, 9, 9, 9, 9, 9, 0));
    EXPECT_FALSE(w.ModifyWorldTransform(9, 9, 9, 9, 9, 9, 5));
    EXPECT_EQ(w.WorldTransform().eDx, 5.0f);
    EXPECT_TRUE(w.ModifyWorldTransform(9, 9, 9, 9, 9, 9, 1));
    EXPECT_EQ(w.WorldTransform().eM11, 1.0f);
    EXPECT_EQ(w.WorldTransform().eDy, 0.0f);
}

namespace {

// A WMF converter prepared from a file's headers and run over its records.
struct WmfRun {
    explicit WmfRun(const QByteArray& file) : bytes(file) {
        _PlaceableMetaHeader ph{};
        std::memcpy(&ph, bytes.constData(), sizeof ph);
        InitPlaceableMetaHeader(ph);
        const bool placeable = ph.Key == PLACEABLE_KEY;
        converter.InitializeCoordinates(placeable, ph);
        const int headers = placeable ? 40 : 18;
        converter.ConvertWMFToSVG(reinterpret_cast<unsigned char*>(bytes.data()) + headers,
                                  (unsigned long)bytes.size(), 1000, g_Logger);
    }
    QByteArray bytes;
    WMF2SVGConverter converter;
};

Bytes Pair(int first, int second) {
    return Bytes().i16((int16_t)first).i16((int16_t)second);
}

}  // namespace

TEST(WmfMapping, TwipsWithoutPlaceableHeader) {
    WmfRun plain(mfb::Wmf().build());
    EXPECT_EQ(plain.converter.MapX(30), 2);
    EXPECT_EQ(plain.converter.MapY(45), 2);  // (45 - 1) / 15 truncated
    EXPECT_EQ(plain.converter.MapX(-29), -1);

    // A window extent changes nothing; a window origin shifts.
    WmfRun moved(mfb::Wmf()
                     .record(mfb::META_SETWINDOWEXT, Pair(10, 10))
                     .record(mfb::META_SETWINDOWORG, Pair(100, 100))
                     .build());
    EXPECT_EQ(moved.converter.MapX(100), 0);
    EXPECT_EQ(moved.converter.MapY(100), 0);
    EXPECT_EQ(moved.converter.MapX(250), 10);
    // The distance from the window origin wraps in 16 bits.
    WmfRun wrapped(mfb::Wmf().record(mfb::META_SETWINDOWORG, Pair(0, -2)).build());
    EXPECT_EQ(wrapped.converter.MapX(32767), -2184);
}

TEST(WmfMapping, PlaceableFilesStretchByTheWindowExtent) {
    const auto file = [](int extX, int extY) {
        return mfb::Wmf()
            .placeable(0, 0, 2880, 1440, 1440)
            .record(mfb::META_SETWINDOWORG, Pair(0, 0))
            .record(mfb::META_SETWINDOWEXT, Pair(extY, extX))
            .build();
    };
    WmfRun same(file(2880, 1440));
    EXPECT_EQ(same.converter.MapX(2880), 192);
    EXPECT_EQ(same.converter.MapY(1440), 96);
    WmfRun half(file(1440, 720));
    EXPECT_EQ(half.converter.MapX(2880), 384);
    EXPECT_EQ(half.converter.MapY(1440), 192);
    // A zero extent makes the factors the picture size itself.
    WmfRun zero(file(0, 720));
    EXPECT_EQ(zero.converter.MapX(15), 2880);
    // Before any window extent the window matches the bounding box.
    WmfRun none(mfb::Wmf()
                    .placeable(0, 0, 2880, 1440, 1440)
                    .record(mfb::META_SETWINDOWORG, Pair(0, 0))
                    .build());
    EXPECT_EQ(none.converter.MapX(2880), 192);
}

TEST(WmfMapping, OutOfRangeResultsAndInchZero) {
    WmfRun inchZero(mfb::Wmf()
                        .placeable(0, 0, 1440, 1440, 0)
                        .record(mfb::META_SETWINDOWORG, Pair(0, 0))
                        .build());
    EXPECT_EQ(inchZero.converter.MapX(1440), 96);  // an Inch of 0 reads as 1440
    EXPECT_TRUE(inchZero.converter.GetOutSVG().startsWith(testutil::Header(96, 96)));

    WmfRun wide(mfb::Wmf()
                    .placeable(0, 0, 30000, 30000, 96)
                    .record(mfb::META_SETWINDOWORG, Pair(0, 0))
                    .record(mfb::META_SETWINDOWEXT, Pair(1, 1))
                    .build());
    EXPECT_EQ(wide.converter.MapX(10), -32768);
}
