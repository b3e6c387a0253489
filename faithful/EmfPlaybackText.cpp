// EMF decoders of the text records. The characters are not drawn yet; the opaque rectangle
// (ETO_OPAQUE), which files also use on its own to fill backgrounds, is.
#include "byteorder/EmfNormalisers.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {
const uint32_t ETO_OPAQUE = 0x0002;
}  // namespace

void EmfPlayer::OnExtTextOut(unsigned char* r, uint32_t) {
    tagEMREXTTEXTOUTW& t = *reinterpret_cast<tagEMREXTTEXTOUTW*>(r);
    InitEMREXTTEXTOUTA(t);  // the same layout for both
    const tagRECT& box = t.emrtext.rcl;
    if (t.emrtext.fOptions & ETO_OPAQUE)
        m_dc.FillRect({(double)box.left, (double)box.top, (double)box.right, (double)box.bottom},
                      m_dc.State().bkColor);
}

}  // namespace faithful
