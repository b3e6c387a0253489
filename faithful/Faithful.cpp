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
            if (header.nBytes < 88) return -2;  // less than the header without its extensions
            const QByteArray file = QByteArray::number(static_cast<qulonglong>(size));
            const QByteArray declared = QByteArray::number(header.nBytes);
            const QByteArray line =
                size < header.nBytes
                    ? "truncated EMF: the file has " + file + " bytes, its header declares " +
                          declared + ": drawn as far as the file goes"
                    : "the EMF header declares " + declared + " bytes, the file has " + file +
                          ": the bytes after them are ignored";
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
