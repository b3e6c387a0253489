// Bitmaps: the decoders and the pending mask, base64 text, the image element, and the EMF and
// WMF bitmap records end to end. PNG data is checked by decoding it back to pixels.
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <thread>

#include "svg/DibDecoder.h"
#include "svg/SVGWriter.h"
#include "tests/MetafileBuilder.h"
#include "tests/TestUtil.h"

using mfb::Bytes;
using Pixels = std::vector<QRgb>;

class WriterTestPeer {
  public:
    static void SelectClip(CMySVGWriter& w) { w.m_clipSelected = true; }
};

namespace {

const int kSrcAnd = dib::kSrcAnd;
const QRgb kBlack = 0xFF000000, kWhite = 0xFFFFFFFF;

using mfb::BitmapInfo;
Bytes U8s(std::initializer_list<int> v) {
    Bytes b;
    for (int x : v) b.u8((uint8_t)x);
    return b;
}

// Decodes `header` followed by `bits` in both byte orders; the two images must agree.
QImage Decode(const Bytes& header, const Bytes& bits, int op = -1, int pad = 0) {
    const auto run = [&](bool swapped) {
        QByteArray record = Bytes().zeros(8).append(header).append(bits).toByteArray(swapped);
        dib::DibSource source;
        EXPECT_TRUE(dib::LocateBitmap(reinterpret_cast<const unsigned char*>(record.constData()),
                                      record.size(), 8, 8 + header.size(), source));
        return dib::GetQImage(source, op, pad);
    };
    const QImage before = dib::PendingMask();
    const QImage little = run(false);
    const QImage after = dib::PendingMask();
    dib::PendingMask() = before;
    testutil::ForceBigEndian bigEndian;
    EXPECT_EQ(run(true), little);
    EXPECT_EQ(dib::PendingMask(), after);
    return little;
}

// The pixels row by row as 0xAARRGGBB.
Pixels PixelsOf(const QImage& image) {
    Pixels p;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) p.push_back(image.pixel(x, y));
    return p;
}

// The image elements of a document: the body with each base64 text replaced by "~", and the
// decoded images.
std::pair<QString, std::vector<QImage>> SplitImages(const QString& svg) {
    static const QRegularExpression data(QStringLiteral("base64,\n([A-Za-z0-9+/=\n]*)\""));
    std::vector<QImage> images;
    QString body = testutil::Body(svg);
    for (auto it = data.globalMatch(body); it.hasNext();) {
        const QByteArray text = it.next().captured(1).toLatin1();
        for (int at = 76; at < text.size(); at += 77) EXPECT_EQ(text[at], '\n');
        images.push_back(QImage::fromData(QByteArray::fromBase64(text), "PNG"));
    }
    body.replace(data, QStringLiteral("base64,\n~\""));
    return {body, images};
}

// A document converted from `file`, and from its byte-swapped twin as a big-endian host reads
// it; the two must agree.
QString ConvertBoth(const std::function<QByteArray(bool)>& file) {
    const QString little = testutil::Convert(file(false)).svg;
    dib::PendingMask() = QImage();
    testutil::ForceBigEndian bigEndian;
    EXPECT_EQ(testutil::Convert(file(true)).svg, little);
    return little;
}

}  // namespace

TEST(BitmapDecoding, EveryBitCountRowOrderAndPadding) {
    const struct {
        const char* what;
        QImage image;
        Pixels pixels;
    } cases[] = {
        {"4-bit, bottom-up, 1 byte after each row",
         Decode(BitmapInfo(3, 2, 4, {0x112233, 0x445566, 0x778899, 0xAABBCC, 0xDDEEFF, 0x010203}),
                U8s({0x01, 0x20, 9, 0x34, 0x50}), -1, 1),
         {0xFFAABBCC, 0xFFDDEEFF, 0xFF010203, 0xFF112233, 0xFF445566, 0xFF778899}},
        {"8-bit, top-down",
         Decode(BitmapInfo(2, -2, 8, {0xFF0000, 0x00FF00, 0x0000FF, 0x123456}),
                U8s({0, 1, 9, 9, 2, 3})),
         {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFF123456}},
        {"16-bit 5-5-5, odd width padded",
         Decode(BitmapInfo(3, 2, 16),
                Bytes().u16(0x001F).u16(0x03E0).u16(0x7C00).u16(9).u16(0x7FFF).u16(0x0001).u16(0)),
         {kWhite, 0xFF00000F, kBlack, 0xFF0000FF, 0xFF00FF00, 0xFFFF0000}},
        {"24-bit, width 3: 3 bytes after each row",
         Decode(BitmapInfo(3, 2, 24),
                U8s({1, 2, 3, 4, 5, 6, 7, 8, 9, 0, 0, 0, 9, 8, 7, 6, 5, 4, 3, 2, 1})),
         {0xFF070809, 0xFF040506, 0xFF010203, 0xFF030201, 0xFF060504, 0xFF090807}},
        {"24-bit, width 4: no padding",
         Decode(BitmapInfo(4, 1, 24), U8s({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12})),
         {0xFF030201, 0xFF060504, 0xFF090807, 0xFF0C0B0A}},
        {"32-bit, transparent key red: red pixels turn white",
         Decode(BitmapInfo(2, 1, 32), U8s({0, 0, 255, 7, 1, 2, 3, 0}), 0x000000FF),
         {kWhite, 0xFF030201}},
        {"32-bit, key 0 never matches",
         Decode(BitmapInfo(1, 1, 32), U8s({0, 0, 0, 0}), 0),
         {kBlack}},
    };
    for (const auto& c : cases) EXPECT_EQ(PixelsOf(c.image), c.pixels) << c.what;
}

