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
        {9, &Emf2SvgConverter::OnSetWindowsExt},
        {10, &Emf2SvgConverter::OnSetWindowOrgEx},
        {11, &Emf2SvgConverter::OnSetViewPortEx},
        {12, &Emf2SvgConverter::OnSetViewPortOrgEx},
        {17, &Emf2SvgConverter::OnSetMapMode},
        {35, &Emf2SvgConverter::OnSetWorldTransform},
        {36, &Emf2SvgConverter::OnModifyWorldTransform},
    };
    for (const auto& entry : kTable) m_handlers[entry.type] = entry.handler;
    TRACE_RETURN();
}
