// make_examples DIR: writes the bundled example metafiles into DIR.
#include <QDir>
#include <QFile>
#include <cstdio>

#include "tools/ExampleMetafiles.h"

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_examples DIR\n");
        return 2;
    }
    const QDir dir(QString::fromLocal8Bit(argv[1]));
    const struct {
        const char* name;
        QByteArray bytes;
    } files[] = {{"example.emf", examples::ExampleEmf()}, {"example.wmf", examples::ExampleWmf()}};
    for (const auto& f : files) {
        QFile file(dir.filePath(QString::fromLatin1(f.name)));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
            file.write(f.bytes) != f.bytes.size()) {
            std::fprintf(stderr, "make_examples: cannot write %s\n",
                         file.fileName().toLocal8Bit().constData());
            return 1;
        }
    }
    return 0;
}
