// The record handler table and the reset of the mapping state at the start of a conversion.
#define TRACE_FILE "Emf2SVG"
#include <array>

#include "api/Trace.h"
#include "emf/Emf2SVG.h"

void Emf2SvgConverter::InitEMFRecHandlers() {
    TRACE_ENTER();
    InitEMFText();
    m_vpScaleX = m_vpScaleY = 1.0f;
    m_frameScaleX = m_frameScaleY = 1.0f;
    m_windowOrgX = m_windowOrgY = 0;
    m_viewportOrgX = m_viewportOrgY = 0;
    m_anisotropic = 0;
    m_originX = m_originY = 0;

    m_handlers = HandlerTable();
    TRACE_RETURN();
}

// The table is made once and shared by every converter. Each entry names the bytes of fixed
// fields its handler reads.
const Emf2SvgConverter::HandlerEntry* Emf2SvgConverter::HandlerTable() {
    static const struct {
        unsigned int type;
        Handler handler;
        size_t fixed = records::kRecordPadding;
    } kTable[] = {
        {2, &Emf2SvgConverter::OnPolyBezier, sizeof(tagEMRPOLYLINE)},
        {3, &Emf2SvgConverter::OnPolygon, sizeof(tagEMRPOLYLINE)},
        {4, &Emf2SvgConverter::OnPolyLine, sizeof(tagEMRPOLYLINE)},
        {5, &Emf2SvgConverter::OnPolyBezierTo, sizeof(tagEMRPOLYLINE)},
        {6, &Emf2SvgConverter::OnPolyLineTo, sizeof(tagEMRPOLYLINE)},
        {7, &Emf2SvgConverter::OnPolyPolyLine, sizeof(tagEMRPOLYPOLYLINE)},
        {8, &Emf2SvgConverter::OnPolyPolygon, sizeof(tagEMRPOLYPOLYLINE)},
        {9, &Emf2SvgConverter::OnSetWindowsExt, sizeof(tagEMRSETVIEWPORTEXTEX)},
        {10, &Emf2SvgConverter::OnSetWindowOrgEx, sizeof(tagEMRSETVIEWPORTORGEX)},
        {11, &Emf2SvgConverter::OnSetViewPortEx, sizeof(tagEMRSETVIEWPORTEXTEX)},
        {12, &Emf2SvgConverter::OnSetViewPortOrgEx, sizeof(tagEMRSETVIEWPORTORGEX)},
        {17, &Emf2SvgConverter::OnSetMapMode, sizeof(tagEMRSETMAPMODE)},
        {18, &Emf2SvgConverter::OnSetBkMode, sizeof(tagEMRSETBKMODE)},
        {22, &Emf2SvgConverter::OnSetTextAlign, sizeof(tagEMRSETTEXTALIGN)},
        {24, &Emf2SvgConverter::OnSetTextColor, sizeof(tagEMRSETTEXTCOLOR)},
        {25, &Emf2SvgConverter::OnSetBkColor, sizeof(tagEMRSETBKCOLOR)},
        {27, &Emf2SvgConverter::OnMoveToEx, sizeof(tagEMRMOVETOEX)},
        {30, &Emf2SvgConverter::OnIntersectClipRect, sizeof(tagEMR)},
        {35, &Emf2SvgConverter::OnSetWorldTransform, sizeof(tagEMRSETWORLDTRANSFORM)},
        {36, &Emf2SvgConverter::OnModifyWorldTransform, sizeof(tagEMRMODIFYWORLDTRANSFORM)},
        {37, &Emf2SvgConverter::OnSelectObject, sizeof(tagEMRSELECTOBJECT)},
        {38, &Emf2SvgConverter::OnCreatePen, sizeof(tagEMRCREATEPEN)},
        {39, &Emf2SvgConverter::OnCreateBrushIndirect, sizeof(tagEMRCREATEBRUSHINDIRECT)},
        {40, &Emf2SvgConverter::OnDeleteObject, sizeof(tagEMRDELETEOBJECT)},
        {41, &Emf2SvgConverter::OnAngleArc, sizeof(tagEMRANGLEARC)},
        {42, &Emf2SvgConverter::OnEllipse, sizeof(tagEMRELLIPSE)},
        {43, &Emf2SvgConverter::OnRectangle, sizeof(tagEMRRECTANGLE)},
        {44, &Emf2SvgConverter::OnRoundedRect, sizeof(tagEMRROUNDRECT)},
        {45, &Emf2SvgConverter::OnArc, sizeof(tagEMRARC)},
        {46, &Emf2SvgConverter::OnChord, sizeof(tagEMRARC)},
        {47, &Emf2SvgConverter::OnPie, sizeof(tagEMRARC)},
        {54, &Emf2SvgConverter::OnLineTo, sizeof(tagEMRLINETO)},
        {55, &Emf2SvgConverter::OnArcTo, sizeof(tagEMRARC)},
        {59, &Emf2SvgConverter::OnBeginPath, sizeof(tagEMR)},
        {60, &Emf2SvgConverter::OnEndPath, sizeof(tagEMR)},
        {61, &Emf2SvgConverter::OnCloseFigure, sizeof(tagEMR)},
        {62, &Emf2SvgConverter::OnFillPath, sizeof(tagEMR)},
        {64, &Emf2SvgConverter::OnStrokePath, sizeof(tagEMR)},
        {67, &Emf2SvgConverter::OnSelectClipPath, sizeof(tagEMRSELECTCLIPPATH)},
        {68, &Emf2SvgConverter::OnAbortPath, sizeof(tagEMR)},
        {71, &Emf2SvgConverter::OnFillRgn, sizeof(tagEMRFILLRGN)},
        {72, &Emf2SvgConverter::OnFrameRgn, sizeof(tagEMRFRAMERGN)},
        {75, &Emf2SvgConverter::OnExtSetClipRgn, sizeof(tagEMREXTSELECTCLIPRGN)},
        {76, &Emf2SvgConverter::OnBitBlt, sizeof(tagEMRBITBLT)},
        {77, &Emf2SvgConverter::OnStretchBlt, sizeof(tagEMRSTRETCHBLT)},
        {78, &Emf2SvgConverter::OnMaskBlt, sizeof(tagEMRMASKBLT)},
        {79, &Emf2SvgConverter::OnPlgBlt, sizeof(tagEMR)},
        {81, &Emf2SvgConverter::OnStretchDIB, sizeof(tagEMRSTRETCHDIBITS)},
        {82, &Emf2SvgConverter::OnExtCreateFontIndirect, sizeof(tagEMREXTCREATEFONTINDIRECTW)},
        {84, &Emf2SvgConverter::OnExtTextOutW, sizeof(tagEMREXTTEXTOUTW)},
        {85, &Emf2SvgConverter::OnPolyBezier16, sizeof(tagEMRPOLYLINE16)},
        {86, &Emf2SvgConverter::OnPolygon16, sizeof(tagEMRPOLYLINE16)},
        {87, &Emf2SvgConverter::OnPolyLine16, sizeof(tagEMRPOLYLINE16)},
        {88, &Emf2SvgConverter::OnPolyBezierTo16, sizeof(tagEMRPOLYLINE16)},
        {89, &Emf2SvgConverter::OnPolyLineTo16, sizeof(tagEMRPOLYLINE16)},
        {90, &Emf2SvgConverter::OnPolyPolyLine16, sizeof(tagEMRPOLYPOLYLINE16)},
        {91, &Emf2SvgConverter::OnPolyPolygon16, sizeof(tagEMRPOLYPOLYLINE16)},
        {92, &Emf2SvgConverter::OnPolyDraw, sizeof(tagEMRPOLYDRAW16)},
        {93, &Emf2SvgConverter::OnCreateMonoBrush, sizeof(tagEMR)},
        {95, &Emf2SvgConverter::OnCreatePenEx, sizeof(tagEMREXTCREATEPEN)},
        {116, &Emf2SvgConverter::OnTransparentBlt, sizeof(tagEMRTRANSPARENTBLT)},
        {108, &Emf2SvgConverter::OnSmallTextOut, sizeof(tagEMRSMALLTEXTOUT)},
    };
    static const std::array<HandlerEntry, kHandlerTableSize> table = [] {
        std::array<HandlerEntry, kHandlerTableSize> entries{};
        for (const auto& e : kTable) entries[e.type] = HandlerEntry{e.handler, e.fixed};
        return entries;
    }();
    return table.data();
}
