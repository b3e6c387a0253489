// Converts one metafile to SVG with libsvgmodule:
//   svgmodule_host INPUT OUTPUT.svg
#include <svgmodule.h>  // installed as include/svgmodule/svgmodule.h

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdio>

// What the library's status codes mean (svgmodule.h lists them).
static const char* Meaning(int status) {
    static const char* const meanings[] = {
        "the WMF header was refused: neither an EMF nor a WMF",    // -3
        "the EMF header's byte count differs from the file size",  // -2
        "an exception ended the conversion",                       // -1
        "nothing converted: empty or too short input",             //  0
        "EMF converted",                                           //  1
        "WMF converted"};                                          //  2
    return status >= -3 && status <= 2 ? meanings[status + 3] : "unknown status";
}

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s INPUT OUTPUT.svg\n", argv[0]);
        return 2;
    }
    QFile input(QString::fromLocal8Bit(argv[1]));
    if (!input.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s: %s\n", argv[1], qPrintable(input.errorString()));
        return 1;
    }
    const QByteArray metafile = input.readAll();

    QByteArray svg;  // receives the document, UTF-8, when a converter ran
    const int status = ConvertMetaFileToSVG(metafile, svg);
    std::printf("%s: status %d, %s\n", argv[1], status, Meaning(status));
    if (status != 1 && status != 2) return 1;

    QFile output(QString::fromLocal8Bit(argv[2]));
    if (!output.open(QIODevice::WriteOnly) || output.write(svg) != svg.size() || !output.flush()) {
        std::fprintf(stderr, "cannot write %s: %s\n", argv[2], qPrintable(output.errorString()));
        return 1;
    }
    std::printf("%s: %lld bytes of SVG\n", argv[2], (long long)svg.size());
    return 0;
}
