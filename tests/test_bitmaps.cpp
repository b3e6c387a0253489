// Bitmaps: the decoders and the pending mask, base64 text, the image element, and the EMF and
// WMF bitmap records end to end. Every file is converted in both byte orders, and the PNG data
// is checked by decoding it back to pixels.

#include <QRegularExpression>
#include <thread>

#include "svg/DibDecoder.h"
#include "tests/TestUtil.h"

using namespace mfb;
using Pixels = std::vector<QRgb>;

namespace {

const int kSrcAnd = dib::kSrcAnd;
const QRgb kBlack = 0xFF000000, kWhite = 0xFFFFFFFF, kGrey = 0xFF808080;

Bytes U8s(std::initializer_list<int> v) {
    Bytes b;
    for (int x : v) b.u8((uint8_t)x);
    return b;
}

const Bytes kRgb = BitmapInfo(1, 1, 24), kRgbBits = U8s({0x30, 0x20, 0x10, 0});
const Pixels kRgbPixel = {0xFF102030};

// Bit-block payloads with the 1 x 1 24-bit bitmap unless given another.
Bytes Blt(uint32_t type, int x, int y, int cx, int cy, uint32_t rop, const Bytes& header = kRgb,
          const Bytes& bits = kRgbBits) {
    return EmfBlt(type, x, y, cx, cy, rop, header, bits);
}
QString Image(int x, int y, int w, int h) {
    return QString::asprintf("<image x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" ", x, y, w, h) +
           "xlink:href=\"data:image/png;base64,\n~\"/>\n";
}

// A document body with each base64 text replaced by "~", and the pixels of each image row by
// row as 0xAARRGGBB.
using Drawn = std::pair<QString, std::vector<Pixels>>;
Drawn Split(const QString& body) {
    static const QRegularExpression data(QStringLiteral("base64,\n([A-Za-z0-9+/=\n]*)\""));
    Drawn d{body, {}};
    for (auto it = data.globalMatch(d.first); it.hasNext();) {
        const QByteArray text = it.next().captured(1).toLatin1();
        for (int at = 76; at < text.size(); at += 77) EXPECT_EQ(text[at], '\n');
        const QImage image = QImage::fromData(QByteArray::fromBase64(text), "PNG");
        d.second.emplace_back();
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) d.second.back().push_back(image.pixel(x, y));
    }
    d.first.replace(data, QStringLiteral("base64,\n~\""));
    return d;
}

// The images of an EMF file with one EMR_STRETCHDIBITS record per bitmap: header, bits and
// raster operation (the transparent key of 24- and 32-bit bitmaps).
struct Dib {
    Bytes header, bits;
    int op = -1;
};
std::vector<Pixels> DrawDibs(const std::vector<Dib>& dibs) {
    mfb::Emf e;
    for (const Dib& d : dibs)
        e.record(EMR_STRETCHDIBITS, EmfStretchDib(0, 0, 1, 1, d.op, d.header, d.bits));
    return Split(testutil::BothOrders(e)).second;
}

}  // namespace

// Every bit count, row order and padding. Bitmaps whose bits the record cannot hold, whose width
// and height make a product that overflows, or that are empty give no image, and the bitmaps
// after them still draw.
TEST(BitmapDecoding, EveryBitCountRowOrderAndPadding) {
    const std::vector<Pixels> expected = {
        // 4-bit, bottom-up; 5 bytes of bits make 1 byte of padding after each row.
        {0xFFAABBCC, 0xFFDDEEFF, 0xFF010203, 0xFF112233, 0xFF445566, 0xFF778899},
        // 8-bit, top-down: the last row needs no padding.
        {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF123456},
        // 16-bit 5-5-5, odd width padded to whole words.
        {kWhite, 0xFF00000F, kBlack, 0xFF0000FF, 0xFF00FF00, 0xFFFF0000},
        // 24-bit: 3 bytes after each row of width 3, none after a row of width 4.
        {0xFF070809, 0xFF040506, 0xFF010203, 0xFF030201, 0xFF060504, 0xFF090807},
        {0xFF030201, 0xFF060504, 0xFF090807, 0xFF0C0B0A},
        // 32-bit: the transparent key red turns red pixels white; a key of 0 never matches.
        {kWhite, 0xFF030201},
        {kBlack},
    };
    std::vector<Dib> dibs = {
        {BitmapInfo(3, 2, 4, {0x112233, 0x445566, 0x778899, 0xAABBCC, 0xDDEEFF, 0x010203}),
         U8s({0x01, 0x20, 9, 0x34, 0x50})},
        {BitmapInfo(2, -2, 8, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}), U8s({0, 1, 9, 9, 2, 3})},
        {BitmapInfo(3, 2, 16),
         Bytes().u16(0x001F).u16(0x03E0).u16(0x7C00).u16(9).u16(0x7FFF).u16(0x0001).u16(0)},
        {BitmapInfo(3, 2, 24),
         U8s({1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 9, 8, 7, 6, 5, 4, 3, 2, 1})},
        {BitmapInfo(4, 1, 24), U8s({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12})},
        {BitmapInfo(2, 1, 32), U8s({0, 0, 255, 7, 1, 2, 3, 0}), 0x000000FF},
        {BitmapInfo(1, 1, 32), U8s({0, 0, 0, 0}), 0},
    };
    const int noImage[][3] = {{30000, 30000, 8},  {30000, 30000, 1},  {0x7FFFFFFF, 2, 32},
                              {2, INT32_MIN, 24}, {65536, 65536, 16}, {2, 2, 32},
                              {0, 1, 8},          {-1, 1, 8},         {1, 0, 8},
                              {9, 1, 4}};
    for (const auto& c : noImage)
        dibs.insert(dibs.begin() + 1, {BitmapInfo(c[0], c[1], c[2]), U8s({1, 2, 3, 4})});
    EXPECT_EQ(DrawDibs(dibs), expected);
}

