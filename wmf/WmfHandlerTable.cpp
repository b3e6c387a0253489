// The WMF record handler table.
#define TRACE_FILE "Wmf2SVG"
#include "api/Trace.h"
#include "wmf/Wmf2SVG.h"

void WMF2SVGConverter::InitWMFRecHandlers() {
    TRACE_ENTER();
    InitWMFText();
    m_winOrgX = 0;
    m_winOrgY = 1;
    LOG_INFO("Setup WMF record handlers");

    static const struct {
        unsigned int function;
        Handler handler;
    } kTable[] = {
        // META_SETTEXTALIGN (0x012E) is left out on purpose: its records stay unhandled and are
        // named in the record log.
        {0x0102, &WMF2SVGConverter::OnMetaSetBkMode},            // META_SETBKMODE
        {0x0103, &WMF2SVGConverter::OnMetaSetMapMode},           // META_SETMAPMODE
        {0x012D, &WMF2SVGConverter::OnMetaSelectObject},         // META_SELECTOBJECT
        {0x01F0, &WMF2SVGConverter::OnMetaDeleteObject},         // META_DELETEOBJECT
        {0x020B, &WMF2SVGConverter::OnMetaSetWinOrg},            // META_SETWINDOWORG
        {0x020C, &WMF2SVGConverter::OnMetaSetWinExt},            // META_SETWINDOWEXT
        {0x0213, &WMF2SVGConverter::OnMetaLineTo},               // META_LINETO
        {0x0214, &WMF2SVGConverter::OnMetaMove},                 // META_MOVETO
        {0x02FA, &WMF2SVGConverter::OnCreatePenIndirect},        // META_CREATEPENINDIRECT
        {0x02FB, &WMF2SVGConverter::OnMetaCreateFontIndirect},   // META_CREATEFONTINDIRECT
        {0x02FC, &WMF2SVGConverter::OnMetaCreateBrushIndirect},  // META_CREATEBRUSHINDIRECT
        {0x0324, &WMF2SVGConverter::OnMetaPolygon},              // META_POLYGON
        {0x0325, &WMF2SVGConverter::OnMetaPolyLine},             // META_POLYLINE
        {0x0418, &WMF2SVGConverter::OnMetaEllipse},              // META_ELLIPSE
        {0x041B, &WMF2SVGConverter::OnMetaRectangle},            // META_RECTANGLE
        {0x0538, &WMF2SVGConverter::OnMetaPolyPolygon},          // META_POLYPOLYGON
        {0x061D, &WMF2SVGConverter::OnMetaPatBlt},               // META_PATBLT
        {0x0817, &WMF2SVGConverter::OnMetaArc},                  // META_ARC
        {0x0A32, &WMF2SVGConverter::OnMetaExtTextOut},           // META_EXTTEXTOUT
    };
    for (const auto& entry : kTable) m_handlers[entry.function] = entry.handler;
    TRACE_RETURN();
}
