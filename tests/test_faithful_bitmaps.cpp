// The faithful interpreter's bit blocks: cropping, mirroring, mask pairs, blending, the
// writer's shared images and hostile bitmaps.
#include <gtest/gtest.h>

#include <functional>

#include "faithful/DeviceContext.h"
#include "faithful/Faithful.h"
#include "tests/MetafileBuilder.h"

using namespace faithful;

namespace {

struct ImageCapture : DrawSink {
    std::vector<ImageOp> images;
    void Draw(const DrawOp&) override {}
    void DrawImage(const ImageOp& op) override { images.push_back(op); }
};

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

BitmapBlt Blt(RectF src, double x, double y, double w, double h, uint32_t rop = 0x00CC0020) {
    BitmapBlt b;
    b.bitmap = Bitmap();
    b.src = src;
    b.dest[0] = {x, y};
    b.dest[1] = {x + w, y};
    b.dest[2] = {x, y + h};
    b.rop = rop;
    return b;
}

mfb::Bytes StretchDib(int x, int y, int cx, int cy, int cxs, int cys, const mfb::Bytes& header,
                      const mfb::Bytes& bits) {
    mfb::Bytes b = mfb::Bytes().zeros(16).i32(x).i32(y).i32(0).i32(0).i32(cxs).i32(cys);
    b.u32(80).u32(header.size()).u32(80 + header.size()).u32(bits.size()).u32(0);
    return b.u32(0x00CC0020).i32(cx).i32(cy).append(header).append(bits);
}

}  // namespace

// Each row draws bit blocks through a device context (MM_TEXT) and checks the one image it
// gives: its size, its map to the device, the alpha of its top-left and bottom-right pixels,
// its opacity.
TEST(FaithfulBitmaps, Blocks) {
    const struct {
        const char* name;
        std::function<void(DeviceContext&)> draw;
        int images, width;
        double m11, dx;
        int alphaFirst, alphaLast;
        double opacity;
    } rows[] = {
        {"crop",
         [](DeviceContext& dc) {
             dc.DrawBitmap(Blt({2, 0, 4, 2}, 10, 10, 40, 20));
         },
         1, 2, 10, 10, 255, 255, 1},
        {"mirror",
         [](DeviceContext& dc) {
             dc.DrawBitmap(Blt({0, 0, 4, 2}, 50, 10, -40, 20));
         },
         1, 4, -10, 50, 255, 255, 1},
        {"mask then image",
         [](DeviceContext& dc) {
             BitmapBlt mask = Blt({0, 0, 4, 2}, 0, 0, 4, 2, 0x008800C6);
             mask.bitmap = Bitmap(true);
             mask.monochrome = true;
             dc.DrawBitmap(mask);
             dc.DrawBitmap(Blt({0, 0, 4, 2}, 0, 0, 4, 2, 0x00EE0086));
             dc.FlushBitmaps();
         },
         1, 4, 1, 0, 255, 0, 1},
        {"srcand alone: white is transparent",
         [](DeviceContext& dc) {
             dc.DrawBitmap(Blt({0, 0, 4, 1}, 0, 0, 4, 1, 0x008800C6));
             dc.FlushBitmaps();
         },
         1, 4, 1, 0, 255, 0, 1},
        {"constant alpha",
         [](DeviceContext& dc) {
             BitmapBlt b = Blt({0, 0, 4, 2}, 0, 0, 4, 2);
             b.blend = BitmapBlt::Blend::Alpha;
             b.constantAlpha = 51;
             dc.DrawBitmap(b);
         },
         1, 4, 1, 0, 255, 255, 0.2},
        {"transparent colour",
         [](DeviceContext& dc) {
             BitmapBlt b = Blt({0, 0, 4, 1}, 0, 0, 4, 1);
             b.blend = BitmapBlt::Blend::Transparent;
             b.key = 0xFFFFFF;
             dc.DrawBitmap(b);
         },
         1, 4, 1, 0, 255, 0, 1},
        {"empty source",
         [](DeviceContext& dc) {
             dc.DrawBitmap(Blt({0, 0, 0, 2}, 0, 0, 4, 2));
         },
         0, 0, 0, 0, 0, 0, 0},
        {"source outside",
         [](DeviceContext& dc) {
             dc.DrawBitmap(Blt({-9, 5, 4, 2}, 0, 0, 4, 2));
         },
         0, 0, 0, 0, 0, 0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ImageCapture sink;
        DeviceContext dc(sink);
        row.draw(dc);
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

// End to end: a bitmap drawn twice is written once; hostile bitmaps draw nothing.
TEST(FaithfulBitmaps, Records) {
    using namespace mfb;
    const Bytes pixels = Bytes().u32(0x00FF0000).u32(0x0000FF00);  // 2 x 1, 32 bits
    Bytes rle = Bytes().u32(40).i32(60000).i32(60000).u16(1).u16(8).u32(1).zeros(20);
    const struct {
        const char* name;
        Emf file;
        int images, uses;
    } rows[] = {
        {"shared",
         Emf()
             .record(EMR_STRETCHDIBITS,
                     StretchDib(0, 0, 10, 10, 2, 1, BitmapInfo(2, 1, 32), pixels))
             .record(EMR_STRETCHDIBITS,
                     StretchDib(20, 0, 10, 10, 2, 1, BitmapInfo(2, 1, 32), pixels)),
         1, 2},
        {"rows past the record",
         Emf().record(EMR_STRETCHDIBITS,
                      StretchDib(0, 0, 10, 10, 2, 1, BitmapInfo(65536, 65536, 32), pixels)),
         0, 0},
        {"run-length claim past its bytes",
         Emf().record(EMR_STRETCHDIBITS,
                      StretchDib(0, 0, 10, 10, 2, 1, rle, Bytes().u32(0x01000204))),
         0, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QByteArray out;
        const QByteArray file = row.file.build();
        ASSERT_EQ(faithful::Convert(reinterpret_cast<const unsigned char*>(file.constData()),
                                    file.size(), out),
                  1);
        EXPECT_EQ(out.count("<image"), row.images);
        EXPECT_EQ(out.count("<use"), row.uses);
    }
}