// A monochrome bitmap is not drawn; the next 4-, 8- or 16-bit bitmap drawn with SRCAND turns
// transparent where it is black; any bitmap of 4 to 32 bits ends it, other bit counts keep it.
TEST(BitmapDecoding, PendingMask) {
    const Bytes mask = BitmapInfo(2, 1, 1, {0x000000, 0xFFFFFF}), maskBits = U8s({0x40, 0, 0, 0});
    const Bytes grey = BitmapInfo(2, 1, 8, {0x808080}), greyBits = U8s({0, 0, 0, 0});
    const QRgb g = 0xFF808080;
    const struct {
        bool maskFirst;
        Bytes header;
        Bytes bits;
        int op;
        Pixels first, second;  // the bitmap's pixels, then those of grey with SRCAND after it
    } cases[] = {
        {true, grey, greyBits, kSrcAnd, {0, g}, {g, g}},
        {true, grey, greyBits, -1, {g, g}, {g, g}},
        {true, BitmapInfo(2, 1, 16), Bytes().u16(0).u16(0), kSrcAnd, {0, kBlack}, {g, g}},
        {true, BitmapInfo(2, 1, 4, {0x808080}), greyBits, kSrcAnd, {0, g}, {g, g}},
        {true, BitmapInfo(2, 1, 2), greyBits, kSrcAnd, {}, {0, g}},
        {true, BitmapInfo(2, 1, 64), greyBits, kSrcAnd, {}, {0, g}},
        {false, grey, greyBits, kSrcAnd, {g, g}, {g, g}},
    };
    for (const auto& c : cases) {
        dib::PendingMask() = QImage();
        if (c.maskFirst) EXPECT_TRUE(Decode(mask, maskBits).isNull());
        EXPECT_EQ(PixelsOf(Decode(c.header, c.bits, c.op)), c.first) << c.op;
        EXPECT_EQ(PixelsOf(Decode(grey, greyBits, kSrcAnd)), c.second) << c.op;
    }
}

// Headers and bits that the record cannot hold, widths and heights whose product overflows,
// and empty bitmaps give no image, and leave a pending mask as a bitmap of their bit count
// would.
TEST(BitmapDecoding, BitsOutsideTheRecordGiveNoImage) {
    const Bytes four = U8s({1, 2, 3, 4});
    for (const Bytes& header :
         {BitmapInfo(30000, 30000, 8), BitmapInfo(30000, 30000, 1), BitmapInfo(0x7FFFFFFF, 2, 32),
          BitmapInfo(2, INT32_MIN, 24), BitmapInfo(65536, 65536, 16), BitmapInfo(2, 2, 32),
          BitmapInfo(0, 1, 8), BitmapInfo(-1, 1, 8), BitmapInfo(1, 0, 8), BitmapInfo(9, 1, 4)})
        EXPECT_TRUE(Decode(header, four).isNull());
    EXPECT_TRUE(Decode(BitmapInfo(9, 1, 4), four, -1, 1000).isNull());
    EXPECT_FALSE(
        Decode(BitmapInfo(8, 1, 4), four, -1, 1000).isNull());  // the last row needs no pad
    const unsigned char record[60] = {40};
    dib::DibSource source;
    for (uint64_t offset : {0ull, 21ull, 60ull, 1ull << 40})
        EXPECT_FALSE(dib::LocateBitmap(record, sizeof record, offset, 8, source)) << offset;
    EXPECT_FALSE(dib::LocateBitmap(record, sizeof record, 4, 0, source));
}

