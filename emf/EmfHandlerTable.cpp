// The record handler table and the reset of the mapping state at the start of a conversion.
#define TRACE_FILE "Emf2SVG"
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

    static const struct {
        unsigned int type;
        Handler handler;
    } kTable[] = {
        {2, &Emf2SvgConverter::OnPolyBezier},
        {3, &Emf2SvgConverter::OnPolygon},
        {4, &Emf2SvgConverter::OnPolyLine},
        {5, &Emf2SvgConverter::OnPolyBezierTo},
        {6, &Emf2SvgConverter::OnPolyLineTo},
        {7, &Emf2SvgConverter::OnPolyPolyLine},
        {8, &Emf2SvgConverter::OnPolyPolygon},
        {9, &Emf2SvgConverter::OnSetWindowsExt},
        {10, &Emf2SvgConverter::OnSetWindowOrgEx},
        {11, &Emf2SvgConverter::OnSetViewPortEx},
        {12, &Emf2SvgConverter::OnSetViewPortOrgEx},
        {17, &Emf2SvgConverter::OnSetMapMode},
        {18, &Emf2SvgConverter::OnSetBkMode},
        {22, &Emf2SvgConverter::OnSetTextAlign},
        {24, &Emf2SvgConverter::OnSetTextColor},
        {25, &Emf2SvgConverter::OnSetBkColor},
        {27, &Emf2SvgConverter::OnMoveToEx},
        {35, &Emf2SvgConverter::OnSetWorldTransform},
        {36, &Emf2SvgConverter::OnModifyWorldTransform},
        {37, &Emf2SvgConverter::OnSelectObject},
        {38, &Emf2SvgConverter::OnCreatePen},
        {39, &Emf2SvgConverter::OnCreateBrushIndirect},
        {40, &Emf2SvgConverter::OnDeleteObject},
        {41, &Emf2SvgConverter::OnAngleArc},
        {42, &Emf2SvgConverter::OnEllipse},
        {43, &Emf2SvgConverter::OnRectangle},
        {44, &Emf2SvgConverter::OnRoundedRect},
        {45, &Emf2SvgConverter::OnArc},
        {46, &Emf2SvgConverter::OnChord},
        {47, &Emf2SvgConverter::OnPie},
        {54, &Emf2SvgConverter::OnLineTo},
        {55, &Emf2SvgConverter::OnArcTo},
        {59, &Emf2SvgConverter::OnBeginPath},
        {60, &Emf2SvgConverter::OnEndPath},
        {61, &Emf2SvgConverter::OnCloseFigure},
        {62, &Emf2SvgConverter::OnFillPath},
        {64, &Emf2SvgConverter::OnStrokePath},
        {68, &Emf2SvgConverter::OnAbortPath},
        {82, &Emf2SvgConverter::OnExtCreateFontIndirect},
        {84, &Emf2SvgConverter::OnExtTextOutW},
        {85, &Emf2SvgConverter::OnPolyBezier16},
        {86, &Emf2SvgConverter::OnPolygon16},
        {87, &Emf2SvgConverter::OnPolyLine16},
        {88, &Emf2SvgConverter::OnPolyBezierTo16},
        {89, &Emf2SvgConverter::OnPolyLineTo16},
        {90, &Emf2SvgConverter::OnPolyPolyLine16},
        {91, &Emf2SvgConverter::OnPolyPolygon16},
        {92, &Emf2SvgConverter::OnPolyDraw},
        {93, &Emf2SvgConverter::OnCreateMonoBrush},
        {95, &Emf2SvgConverter::OnCreatePenEx},
        {108, &Emf2SvgConverter::OnSmallTextOut},
    };
    for (const auto& entry : kTable) m_handlers[entry.type] = entry.handler;
    TRACE_RETURN();
}
