// The faithful interpreter's entry: format detection and dispatch.
#include "faithful/Faithful.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "MetafileStructs.h"
#include "byteorder/BEndTools.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

// Until the WMF player lands: the header is tested as the contract tests it (-3 when
// refused), and nothing is converted.
int ConvertWmf(const unsigned char* data, uint64_t size, QByteArray& out) {
    (void)out;
    _PlaceableMetaHeader placeable;
    std::memset(&placeable, 0, sizeof placeable);
    std::memcpy(&placeable, data, (size_t)std::min<uint64_t>(sizeof placeable, size));
    InitPlaceableMetaHeader(placeable);
    const uint64_t offset = placeable.Key == PLACEABLE_KEY ? sizeof placeable : 0;
    _WindowsMetaHeader header;
    std::memset(&header, 0, sizeof header);
    if (size > offset)
        std::memcpy(&header, data + offset,
                    (size_t)std::min<uint64_t>(sizeof header, size - offset));
    InitWindowsMetaHeader(header);
    if (header.mtHeaderSize != 9 || header.mtNoParameters != 0) return -3;
    return 0;
}

}  // namespace

int Convert(const unsigned char* data, uint64_t size, QByteArray& out) {
    try {
        // Too short for the smallest WMF header: nothing to convert.
        if (!data || size < sizeof(_WindowsMetaHeader)) return 0;
        tagENHMETAHEADER header;
        std::memset(&header, 0, sizeof header);
        if (size >= sizeof header) {
            std::memcpy(&header, data, sizeof header);
            InitEnhMetaHeader(header);
        }
        if (header.dSignature != ENHMETA_SIGNATURE) return ConvertWmf(data, size, out);
        if (header.nBytes != size) return -2;
        std::unique_ptr<EmfPlayer> player(new EmfPlayer);
        QByteArray svg = player->Play(data, size);
        out.swap(svg);
        return 1;
    } catch (...) {
        return -1;
    }
}

}  // namespace faithful
