// The WMF record names written to the record log, with their padding.
#define TRACE_FILE "Wmf2SVG"
#include <array>

#include "api/Trace.h"
#include "wmf/Wmf2SVG.h"

namespace {
struct NamedRecord {
    unsigned int function;
    const char* name;
};

const NamedRecord kWmfRecordNames[] = {
    {0x0201, "META_SETBKCOLOR "},
    {0x0102, "META_SETBKMODE  "},
    {0x0103, "META_SETMAPMODE "},
    {0x0104, "META_SETROP2    "},
    {0x0105, "META_SETRELABS  "},
    {0x0106, "META_SETPOLYFILLMODE\t\t"},
    {0x0107, "META_SETSTRETCHBLTMODE\t"},
    {0x0108, "META_SETTEXTCHAREXTRA    "},
    {0x0209, "META_SETTEXTCOLOR\t\t   "},
    {0x020A, "META_SETTEXTJUSTIFICATION   "},
    {0x020B, "META_SETWINDOWORG           "},
    {0x020C, "META_SETWINDOWEXT           "},
    {0x020D, "META_SETVIEWPORTORG         "},
    {0x020E, "META_SETVIEWPORTEXT         "},
    {0x020F, "META_OFFSETWINDOWORG        "},
    {0x0410, "META_SCALEWINDOWEXT         "},
    {0x0211, "META_OFFSETVIEWPORTORG      "},
    {0x0412, "META_SCALEVIEWPORTEXT       "},
    {0x0213, "META_LINETO                 "},
    {0x0214, "META_MOVETO                 "},
    {0x0415, "META_EXCLUDECLIPRECT        "},
    {0x0416, "META_INTERSECTCLIPRECT      "},
    {0x0817, "META_ARC                    "},
    {0x0418, "META_ELLIPSE                "},
    {0x0419, "META_FLOODFILL              "},
    {0x081A, "META_PIE                    "},
    {0x041B, "META_RECTANGLE              "},
    {0x061C, "META_ROUNDRECT              "},
    {0x061D, "META_PATBLT                 "},
    {0x001E, "META_SAVEDC                 "},
    {0x041F, "META_SETPIXEL               "},
    {0x0220, "META_OFFSETCLIPRGN          "},
    {0x0521, "META_TEXTOUT                "},
    {0x0922, "META_BITBLT                 "},
    {0x0B23, "META_STRETCHBLT             "},
    {0x0324, "META_POLYGON                "},
    {0x0325, "META_POLYLINE               "},
    {0x0626, "META_ESCAPE                 "},
    {0x0127, "META_RESTOREDC              "},
    {0x0228, "META_FILLREGION             "},
    {0x0429, "META_FRAMEREGION            "},
    {0x012A, "META_INVERTREGION           "},
    {0x012B, "META_PAINTREGION            "},
    {0x012C, "META_SELECTCLIPREGION       "},
    {0x012D, "META_SELECTOBJECT           "},
    {0x012E, "META_SETTEXTALIGN           "},
    {0x0830, "META_CHORD                  "},
    {0x0231, "META_SETMAPPERFLAGS         "},
    {0x0A32, "META_EXTTEXTOUT             "},
    {0x0D33, "META_SETDIBTODEV            "},
    {0x0234, "META_SELECTPALETTE          "},
    {0x0035, "META_REALIZEPALETTE         "},
    {0x0436, "META_ANIMATEPALETTE         "},
    {0x0037, "META_SETPALENTRIES          "},
    {0x0538, "META_POLYPOLYGON            "},
    {0x0139, "META_RESIZEPALETTE          "},
    {0x0940, "META_DIBBITBLT              "},
    {0x0B41, "META_DIBSTRETCHBLT          "},
    {0x0142, "META_DIBCREATEPATTERNBRUSH  "},
    {0x0F43, "META_STRETCHDIB             "},
    {0x0548, "META_EXTFLOODFILL           "},
    {0x0149, "META_SETLAYOUT              "},
    {0x01F0, "META_DELETEOBJECT           "},
    {0x00F7, "META_CREATEPALETTE          "},
    {0x01F9, "META_CREATEPATTERNBRUSH     "},
    {0x02FA, "META_CREATEPENINDIRECT      "},
    {0x02FB, "META_CREATEFONTINDIRECT     "},
    {0x02FC, "META_CREATEBRUSHINDIRECT    "},
    {0x06FF, "META_CREATEREGION           "},
};
}  // namespace

void WMF2SVGConverter::InitWMFText() {
    TRACE_ENTER();
    LOG_INFO("Setup WMF record names buffer");
    // The name table is made once and shared by every converter.
    static const std::array<const char*, kNameTableSize> table = [] {
        std::array<const char*, kNameTableSize> names{};
        for (const NamedRecord& entry : kWmfRecordNames) names[entry.function] = entry.name;
        return names;
    }();
    m_recordNames = table.data();
    TRACE_RETURN();
}
