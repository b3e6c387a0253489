// WMF object records: the handle table, pens, brushes, fonts, selection and deletion.
//
// A WMF file names its objects by their slot in the player's object table: each creation
// record takes the lowest free slot, and META_SELECTOBJECT / META_DELETEOBJECT name a slot.
// The converter keeps the same numbering and hands every object to the writer under its slot.
#define TRACE_FILE "Wmf2SVG"
#include "api/Trace.h"
#include "byteorder/WmfNormalisers.h"
#include "geometry/Numeric.h"
#include "wmf/Wmf2SVG.h"

namespace {
const uint16_t kPenStyleNull = 5;  // PS_NULL
}  // namespace

uint16_t WMF2SVGConverter::TakeSlot() {
    uint16_t slot = 0;
    if (!m_freeSlots.empty()) {
        slot = (uint16_t)*m_freeSlots.begin();
        m_freeSlots.erase(m_freeSlots.begin());
    } else if (!m_handles.empty()) {
        // Slots are 16-bit: after slot 65535 the numbering wraps to 0.
        slot = (uint16_t)(m_handles.rbegin()->first + 1);
    }
    tagHandle& entry = m_handles[slot];
    entry.slot = slot;
    entry.free = 0;
    return slot;
}

void WMF2SVGConverter::FreeSlot(int slot) {
    const auto it = m_handles.find(slot);
    if (it == m_handles.end()) return;
    it->second.slot = (uint16_t)slot;
    it->second.free = 1;
    m_freeSlots.insert(slot);
}

// Font heights and widths are logical units; the quotient by the units per inch is kept in
// the 16-bit field. A zero unit count gives 0.
int16_t WMF2SVGConverter::ScaleFontUnits(int16_t value) const {
    if (m_inch == 0) return 0;
    return numeric::Low16((int32_t)(uint16_t)value / (int32_t)m_inch);
}

int WMF2SVGConverter::OnCreatePenIndirect(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagLOGPEN16 pen = ReadWmfRecord(record, InitWMRCREATEPEN).pen;
    const uint16_t slot = TakeSlot();
    int32_t width = 0;
    if (pen.lopnStyle != kPenStyleNull) {
        width = numeric::TruncToInt(pen.lopnWidth.x / (double)m_scale);
        if (width == 0) width = 1;
    }
    const int result =
        m_writer.CreatePen(slot, pen.lopnStyle, (unsigned int)width, pen.lopnColor, nullptr, 0);
    TRACE_RETURN(result);
}

int WMF2SVGConverter::OnMetaCreateBrushIndirect(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagLOGBRUSH16 brush = ReadWmfRecord(record, InitWMRCREATEBRUSHINDIRECT).brush;
    const uint16_t slot = TakeSlot();
    m_writer.CreateBrushI(slot, brush.lbStyle, brush.lbHatch, brush.lbColor);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaCreateFontIndirect(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    // A record cut short in its face name reads the rest of the name from the zero padding.
    FONTSPEC font = ReadWmfRecord(record, InitWMREXTCREATEFONTINDIRECT).font;
    const uint16_t slot = TakeSlot();
    font.Height = ScaleFontUnits(font.Height);
    font.Width = ScaleFontUnits(font.Width);
    m_writer.MetaCreateFont(slot, font);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnMetaSelectObject(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    // The file's index is the slot the object was created under; no lookup is needed.
    const uint16_t index = ReadWmfRecord(record, InitWMRSELECTOBJECT).ObjectIndex;
    const int result = m_writer.SelectObject(index);
    TRACE_RETURN(result);
}

int WMF2SVGConverter::OnMetaDeleteObject(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const uint16_t index = ReadWmfRecord(record, InitWMRSELECTOBJECT).ObjectIndex;
    FreeSlot(index);
    m_writer.DeleteObject(index);
    TRACE_RETURN(1);
}

// The mode travels with the record's reserved word as one 32-bit value; a record without the
// reserved word reads it as 0.
int WMF2SVGConverter::OnMetaSetBkMode(unsigned char* record, unsigned int size) {
    if (!record || size == 0) return 1;
    const tagWMRSETBKMODE r = ReadWmfRecord(record, InitWMRSETBKMODE);
    const uint32_t mode = (uint32_t)r.BkMode | ((uint32_t)r.Reserved << 16);
    return m_writer.SetBkMode((int)mode);
}

int WMF2SVGConverter::OnMetaSetTextAlign(unsigned char*, unsigned int) {
    return 1;
}
