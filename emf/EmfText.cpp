// Text records: EMR_EXTTEXTOUTW and EMR_SMALLTEXTOUT.
//
// The handlers take the reference point, the text rectangle and the characters; font, colour,
// alignment, background and rotation are the writer's current state. Only the characters that
// lie inside the record are read: a count that runs past the record's end is cut there, and
// characters that start outside it give an empty text (which EMR_EXTTEXTOUTW, being blank,
// does not draw, and EMR_SMALLTEXTOUT draws as an empty text element).
#define TRACE_FILE "Emf2SVG"
#include <cstring>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "byteorder/EmfNormalisers.h"
#include "emf/Emf2SVG.h"
#include "geometry/GeometricHelpers.h"
#include "svg/TextRun.h"

using geometry::Add32;
using geometry::Sub32;

namespace {

// EMR_SMALLTEXTOUT options: no clipping rectangle in the record; 8-bit characters.
const uint32_t kEtoNoRect = 0x100;
const uint32_t kEtoSmallChars = 0x200;
const size_t kSmallTextChars = 36;
const size_t kSmallTextCharsAfterRect = 52;

// The characters of a record that lie inside it; UTF-16 units are brought into host order in
// place.
TextRun RecordText(unsigned char* record, unsigned int size, size_t offset, uint32_t count,
                   bool wide) {
    const uint32_t n = records::FitCount(count, offset, wide ? 2 : 1, size);
    if (n == 0) return TextRun{record, 0, wide};
    unsigned char* p = record + offset;
    if (wide && IsBigEndian()) {
        for (uint32_t i = 0; i < n; ++i) {
            uint16_t u;
            std::memcpy(&u, p + 2 * i, 2);
            u = Call_LE2BE_Word(u);
            std::memcpy(p + 2 * i, &u, 2);
        }
    }
    return TextRun{p, n, wide};
}

}  // namespace

// The viewport origin, when set, is added in output units after scaling; otherwise the point
// is mapped as any position is.
tagPOINT Emf2SvgConverter::MapTextReference(const tagPOINT& p) {
    if (m_viewportOrgX != 0 || m_viewportOrgY != 0)
        return tagPOINT{Add32(MapX(p.x, 0), m_viewportOrgX), Add32(MapY(p.y, 0), m_viewportOrgY)};
    return tagPOINT{MapX(p.x, 1), MapY(p.y, 1)};
}

// The rectangle is the record's bounds moved by the picture and window origins, not scaled.
// A text that is blank is not drawn.
int Emf2SvgConverter::OnExtTextOutW(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMREXTTEXTOUTW r = FixedCopy<tagEMREXTTEXTOUTW>(record);
    InitEMREXTTEXTOUTA(r);
    const auto moveX = [this](int32_t x) { return Sub32(Sub32(x, m_originX), m_windowOrgX); };
    const auto moveY = [this](int32_t y) { return Sub32(Sub32(y, m_originY), m_windowOrgY); };
    const tagRECT rect{moveX(r.rclBounds.left), moveY(r.rclBounds.top), moveX(r.rclBounds.right),
                       moveY(r.rclBounds.bottom)};
    tagPOINT point = MapTextReference(r.emrtext.ptlReference);
    const TextRun text = RecordText(record, size, r.emrtext.offString, r.emrtext.nChars, true);
    m_writer.GetPointOfReference(point, rect);
    if (!IsBlankText(text)) m_writer.TextOut(text, point, rect, {});
    TRACE_RETURN(1);
}

// The characters follow the clipping rectangle unless ETO_NO_RECT says there is none; they
// are 8-bit with ETO_SMALL_CHARS (and end at a zero byte), otherwise UTF-16.
int Emf2SvgConverter::OnSmallTextOut(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(1);
    tagEMRSMALLTEXTOUT& r = *reinterpret_cast<tagEMRSMALLTEXTOUT*>(record);
    InitEMRSMALLTEXTOUT(r);
    const tagPOINT point = MapTextReference(r.ptlReference);
    const size_t offset = (r.fuOptions & kEtoNoRect) ? kSmallTextChars : kSmallTextCharsAfterRect;
    const bool wide = (r.fuOptions & kEtoSmallChars) == 0;
    m_writer.SmallTextOut(RecordText(record, size, offset, r.cChars, wide), point);
    TRACE_RETURN(1);
}
