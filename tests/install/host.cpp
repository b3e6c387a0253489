// A program outside the tree, built against an installed libsvgmodule: converts one file.
#include <MetafileStructs.h>
#include <svgmodule.h>

#include <cstdio>

static_assert(sizeof(tagRECT) == 16, "the published structures keep their file layout");

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    QByteArray svg;
    const int status = WMFToSVG(QString::fromLocal8Bit(argv[1]), svg);
    std::printf("status %d, %d bytes of SVG\n", status, (int)svg.size());
    return (status == 1 || status == 2) && svg.startsWith("<?xml") ? 0 : 1;
}
