// Compares two SVG documents the way a viewer sees their embedded PNG images: the text outside
// the base64 data of "data:image/png;base64," references must match byte for byte, and each
// pair of images must decode to the same size and pixels. The PNG bytes themselves may differ:
// zlib need not compress alike on every machine.
#ifndef SVGMODULE_TESTS_SVGIMAGECOMPARE_H
#define SVGMODULE_TESTS_SVGIMAGECOMPARE_H

#include <QByteArray>
#include <QString>

namespace svgcompare {

// Empty when the documents agree; otherwise what differs first.
QString Difference(const QByteArray& a, const QByteArray& b);

}  // namespace svgcompare

#endif