// A monochrome bitmap is not drawn; the next 4-, 8- or 16-bit bitmap drawn with SRCAND turns
// transparent where it is black. A bitmap of 4 to 32 bits ends it, also one whose bits the
// record cannot hold; other bit counts keep it.
TEST(BitmapDecoding, PendingMask) {
    const Dib mask{BitmapInfo(2, 1, 1, {0, 0xFFFFFF}), U8s({0x40, 0, 0, 0})};
    const Dib grey{BitmapInfo(2, 1, 8, {0x808080}), U8s({0, 0, 0, 0}), kSrcAnd};
    const Dib plainGrey{grey.header, grey.bits};
    const Dib black16{BitmapInfo(2, 1, 16), Bytes().u32(0), kSrcAnd};
    const Dib twoBit{BitmapInfo(2, 1, 2), grey.bits}, huge{BitmapInfo(30000, 30000, 8), grey.bits};
    const Pixels masked = {0, kGrey}, opaque = {kGrey, kGrey};
    EXPECT_EQ(DrawDibs({mask, grey, grey}), (std::vector<Pixels>{masked, opaque}));
    EXPECT_EQ(DrawDibs({mask, plainGrey, grey}), (std::vector<Pixels>{opaque, opaque}));
    EXPECT_EQ(DrawDibs({mask, black16, grey}), (std::vector<Pixels>{{0, kBlack}, opaque}));
    EXPECT_EQ(DrawDibs({mask, twoBit, grey}), (std::vector<Pixels>{masked}));
    EXPECT_EQ(DrawDibs({mask, huge, grey}), (std::vector<Pixels>{opaque}));
    EXPECT_EQ(DrawDibs({grey, grey}), (std::vector<Pixels>{opaque, opaque}));
}

TEST(BitmapOutput, Base64LinesAndTheImageElement) {
    const unsigned char bytes[57] = {'a', 'b', 'c'};
    const std::pair<unsigned long, QByteArray> base64[] = {
        {0, ""}, {1, "YQ=="}, {2, "YWI="}, {3, "YWJj"}, {57, "YWJj" + QByteArray(72, 'A') + "\n"}};
    for (const auto& [length, text] : base64) {
        QByteArray out = "x";
        EXPECT_EQ(dib::ConvertToBase64(bytes, length, out), length > 0);
        EXPECT_EQ(out, "x" + text);
    }
    CMySVGWriter writer;
    writer.WriteBlt(10, 20, 40, 30, "QQ==\n");
    writer.SetWorldTransform(2, 0, 0, 2, 5, 7);
    writer.SelectClipPath(0);  // an empty clip path
    writer.WriteBlt(10, 20, 40, 30, "QQ==");
    EXPECT_EQ(
        writer.TakeSVGOutput(),
        "<image x=\"10\" y=\"20\" width=\"40\" height=\"30\" "
        "xlink:href=\"data:image/png;base64,\nQQ==\n\"/>\n"
        "\n<defs><clipPath id= \"ClPath1\">\n<path d = \"\" stroke=\"none\" stroke-width=\"1\"  "
        "fill=\"none\" />\n</clipPath></defs>"
        "<image x=\"25\" y=\"47\" width=\"85\" height=\"67\" "
        "xlink:href=\"data:image/png;base64,\nQQ==\" " +
            writer.StyleManager().GetClipPath() + "/>\n");
}

