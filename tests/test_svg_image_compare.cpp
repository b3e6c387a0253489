// The corpus comparison's judge: documents agree when only the PNG bytes of their images
// differ, never when the text or a pixel does.
#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>

#include "tests/SvgImageCompare.h"

namespace {

// A PNG of a 3x2 picture, compressed at `quality` (0 smallest, 100 stored); `odd` changes one
// pixel.
QByteArray Png(int quality, bool odd = false) {
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(0x80123456);
    if (odd) image.setPixel(2, 1, 0x80123457);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG", quality);
    return bytes;
}

QByteArray Svg(const QByteArray& png, const char* after = "\"/>\n") {
    return "<svg><image xlink:href=\"data:image/png;base64,\n" + png.toBase64() + "\n" + after +
           "<image xlink:href=\"data:image/png;base64,\nnot-a-png\"/>\n</svg>\n";
}

}  // namespace

TEST(SvgImageCompare, ImagesCompareAsPixels) {
    ASSERT_NE(Png(0), Png(100));
    const std::pair<QByteArray, QString> cases[] = {
        {Svg(Png(0)), ""},
        {Svg(Png(100)), ""},
        {Svg(Png(0, true)), "image 1 differs at pixel (2, 1): #80123456 against #80123457"},
        {Svg(Png(0), "\" />\n"), "the text before image 2 differs"},
        {Svg(Png(0)) + " ", "the text after the last image differs"},
        {"<svg/>", "2 images against 0"},
        {Svg("GIF89a"), "image 1 is not a PNG"},
    };
    for (const auto& [other, why] : cases)
        EXPECT_EQ(svgcompare::Difference(Svg(Png(0)), other), why) << other.toStdString();
}
