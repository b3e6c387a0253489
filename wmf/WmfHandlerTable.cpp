// The WMF record handler table.
#define TRACE_FILE "Wmf2SVG"
#include <array>

#include "api/Trace.h"
#include "wmf/Wmf2SVG.h"

void WMF2SVGConverter::InitWMFRecHandlers() {
    TRACE_ENTER();
    InitWMFText();
    m_winOrgX = 0;
    m_winOrgY = 1;
    LOG_INFO("Setup WMF record handlers");

    m_handlers = HandlerTable();
    TRACE_RETURN();
}

// The table is made once and shared by every converter. Each entry names the bytes of fixed
// fields its handler reads.
const WMF2SVGConverter::HandlerEntry* WMF2SVGConverter::HandlerTable() {
    static const struct {
        unsigned int function;
        Handler handler;
        size_t fixed = records::kRecordPadding;
    } kTable[] = {
        // META_SETTEXTALIGN (0x012E) is left out on purpose: its records stay unhandled and are
        // named in the record log.
        {0x0102, &WMF2SVGConverter::OnMetaSetBkMode, sizeof(tagWMRSETBKMODE)},  // META_SETBKMODE
        {0x0103, &WMF2SVGConverter::OnMetaSetMapMode, sizeof(tagWMR)},          // META_SETMAPMODE
        {0x012D, &WMF2SVGConverter::OnMetaSelectObject,
         sizeof(tagWMRSELECTOBJECT)},  // META_SELECTOBJECT
        {0x01F0, &WMF2SVGConverter::OnMetaDeleteObject,
         sizeof(tagWMRSELECTOBJECT)},  // META_DELETEOBJECT
        {0x020B, &WMF2SVGConverter::OnMetaSetWinOrg,
         sizeof(tagWMRSETVIEWPORTORGEX)},  // META_SETWINDOWORG
        {0x020C, &WMF2SVGConverter::OnMetaSetWinExt,
         sizeof(tagWMRSETVIEWPORTORGEX)},                                 // META_SETWINDOWEXT
        {0x0213, &WMF2SVGConverter::OnMetaLineTo, sizeof(tagWMRLINETO)},  // META_LINETO
        {0x0214, &WMF2SVGConverter::OnMetaMove, sizeof(tagWMRLINETO)},    // META_MOVETO
        {0x02FA, &WMF2SVGConverter::OnCreatePenIndirect,
         sizeof(tagWMRCREATEPEN)},  // META_CREATEPENINDIRECT
        {0x02FB, &WMF2SVGConverter::OnMetaCreateFontIndirect,
         sizeof(tagWMREXTCREATEFONTINDIRECT)},  // META_CREATEFONTINDIRECT
        {0x02FC, &WMF2SVGConverter::OnMetaCreateBrushIndirect,
         sizeof(tagWMRCREATEBRUSHINDIRECT)},  // META_CREATEBRUSHINDIRECT
        {0x0324, &WMF2SVGConverter::OnMetaPolygon, sizeof(tagWMRPOLYLINE)},   // META_POLYGON
        {0x0325, &WMF2SVGConverter::OnMetaPolyLine, sizeof(tagWMRPOLYLINE)},  // META_POLYLINE
        {0x0418, &WMF2SVGConverter::OnMetaEllipse, sizeof(tagWMRELLIPSE)},    // META_ELLIPSE
        {0x041B, &WMF2SVGConverter::OnMetaRectangle, sizeof(tagWMRELLIPSE)},  // META_RECTANGLE
        {0x0538, &WMF2SVGConverter::OnMetaPolyPolygon,
         sizeof(tagWMRPOLYPOLYLINE)},                                         // META_POLYPOLYGON
        {0x061D, &WMF2SVGConverter::OnMetaPatBlt, sizeof(tagWMRPATBLT)},      // META_PATBLT
        {0x0817, &WMF2SVGConverter::OnMetaArc, sizeof(tagWMR)},               // META_ARC
        {0x0922, &WMF2SVGConverter::OnDIBBitBlt, sizeof(tagWMRBITBLT)},       // META_BITBLT
        {0x0940, &WMF2SVGConverter::OnDIBBitBlt, sizeof(tagWMRBITBLT)},       // META_DIBBITBLT
        {0x0B23, &WMF2SVGConverter::OnStretchDIB, sizeof(tagWMRSTRETCHBLT)},  // META_STRETCHBLT
        {0x0B41, &WMF2SVGConverter::OnDIBStretchBlt,
         sizeof(tagWMRDIBSTRETCHBLT)},                                        // META_DIBSTRETCHBLT
        {0x0F43, &WMF2SVGConverter::OnStretchDIB, sizeof(tagWMRSTRETCHBLT)},  // META_STRETCHDIB
        {0x0A32, &WMF2SVGConverter::OnMetaExtTextOut, sizeof(tagWMREXTTEXTOUT)},  // META_EXTTEXTOUT
    };
    static const std::array<HandlerEntry, kHandlerTableSize> table = [] {
        std::array<HandlerEntry, kHandlerTableSize> entries{};
        for (const auto& e : kTable) entries[e.function] = HandlerEntry{e.handler, e.fixed};
        return entries;
    }();
    return table.data();
}
