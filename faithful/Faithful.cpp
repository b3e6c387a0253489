// The faithful interpreter's entry: format detection and dispatch.
#include "faithful/Faithful.h"

namespace faithful {

int Convert(const unsigned char* data, uint64_t size, QByteArray& out) {
    // Placeholder until the playback engine lands: nothing converted.
    (void)data;
    (void)size;
    (void)out;
    return 0;
}

}  // namespace faithful
