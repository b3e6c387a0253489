// The client repairs: make a document's text acceptable to namespace-aware SVG clients
// (browsers, rsvg). The options API applies them on request, after either mode.
#ifndef SVGMODULE_SVGREPAIR_H
#define SVGMODULE_SVGREPAIR_H

#include <QByteArray>

#include "svgmodule.h"

// Returns `svg` with the textual fixes that `repairs` (SVGMODULE_REPAIR_* bits) names and
// nothing else changed:
//  - XLINK: the first start tag, when it is an `svg` element without an `xmlns:xlink`
//    attribute, gains ` xmlns:xlink="http://www.w3.org/1999/xlink"` right after its name;
//  - REPEATED_ATTRIBUTES: in any start tag that carries the same attribute name more than
//    once, every occurrence but the last is removed together with the white space before it;
//  - FORBIDDEN_CHARACTERS: every character that XML does not allow in a document (the C0
//    controls other than tab, line feed and carriage return; U+FFFE and U+FFFF), wherever it
//    stands, becomes U+FFFD.
// Apart from that, comments, CDATA sections, processing instructions, declarations, end tags,
// text and attribute values are passed through byte for byte. A tag left open at the end of
// the input stays as it is.
QByteArray RepairSvg(const QByteArray& svg, unsigned repairs = SVGMODULE_REPAIR_ALL);

#endif
