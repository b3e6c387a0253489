// The faithful interpreter's entry: format detection and dispatch.
#define TRACE_FILE "Faithful"
#include "faithful/Faithful.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "MetafileStructs.h"
#include "api/Trace.h"
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
        if (header.nBytes != size) {
            // The header's byte count and the file disagree (a file cut short, or data after
            // the metafile): a viewer draws the records that both hold.
            if (header.nBytes < sizeof header) return -2;
            const QByteArray line = "the EMF header declares " + QByteArray::number(header.nBytes) +
                                    " bytes, the file has " + QByteArray::number(size) +
                                    ": drawing the records within both";
            LOG_WARN(line.constData());
            size = std::min<uint64_t>(size, header.nBytes);
        }
        std::unique_ptr<EmfPlayer> player(new EmfPlayer);
        QByteArray svg = player->Play(data, size);
        out.swap(svg);
        return 1;
    } catch (...) {
        return -1;
    }
}

}  // namespace faithful
