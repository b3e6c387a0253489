// Records that create, select and delete pens, brushes and fonts, and the background and text
// state records. Objects live in the writer's style manager under the record's object index;
// the converter maps the one length each object carries and passes everything else through.
#define TRACE_FILE "Emf2SVG"
#include "api/Trace.h"
#include "byteorder/EmfNormalisers.h"
#include "emf/Emf2SVG.h"

int Emf2SvgConverter::OnCreatePen(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRCREATEPEN& r = *reinterpret_cast<tagEMRCREATEPEN*>(record);
    InitEMRCREATEPEN(r);
    // Only the x of lopnWidth is the pen's width; the y is unused by the format.
    const bool ok = m_writer.CreatePen(r.ihPen, r.lopn.lopnStyle, MapX(r.lopn.lopnWidth.x, 0),
                                       r.lopn.lopnColor, nullptr, 0);
    TRACE_RETURN(ok ? 1 : 0);
}

int Emf2SvgConverter::OnCreatePenEx(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMREXTCREATEPEN& r = *reinterpret_cast<tagEMREXTCREATEPEN*>(record);
    InitEMREXTCREATEPEN(r, size);
    // The dash entries follow the fixed fields; only those inside the record are passed on.
    // The brush style, hatch and pattern bitmap of an extended pen are not used.
    const unsigned int* entries =
        reinterpret_cast<const unsigned int*>(record + EMR_EXTCREATEPEN_ENTRIES_OFFSET);
    const uint32_t count = records::FitCount(r.elp.elpNumEntries, EMR_EXTCREATEPEN_ENTRIES_OFFSET,
                                             sizeof(uint32_t), size);
    const bool ok = m_writer.CreatePen(r.ihPen, r.elp.elpPenStyle, MapX((int)r.elp.elpWidth, 0),
                                       r.elp.elpColor, entries, count);
    TRACE_RETURN(ok ? 1 : 0);
}

int Emf2SvgConverter::OnCreateBrushIndirect(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRCREATEBRUSHINDIRECT& r = *reinterpret_cast<tagEMRCREATEBRUSHINDIRECT*>(record);
    InitEMRCREATEBRUSHINDIRECT(r);
    const bool ok = m_writer.CreateBrushI(r.ihBrush, r.lb.lbStyle, r.lb.lbHatch, r.lb.lbColor);
    TRACE_RETURN(ok ? 1 : 0);
}

// Monochrome pattern brushes are not converted: no object is made, so selecting the index
// later finds nothing.
int Emf2SvgConverter::OnCreateMonoBrush(unsigned char* record, unsigned int size) {
    return IsEmptyRecord(record, size) ? 0 : 1;
}

int Emf2SvgConverter::OnExtCreateFontIndirect(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMREXTCREATEFONTINDIRECTW& r = *reinterpret_cast<tagEMREXTCREATEFONTINDIRECTW*>(record);
    InitEMREXTCREATEFONTINDIRECTW(r);
    // Only the LOGFONTW at the start of the extended font is used; its height is a length.
    tagLOGFONTW font = r.elfw.elfLogFont;
    font.lfHeight = MapY(font.lfHeight, 0);
    m_writer.CreateFont(r.ihFont, font);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnSelectObject(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRSELECTOBJECT& r = *reinterpret_cast<tagEMRSELECTOBJECT*>(record);
    InitEMRSELECTOBJECT(r);
    TRACE_RETURN(m_writer.SelectObject(r.ihObject) ? 1 : 0);
}

int Emf2SvgConverter::OnDeleteObject(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRDELETEOBJECT r = FixedCopy<tagEMRDELETEOBJECT>(record);
    InitEMRDELETEOBJECT(r);
    m_writer.DeleteObject(r.ihObject);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnSetBkMode(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRSETBKMODE r = FixedCopy<tagEMRSETBKMODE>(record);
    InitEMRSETBKMODE(r);
    TRACE_RETURN(m_writer.SetBkMode((int)r.iMode) ? 1 : 0);
}

int Emf2SvgConverter::OnSetBkColor(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRSETBKCOLOR r = FixedCopy<tagEMRSETBKCOLOR>(record);
    InitEMRCOLOR(r);
    TRACE_RETURN(m_writer.SetBkgColor(r.crColor) ? 1 : 0);
}

int Emf2SvgConverter::OnSetTextColor(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRSETTEXTCOLOR r = FixedCopy<tagEMRSETTEXTCOLOR>(record);
    InitEMRCOLOR(r);
    m_writer.SetTextColor(r.crColor);
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnSetTextAlign(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRSETTEXTALIGN r = FixedCopy<tagEMRSETTEXTALIGN>(record);
    InitEMRSETTEXTALIGN(r);
    m_writer.SetTextAlign((int)r.iMode);
    TRACE_RETURN(1);
}
