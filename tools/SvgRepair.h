// Makes the converter's SVG text acceptable to namespace-aware SVG clients (browsers, rsvg).
#ifndef SVGMODULE_TOOLS_SVGREPAIR_H
#define SVGMODULE_TOOLS_SVGREPAIR_H

#include <QByteArray>

// Returns `svg` with three textual fixes and nothing else changed:
//  - the first start tag, when it is an `svg` element without an `xmlns:xlink` attribute,
//    gains ` xmlns:xlink="http://www.w3.org/1999/xlink"` right after its name;
//  - in any start tag that carries the same attribute name more than once, every occurrence
//    but the last is removed together with the white space before it;
//  - every character that XML does not allow in a document (the C0 controls other than tab,
//    line feed and carriage return; U+FFFE and U+FFFF), wherever it stands, becomes U+FFFD.
// Apart from that, comments, CDATA sections, processing instructions, declarations, end tags,
// text and attribute values are passed through byte for byte. A tag left open at the end of
// the input stays as it is.
QByteArray RepairSvg(const QByteArray& svg);

#endif
