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
        {0x0103, &WMF2SVGConverter::OnMetaSetMapMode},
        {0x020B, &WMF2SVGConverter::OnMetaSetWinOrg},
        {0x020C, &WMF2SVGConverter::OnMetaSetWinExt},
    };
    for (const auto& entry : kTable) m_handlers[entry.function] = entry.handler;
    TRACE_RETURN();
}
