// Hostile metafiles, each family built to about a requested size: huge counts and handles,
// deep save/restore, huge extents, millions of records, long dash pens, many hatched
// brushes, huge and noisy bitmaps, large regions, crossing clip regions, long strings. The
// test converts each under the library's output and memory bounds; bench_scale --adversarial
// measures them at growing sizes for the time per byte.
#ifndef SVGMODULE_TESTS_ADVERSARIALFILES_H
#define SVGMODULE_TESTS_ADVERSARIALFILES_H

#include <QByteArray>
#include <vector>

namespace adversarial {

struct Family {
    const char* name;
    // A file of about `bytes` bytes (at least a few records).
    QByteArray (*build)(int bytes);
};

const std::vector<Family>& Families();

}  // namespace adversarial

#endif
