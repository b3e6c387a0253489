// The EMF record names written to the record log, with their padding.
#define TRACE_FILE "Emf2SVG"
#include "emf/Emf2SVG.h"

#include <array>

#include "api/Trace.h"

namespace {
struct NamedRecord {
    unsigned int type;
    const char* name;
};

const NamedRecord kEmfRecordNames[] = {
    {1, "EMR_HEADER "},
    {2, "EMR_POLYBEZIER      "},
    {3, "EMR_POLYGON         "},
    {4, "EMR_POLYLINE        "},
    {5, "EMR_POLYBEZIERTO    "},
    {6, "EMR_POLYLINETO      "},
    {7, "EMR_POLYPOLYLINE    "},
    {8, "EMR_POLYPOLYGON     "},
    {9, "EMR_SETWINDOWEXTEX  "},
    {10, "EMR_SETWINDOWORGEX"},
    {11, "EMR_SETVIEWPORTEXTEX"},
    {12, "EMR_SETVIEWPORTORGEX"},
    {13, "EMR_SETBRUSHORGEX   "},
    {14, "EMR_EOF             "},
    {15, "EMR_SETPIXELV       "},
    {16, "EMR_SETMAPPERFLAGS  "},
    {17, "EMR_SETMAPMODE      "},
    {18, "EMR_SETBKMODE       "},
    {19, "EMR_SETPOLYFILLMODE "},
    {20, "EMR_SETROP2"},
    {21, "EMR_SETSTRETCHBLTMODE  "},
    {22, "EMR_SETTEXTALIGN       "},
    {23, "EMR_SETCOLORADJUSTMENT "},
    {24, "EMR_SETTEXTCOLOR       "},
    {25, "EMR_SETBKCOLOR         "},
    {26, "EMR_OFFSETCLIPRGN      "},
    {27, "EMR_MOVETOEX           "},
    {28, "EMR_SETMETARGN         "},
    {29, "EMR_EXCLUDECLIPRECT    "},
    {30, "EMR_INTERSECTCLIPRECT"},
    {31, "EMR_SCALEVIEWPORTEXTEX "},
    {32, "EMR_SCALEWINDOWEXTEX   "},
    {33, "EMR_SAVEDC             "},
    {34, "EMR_RESTOREDC          "},
    {35, "EMR_SETWORLDTRANSFORM  "},
    {36, "EMR_MODIFYWORLDTRANSFORM  "},
    {37, "EMR_SELECTOBJECT       "},
    {38, "EMR_CREATEPEN          "},
    {39, "EMR_CREATEBRUSHINDIRECT"},
    {40, "EMR_DELETEOBJECT       "},
    {41, "EMR_ANGLEARC           "},
    {42, "EMR_ELLIPSE            "},
    {43, "EMR_RECTANGLE          "},
    {44, "EMR_ROUNDRECT          "},
    {45, "EMR_ARC                "},
    {46, "EMR_CHORD              "},
    {47, "EMR_PIE                "},
    {48, "EMR_SELECTPALETTE      "},
    {49, "EMR_CREATEPALETTE      "},
    {50, "EMR_SETPALETTEENTRIES  "},
    {51, "EMR_RESIZEPALETTE      "},
    {52, "EMR_REALIZEPALETTE     "},
    {53, "EMR_EXTFLOODFILL       "},
    {54, "EMR_LINETO             "},
    {55, "EMR_ARCTO              "},
    {56, "EMR_POLYDRAW           "},
    {57, "EMR_SETARCDIRECTION    "},
    {58, "EMR_SETMITERLIMIT      "},
    {59, "EMR_BEGINPATH          "},
    {60, "EMR_ENDPATH            "},
    {61, "EMR_CLOSEFIGURE        "},
    {62, "EMR_FILLPATH           "},
    {63, "EMR_STROKEANDFILLPATH  "},
    {64, "EMR_STROKEPATH         "},
    {65, "EMR_FLATTENPATH        "},
    {66, "EMR_WIDENPATH          "},
    {67, "EMR_SELECTCLIPPATH     "},
    {68, "EMR_ABORTPATH          "},
    {70, "EMR_GDICOMMENT         "},
    {71, "EMR_FILLRGN            "},
    {72, "EMR_FRAMERGN           "},
    {73, "EMR_INVERTRGN          "},
    {74, "EMR_PAINTRGN           "},
    {75, "EMR_EXTSELECTCLIPRGN   "},
    {76, "EMR_BITBLT             "},
    {77, "EMR_STRETCHBLT"},
    {78, "EMR_MASKBLT             "},
    {79, "EMR_PLGBLT              "},
    {80, "EMR_SETDIBITSTODEVICE  "},
    {81, "EMR_STRETCHDIBITS       "},
    {82, "EMR_EXTCREATEFONTINDIRECTW"},
    {83, "EMR_EXTTEXTOUTA        "},
    {84, "EMR_EXTTEXTOUTW        "},
    {85, "EMR_POLYBEZIER16       "},
    {86, "EMR_POLYGON16          "},
    {87, "EMR_POLYLINE16         "},
    {88, "EMR_POLYBEZIERTO16     "},
    {89, "EMR_POLYLINETO16       "},
    {90, "EMR_POLYPOLYLINE16     "},
    {91, "EMR_POLYPOLYGON16      "},
    {92, "EMR_POLYDRAW16         "},
    {93, "EMR_CREATEMONOBRUSH    "},
    {94, "EMR_CREATEDIBPATTERNBRUSHPT"},
    {95, "EMR_EXTCREATEPEN       "},
    {96, "EMR_POLYTEXTOUTA          "},
    {97, "EMR_POLYTEXTOUTW       "},
    {98, "EMR_SETICMMODE         "},
    {99, "EMR_CREATECOLORSPACE   "},
    {100, "EMR_SETCOLORSPACE      "},
    {101, "EMR_DELETECOLORSPACE   "},
    {102, "EMR_GLSRECORD          "},
    {103, "EMR_GLSBOUNDEDRECORD   "},
    {104, "EMR_PIXELFORMAT        "},
    {105, "EMR_RESERVED_105        "},
    {106, "EMR_RESERVED_106        "},
    {107, "EMR_RESERVED_107        "},
    {108, "EMR_RESERVED_108        "},
    {109, "EMR_RESERVED_109        "},
    {110, "EMR_RESERVED_110        "},
    {111, "EMR_COLORCORRECTPALETTE "},
    {112, "EMR_SETICMPROFILEA      "},
    {113, "EMR_SETICMPROFILEW      "},
    {114, "EMR_ALPHABLEND          "},
    {115, "EMR_SETLAYOUT           "},
    {116, "EMR_TRANSPARENTBLT      "},
    {118, "EMR_GRADIENTFILL        "},
    {119, "EMR_RESERVED_119        "},
    {120, "EMR_RESERVED_120        "},
    {121, "EMR_COLORMATCHTOTARGETW "},
    {122, "EMR_CREATECOLORSPACEW   "},
};
}  // namespace

// The name table is made once and shared by every converter.
void Emf2SvgConverter::InitEMFText() {
    TRACE_ENTER();
    static const std::array<const char*, kNameTableSize> table = [] {
        std::array<const char*, kNameTableSize> names{};
        for (const NamedRecord& entry : kEmfRecordNames) names[entry.type] = entry.name;
        return names;
    }();
    m_recordNames = table.data();
    TRACE_RETURN();
}
