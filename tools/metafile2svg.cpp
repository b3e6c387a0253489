// metafile2svg: converts one EMF or WMF file to SVG with libsvgmodule.
#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QString>
#include <cstdio>
#include <cstring>

#include "svgmodule.h"

namespace {

const char kUsage[] =
    "Usage: metafile2svg INPUT [-o OUTPUT] [--record-log FILE]\n"
    "\n"
    "Converts a Windows metafile (EMF, or WMF with or without the placeable header)\n"
    "to an SVG 1.1 document.\n"
    "\n"
    "  -o, --output OUTPUT  write the SVG to OUTPUT (default: standard output)\n"
    "  --record-log FILE    append the names of records without a handler to FILE\n"
    "                       (an empty FILE names the log after today's date)\n"
    "  -h, --help           show this help\n"
    "  --version            show the version\n"
    "\n"
    "Environment: LIBLOGGING_LEVEL=TRACE|INFO|WARN|FATAL|OFF sets the diagnostic level.\n"
    "Exit status: 0 when the file converted, 1 when it did not, 2 for a usage error.\n";

const char* StatusMeaning(int status) {
    switch (status) {
        case 0:
            return "nothing converted (empty, too short or unreadable input)";
        case -1:
            return "the conversion ended with an exception";
        case -2:
            return "the EMF header's byte count differs from the file size";
        case -3:
            return "the WMF header was refused (not a metafile)";
        default:
            return "unknown status";
    }
}

int UsageError(const char* message) {
    std::fprintf(stderr, "metafile2svg: %s\n%s", message, kUsage);
    return 2;
}

}  // namespace

int main(int argc, char** argv) {
    QString input, output, recordLog;
    bool haveRecordLog = false;
    for (int i = 1; i < argc; ++i) {
        const char* arg = argv[i];
        if (!std::strcmp(arg, "-h") || !std::strcmp(arg, "--help")) {
            std::fputs(kUsage, stdout);
            return 0;
        }
        if (!std::strcmp(arg, "--version")) {
            std::printf("metafile2svg (libsvgmodule) 1.0.0\n");
            return 0;
        }
        if (!std::strcmp(arg, "-o") || !std::strcmp(arg, "--output")) {
            if (++i >= argc) return UsageError("-o needs a file name");
            output = QString::fromLocal8Bit(argv[i]);
        } else if (!std::strcmp(arg, "--record-log")) {
            if (++i >= argc) return UsageError("--record-log needs a file name");
            recordLog = QString::fromLocal8Bit(argv[i]);
            haveRecordLog = true;
        } else if (arg[0] == '-' && arg[1] != '\0') {
            return UsageError((QByteArray("unknown option ") + arg).constData());
        } else if (input.isEmpty()) {
            input = QString::fromLocal8Bit(arg);
        } else {
            return UsageError("only one input file can be converted at a time");
        }
    }
    if (input.isEmpty()) return UsageError("no input file");
    if (!QFileInfo(input).isFile()) {
        std::fprintf(stderr, "metafile2svg: %s: no such file\n", input.toLocal8Bit().constData());
        return 1;
    }

    if (haveRecordLog) EnableLogging(true, recordLog);
    QByteArray svg;
    const int status = WMFToSVG(input, svg);
    if (haveRecordLog) EnableLogging(false, QString());
    if (status != 1 && status != 2) {
        std::fprintf(stderr, "metafile2svg: %s: status %d: %s\n", input.toLocal8Bit().constData(),
                     status, StatusMeaning(status));
        return 1;
    }

    if (output.isEmpty()) {
        std::fwrite(svg.constData(), 1, (size_t)svg.size(), stdout);
        return std::fflush(stdout) == 0 ? 0 : 1;
    }
    QFile file(output);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(svg) != svg.size()) {
        std::fprintf(stderr, "metafile2svg: cannot write %s\n", output.toLocal8Bit().constData());
        return 1;
    }
    return 0;
}
