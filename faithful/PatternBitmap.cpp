// Pattern brush tiles.
#include "faithful/PatternBitmap.h"

#include <cstring>

namespace faithful {

std::shared_ptr<const QImage> DecodeDibPattern(const dib::DibSource& dib) {
    const uint32_t compression = dib.header.biCompression;
    if (compression != 0 && compression != 3) return nullptr;  // no run-length tiles here
    QImage image;
    switch (dib.header.biBitCount) {
        case 1:
            image = dib::Handle1Bpp(dib);
            break;
        case 4: {
            // Rows are padded to 4 bytes.
            const int rowBytes = (int)(((int64_t)dib.header.biWidth + 1) / 2 % 4);
            image = dib::Handle4Bpp(dib, (4 - rowBytes) % 4);
            break;
        }
        case 8:
            image = dib::Handle8Bpp(dib);
            break;
        case 16:
            image = dib::Handle16Bpp(dib);
            break;
        case 24:
        case 32:
            image = dib::Handle32Bpp(dib, 0);
            break;
        default:
            break;
    }
    if (image.isNull()) return nullptr;
    return std::make_shared<const QImage>(std::move(image));
}

std::shared_ptr<const QImage> DecodeMonochromeDdb(int width, int height, int rowBytes,
                                                  const unsigned char* bits, size_t available) {
    if (width <= 0 || height <= 0 || !bits) return nullptr;
    const int used = (width + 7) / 8;
    if (rowBytes < used || (uint64_t)rowBytes * (uint64_t)height > available) return nullptr;
    QImage image(width, height, QImage::Format_Mono);
    if (image.isNull()) return nullptr;
    image.setColorTable({0xFF000000u, 0xFFFFFFFFu});
    for (int y = 0; y < height; ++y)
        std::memcpy(image.scanLine(y), bits + (size_t)y * (size_t)rowBytes, (size_t)used);
    return std::make_shared<const QImage>(std::move(image));
}

}  // namespace faithful