TEST(BitmapOutput, Base64LinesAndTheImageElement) {
    const unsigned char bytes[58] = {'a', 'b', 'c'};
    const struct {
        unsigned long length;
        const char* text;
    } base64[] = {{0, ""}, {1, "YQ=="}, {2, "YWI="}, {3, "YWJj"}};
    for (const auto& c : base64) {
        QByteArray out = "x";
        EXPECT_EQ(dib::ConvertToBase64(bytes, c.length, out), c.length > 0);
        EXPECT_EQ(out, QByteArray("x") + c.text);
    }
    QByteArray out;
    dib::ConvertToBase64(bytes, 57, out);
    EXPECT_EQ(out.size(), 77);
    EXPECT_TRUE(out.endsWith("AAAA\n"));
    dib::ConvertToBase64(bytes, 58, out);
    EXPECT_TRUE(out.endsWith("AAAA\nAA=="));

    CMySVGWriter writer;
    writer.WriteBlt(10, 20, 40, 30, "QQ==\n");
    writer.SetWorldTransform(2, 0, 0, 2, 5, 7);
    WriterTestPeer::SelectClip(writer);
    writer.WriteBlt(10, 20, 40, 30, "QQ==");
    EXPECT_EQ(writer.TakeSVGOutput(),
              "<image x=\"10\" y=\"20\" width=\"40\" height=\"30\" "
              "xlink:href=\"data:image/png;base64,\nQQ==\n\"/>\n"
              "<image x=\"25\" y=\"47\" width=\"85\" height=\"67\" "
              "xlink:href=\"data:image/png;base64,\nQQ==\" " +
                  writer.StyleManager().GetClipPath() + "/>\n");
}

namespace {

const uint32_t kBitBlt = 76, kStretchBlt = 77, kMaskBlt = 78, kPlgBlt = 79, kStretchDib = 81,
               kTransparentBlt = 116;
const Bytes kRgb = BitmapInfo(1, 1, 24), kRgbBits = U8s({0x30, 0x20, 0x10, 0});

// A bit-block record's payload: destination, raster operation (or transparent colour) and
// the bitmap after the record's fixed fields; the offsets are 0 when there is no header.
Bytes EmfBlt(uint32_t type, int x, int y, int cx, int cy, uint32_t rop, const Bytes& header = kRgb,
             const Bytes& bits = kRgbBits) {
    const uint32_t fixed = type == kMaskBlt ? 128 : type == kBitBlt ? 100 : 108;
    const uint32_t at = header.size() ? fixed : 0,
                   bitsAt = header.size() ? fixed + header.size() : 0;
    Bytes b = Bytes().zeros(16).i32(x).i32(y).i32(cx).i32(cy).u32(rop).zeros(40);
    b.u32(at).u32(header.size()).u32(bitsAt).u32(bits.size());
    return b.zeros(fixed - 100).append(header).append(bits);
}
Bytes EmfStretchDib(int x, int y, int cx, int cy, uint32_t rop, const Bytes& header,
                    const Bytes& bits) {
    Bytes b = Bytes().zeros(16).i32(x).i32(y).zeros(16).u32(80).u32(header.size());
    b.u32(80 + header.size()).u32(bits.size()).u32(0).u32(rop).i32(cx).i32(cy);
    return b.append(header).append(bits);
}
QString Image(int x, int y, int w, int h) {
    return QString::asprintf("<image x=\"%d\" y=\"%d\" width=\"%d\" height=\"%d\" ", x, y, w, h) +
           "xlink:href=\"data:image/png;base64,\n~\"/>\n";
}

}  // namespace

