// svg_image_compare A.svg B.svg: exit status 0 when the two documents agree with their
// embedded PNG images compared as decoded pixels, 1 (and what differs) when not, 2 when a file
// cannot be read.
#include <QFile>
#include <cstdio>

#include "tests/SvgImageCompare.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: svg_image_compare A.svg B.svg\n");
        return 2;
    }
    QByteArray documents[2];
    for (int i = 0; i < 2; ++i) {
        QFile file(QString::fromLocal8Bit(argv[i + 1]));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "svg_image_compare: cannot read %s\n", argv[i + 1]);
            return 2;
        }
        documents[i] = file.readAll();
    }
    const QString why = svgcompare::Difference(documents[0], documents[1]);
    if (why.isEmpty()) return 0;
    std::printf("%s\n", why.toLocal8Bit().constData());
    return 1;
}
