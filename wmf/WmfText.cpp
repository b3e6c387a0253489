// META_EXTTEXTOUT: 8-bit text at a point.
//
// The characters are always read from their fixed place after the options, also when the
// options announce a clipping rectangle there (its bytes then start the text), and end at the
// first zero byte, the string length or the record's end, whichever comes first.
#define TRACE_FILE "Wmf2SVG"
#include "api/Trace.h"
#include "byteorder/WmfNormalisers.h"
#include "svg/TextRun.h"
#include "wmf/Wmf2SVG.h"

int WMF2SVGConverter::OnMetaExtTextOut(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMREXTTEXTOUT r = ReadWmfRecord(record, InitWMREXTTEXTOUT);
    const size_t offset = sizeof(tagWMREXTTEXTOUT);
    const uint32_t bytes = records::FitCount(r.StringLength, offset, 1, size);
    const TextRun text{bytes ? record + offset : record, bytes, false};
    m_writer.MetaTextOut(text.UpToZero(), tagPOINT{MapX(r.x), MapY(r.y)}, nullptr, {});
    TRACE_RETURN(1);
}