// Positions are mapped with the window origin (100, 100), sizes without. A PATCOPY blit is a
// rectangle; a record without a bitmap, or whose bitmap lies outside it, draws nothing.
TEST(EmfBitmaps, RecordsDrawTheirBitmapsIntoTheDestination) {
    const uint32_t kPatCopy = 0x00F00021, kBlackness = 0x42;
    const Bytes mask = BitmapInfo(5, 1, 1, {0, 0xFFFFFF}), maskBits = U8s({0x50, 0, 0, 0});
    const Bytes fourBit = BitmapInfo(5, 2, 4, {0xFF0000, 0x00FF00, 0x0000FF});
    mfb::Emf e;
    e.record(mfb::EMR_SETWINDOWORGEX, Bytes().i32(100).i32(100))
        .record(kBitBlt, EmfBlt(kBitBlt, 150, 120, 40, 30, kPatCopy, Bytes(), Bytes()))
        .record(kStretchBlt, EmfBlt(kStretchBlt, 150, 120, 40, 30, kPatCopy))
        .record(kBitBlt, EmfBlt(kBitBlt, 100, 100, 1, 2, kBlackness))
        .record(kMaskBlt, EmfBlt(kMaskBlt, 100, 100, 3, 4, kBlackness))
        .record(kTransparentBlt, EmfBlt(kTransparentBlt, 100, 100, 5, 6, 0x00302010))
        .record(kStretchDib, EmfStretchDib(100, 100, 9, 9, kSrcAnd, mask, maskBits))
        // 5 pixels in 3 bytes a row; 7 bytes of bits make 1 byte of padding after a row.
        .record(kStretchDib, EmfStretchDib(100, 100, 7, 8, kSrcAnd, fourBit,
                                           U8s({0x01, 0x22, 0x00, 0x11, 0x10, 0x20, 0x00})))
        .record(kPlgBlt, EmfBlt(kBitBlt, 100, 100, 9, 9, kBlackness))
        .record(kBitBlt, EmfBlt(kBitBlt, 100, 100, 9, 9, kBlackness, Bytes(), Bytes())
                             .append(kRgb)
                             .append(kRgbBits))
        .record(kBitBlt, EmfBlt(kBitBlt, 100, 100, 9, 9, kBlackness, kRgb, Bytes()))
        .record(kBitBlt, EmfBlt(kBitBlt, 100, 100, 9, 9, kBlackness, Bytes().zeros(39), Bytes()));
    const auto [body, images] =
        SplitImages(ConvertBoth([&](bool swapped) { return e.build(true, swapped); }));
    EXPECT_EQ(body,
              "<rect x=\"50\" y=\"20\" width=\"40\" height=\"30\" rx=\"0\" ry=\"0\"  "
              "stroke=\"black\" stroke-width=\"1\" fill=\"none\"/>\n" +
                  Image(50, 20, 40, 30) + Image(0, 0, 1, 2) + Image(0, 0, 3, 4) +
                  Image(0, 0, 5, 6) + Image(0, 0, 7, 8));
    ASSERT_EQ(images.size(), 5u);
    for (int i : {0, 1, 2}) EXPECT_EQ(PixelsOf(images[i]), Pixels{0xFF102030});
    EXPECT_EQ(PixelsOf(images[3]), Pixels{kWhite});
    const QRgb r = 0xFFFF0000, g = 0xFF00FF00, b = 0xFF0000FF;
    EXPECT_EQ(PixelsOf(images[4]), (Pixels{0, r, 0, r, 0, r, g, b, b, r}));
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
    const auto [body, images] =
        SplitImages(ConvertBoth([&](bool swapped) { return w.build(true, swapped); }));
    EXPECT_EQ(body, Image(10, 10, 16, 16) + Image(0, 0, 1, 2) + Image(1, 1, 3, 4) +
                        Image(2, 2, 5, 6) + Image(3, 3, 7, 8));
    ASSERT_EQ(images.size(), 5u);
    for (int i : {0, 2, 3, 4}) EXPECT_EQ(PixelsOf(images[i]), Pixels{0xFF102030});
    EXPECT_EQ(PixelsOf(images[1]), Pixels{0xFF102000});
}

// A mask left pending by one conversion is taken by the next on the same thread, and not by a
// conversion on another thread.
TEST(BitmapDecoding, PendingMaskBelongsToTheThread) {
    const auto file = [](int op, const Bytes& header) {
        return mfb::Emf()
            .record(kStretchDib, EmfStretchDib(0, 0, 1, 1, op, header, U8s({0, 0, 0, 0})))
            .build();
    };
    const QByteArray maskOnly = file(0xCC0020, BitmapInfo(1, 1, 1, {0, 0xFFFFFF}));
    const QByteArray masked = file(kSrcAnd, BitmapInfo(1, 1, 8, {0x808080}));
    const auto pixels = [&] {
        const auto images = SplitImages(testutil::Convert(masked).svg).second;
        return images.size() == 1 ? PixelsOf(images[0]) : Pixels();
    };
    testutil::Convert(maskOnly);
    Pixels other;
    std::thread([&] { other = pixels(); }).join();
    EXPECT_EQ(other, Pixels{0xFF808080});
    EXPECT_EQ(pixels(), Pixels{0});
}