// Positions are mapped with the window origin (100, 100), sizes without. A PATCOPY blit is a
// rectangle; a record without a bitmap, or whose bitmap lies outside it, draws nothing.
TEST(EmfBitmaps, RecordsDrawTheirBitmapsIntoTheDestination) {
    const uint32_t kPatCopy = 0x00F00021, kBlackness = 0x42;
    mfb::Emf e;
    e.record(EMR_SETWINDOWORGEX, Bytes().i32(100).i32(100))
        .record(EMR_BITBLT, Blt(EMR_BITBLT, 150, 120, 40, 30, kPatCopy, Bytes(), Bytes()))
        .record(EMR_STRETCHBLT, Blt(EMR_STRETCHBLT, 150, 120, 40, 30, kPatCopy))
        .record(EMR_BITBLT, Blt(EMR_BITBLT, 100, 100, 1, 2, kBlackness))
        .record(EMR_MASKBLT, Blt(EMR_MASKBLT, 100, 100, 3, 4, kBlackness))
        .record(EMR_TRANSPARENTBLT, Blt(EMR_TRANSPARENTBLT, 100, 100, 5, 6, 0x00302010))
        .record(EMR_STRETCHDIBITS, EmfStretchDib(100, 100, 7, 8, 0x00CC0020, kRgb, kRgbBits))
        .record(EMR_PLGBLT, Blt(EMR_BITBLT, 100, 100, 9, 9, kBlackness))
        .record(EMR_BITBLT, Blt(EMR_BITBLT, 100, 100, 9, 9, kBlackness, Bytes(), Bytes())
                                .append(kRgb)
                                .append(kRgbBits))
        .record(EMR_BITBLT, Blt(EMR_BITBLT, 100, 100, 9, 9, kBlackness, kRgb, Bytes()))
        .record(EMR_BITBLT,
                Blt(EMR_BITBLT, 100, 100, 9, 9, kBlackness, Bytes().zeros(39), Bytes()));
    EXPECT_EQ(Split(testutil::BothOrders(e)),
              Drawn("<rect x=\"50\" y=\"20\" width=\"40\" height=\"30\" rx=\"0\" ry=\"0\"  "
                    "stroke=\"black\" stroke-width=\"1\" fill=\"none\"/>\n" +
                        Image(50, 20, 40, 30) + Image(0, 0, 1, 2) + Image(0, 0, 3, 4) +
                        Image(0, 0, 5, 6) + Image(0, 0, 7, 8),
                    {kRgbPixel, kRgbPixel, kRgbPixel, {kWhite}, kRgbPixel}));
}

// Without a placeable header (scale 15, origin 0, 1): the corner is mapped, the size is not.
// The colour table is read from the bits, which follow the 40-byte header directly.
TEST(WmfBitmaps, RecordsMapTheCornerAndKeepTheSize) {
    const Bytes rgb = Bytes().append(kRgb).append(kRgbBits);
    const Bytes indexed = BitmapInfo(1, 1, 8).append(U8s({0, 0x20, 0x10, 0}));
    const auto at = [](int x, int y) { return Bytes().i16(y).i16(x); };
    const auto rop = [](int skip) { return Bytes().u32(0xCC0020).zeros(skip); };
    mfb::Wmf w;
    w.record(0x0940, rop(4).u16(16).u16(16).append(at(150, 151)).append(rgb))
        .record(0x0922, rop(4).u16(2).u16(1).append(at(0, 1)).append(indexed))
        .record(0x0B41, rop(8).u16(4).u16(3).append(at(15, 16)).append(rgb))
        .record(0x0F43, rop(10).u16(6).u16(5).append(at(30, 31)).append(rgb))
        .record(0x0B23, rop(10).u16(8).u16(7).append(at(45, 46)).append(rgb))
        .record(0x0940, rop(4).u16(16).u16(16).append(at(150, 151)).zeros(2));  // no bitmap
    EXPECT_EQ(Split(testutil::BothOrders(w)),
              Drawn(Image(10, 10, 16, 16) + Image(0, 0, 1, 2) + Image(1, 1, 3, 4) +
                        Image(2, 2, 5, 6) + Image(3, 3, 7, 8),
                    {kRgbPixel, {0xFF102000}, kRgbPixel, kRgbPixel, kRgbPixel}));
}

// A mask left pending by one conversion is taken by the next on the same thread, and not by a
// conversion on another thread.
TEST(BitmapDecoding, PendingMaskBelongsToTheThread) {
    const auto pixels = [](int op, uint16_t bitCount) {
        const QByteArray file =
            mfb::Emf()
                .record(EMR_STRETCHDIBITS,
                        EmfStretchDib(0, 0, 1, 1, op, BitmapInfo(1, 1, bitCount, {0, 0xFFFFFF}),
                                      U8s({0, 0, 0, 0})))
                .build();
        const auto images = Split(testutil::Body(testutil::Convert(file).svg)).second;
        return images.size() == 1 ? images[0] : Pixels();
    };
    EXPECT_EQ(pixels(-1, 1), Pixels());
    Pixels other;
    std::thread([&] { other = pixels(kSrcAnd, 8); }).join();
    EXPECT_EQ(other, Pixels{kBlack});
    EXPECT_EQ(pixels(kSrcAnd, 8), Pixels{0});
}
