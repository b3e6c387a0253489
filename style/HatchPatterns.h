// The six hatch-brush pattern templates, indexed by hatch style (HS_HORIZONTAL .. HS_DIAGCROSS).
//
// Each template holds "%1" (background colour), "%2" (hatch colour) and "%3" (pattern number)
// exactly once.
#ifndef SVGMODULE_HATCHPATTERNS_H
#define SVGMODULE_HATCHPATTERNS_H

namespace hatch {

const int kStyleCount = 6;

// The template of hatch style `style`, or nullptr when there is none.
const char* Template(unsigned int style);

}  // namespace hatch

#endif
