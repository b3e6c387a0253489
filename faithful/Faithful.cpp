// The faithful interpreter's entry: format detection and dispatch.
#include "faithful/Faithful.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "MetafileStructs.h"
#include "byteorder/BEndTools.h"
#include "faithful/EmfPlayback.h"
#include "faithful/WmfPlayback.h"

namespace faithful {

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
        if (header.dSignature != ENHMETA_SIGNATURE) return PlayWmf(data, size, out);
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
