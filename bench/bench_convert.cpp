// Conversion speed: the bundled examples, a large synthetic drawing of each format, and every
// file of the shared corpus as one batch (when present).
#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <string>
#include <vector>

#include "CLogSystem.h"
#include "svgmodule.h"
#include "tools/ExampleMetafiles.h"
#include "tests/MetafileBuilder.h"

namespace {

void Run(benchmark::State& state, const QByteArray& file) {
    int64_t bytes = 0;
    for (auto _ : state) {
        QByteArray out;
        benchmark::DoNotOptimize(ConvertMetaFileToSVG(file, out));
        bytes += file.size();
    }
    state.SetBytesProcessed(bytes);
}

// Many small polygons and lines: the per-record path of both interpreters.
QByteArray SyntheticEmf(int records) {
    mfb::Emf emf;
    emf.bounds(0, 0, 1000, 1000).frame(0, 0, 31250, 31250);
    for (int i = 0; i < records; ++i) {
        const int x = i % 900, y = (i / 900) % 900;
        emf.record(mfb::EMR_POLYGON16, mfb::Bytes().zeros(16).u32(3).append(
                                           mfb::Points16({{x, y}, {x + 50, y}, {x, y + 50}})));
        emf.record(mfb::EMR_LINETO, mfb::Bytes().i32(x).i32(y + 10));
    }
    return emf.build();
}

QByteArray SyntheticWmf(int records) {
    mfb::Wmf wmf;
    for (int i = 0; i < records; ++i) {
        const int x = (i % 900) * 15, y = ((i / 900) % 900) * 15;
        wmf.record(mfb::META_POLYGON,
                   mfb::Bytes().u16(3).append(mfb::Points16({{x, y}, {x + 750, y}, {x, y + 750}})));
        wmf.record(mfb::META_LINETO, mfb::Bytes().i16((int16_t)y).i16((int16_t)x));
    }
    return wmf.build();
}

// One region record of 1 MiB (65531 rectangles of 2 x 100 units): side by side in one band
// (layout 0), stacked in one column (1), or scattered and overlapping (2). Fill and frame
// records use a red brush; the clip record intersects the bounds.
QByteArray RegionEmf(uint32_t type, int layout) {
    const int count = 65531;
    mfb::Emf emf;
    emf.bounds(0, 0, 200000, 200000).frame(0, 0, 6250000, 6250000);
    std::vector<mfb::Rect> rects((size_t)count);
    uint32_t seed = 1;
    for (int i = 0; i < count; ++i) {
        seed = seed * 1103515245u + 12345u;
        const int x = (int)(seed >> 8) % 2000, y = (int)(seed >> 4) % 2000;
        rects[(size_t)i] = layout == 0   ? mfb::Rect{3 * i, 0, 3 * i + 2, 100}
                           : layout == 1 ? mfb::Rect{0, 3 * i, 100, 3 * i + 2}
                                         : mfb::Rect{x, y, x + 2 + i % 50, y + 100};
    }
    const mfb::Bytes region = mfb::RegionData(rects);
    mfb::Bytes payload;
    if (type == mfb::EMR_EXTSELECTCLIPRGN) payload.u32(region.size()).u32(1);
    if (type != mfb::EMR_EXTSELECTCLIPRGN) payload.zeros(16).u32(region.size()).u32(1);
    if (type == mfb::EMR_FRAMERGN) payload.u32(1).u32(1);
    emf.record(mfb::EMR_CREATEBRUSHINDIRECT, mfb::Bytes().u32(1).u32(0).u32(0xFF).u32(0))
        .record(type, payload.append(region));
    return emf.build();
}

std::vector<QByteArray> CorpusFiles() {
    std::vector<QByteArray> files;
    QDir root(QStringLiteral(SVGMODULE_CORPUS_DIR));
    for (const QString& folder : root.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        QDir dir(root.filePath(folder));
        for (const QString& name :
             dir.entryList({QStringLiteral("*.emf"), QStringLiteral("*.wmf")}, QDir::Files)) {
            QFile f(dir.filePath(name));
            if (f.open(QIODevice::ReadOnly)) files.push_back(f.readAll());
        }
    }
    return files;
}

void BM_ExampleEmf(benchmark::State& state) {
    Run(state, examples::ExampleEmf());
}
void BM_ExampleWmf(benchmark::State& state) {
    Run(state, examples::ExampleWmf());
}
void BM_SyntheticEmf20k(benchmark::State& state) {
    Run(state, SyntheticEmf(10000));
}
void BM_SyntheticWmf20k(benchmark::State& state) {
    Run(state, SyntheticWmf(10000));
}

void BM_RegionRecord1MB(benchmark::State& state) {
    Run(state, RegionEmf((uint32_t)state.range(0), (int)state.range(1)));
}

void BM_CorpusBatch(benchmark::State& state) {
    static const std::vector<QByteArray> files = CorpusFiles();
    if (files.empty()) {
        state.SkipWithError("no corpus");
        return;
    }
    int64_t bytes = 0;
    for (auto _ : state) {
        for (const QByteArray& f : files) {
            QByteArray out;
            benchmark::DoNotOptimize(ConvertMetaFileToSVG(f, out));
            bytes += f.size();
        }
    }
    state.SetBytesProcessed(bytes);
    state.counters["files"] = (double)files.size();
}

// --- bitmap-heavy corpus files: the whole conversion, and the PNG encoding of its images alone

const char* const kBitmapFiles[] = {
    "emf/test-164.emf",           "emf/test-181.emf",           "emf/test-165.emf",
    "emf/test-118.emf",           "emf/test-150.emf",           "emf/test-142.emf",
    "mixed/test_libuemf_ref.emf", "mixed/test_libuemf_ref.wmf",
};

QByteArray ReadCorpusFile(const char* name) {
    QFile f(QStringLiteral(SVGMODULE_CORPUS_DIR "/") + QLatin1String(name));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The images a conversion of `file` embeds, decoded back from their PNG data.
std::vector<QImage> EmbeddedImages(const QByteArray& file) {
    static const QRegularExpression data(QStringLiteral("base64,\n([A-Za-z0-9+/=\n]*)\""));
    QByteArray out;
    ConvertMetaFileToSVG(file, out);
    std::vector<QImage> images;
    for (auto it = data.globalMatch(QString::fromLatin1(out)); it.hasNext();)
        images.push_back(
            QImage::fromData(QByteArray::fromBase64(it.next().captured(1).toLatin1()), "PNG"));
    return images;
}

void BM_BitmapFile(benchmark::State& state, const char* name) {
    const QByteArray file = ReadCorpusFile(name);
    if (file.isEmpty()) return state.SkipWithError("no corpus");
    Run(state, file);
}

// What the library spends on PNG encoding for the same file: its images encoded as it does.
void BM_BitmapFilePngOnly(benchmark::State& state, const char* name) {
    const QByteArray file = ReadCorpusFile(name);
    if (file.isEmpty()) return state.SkipWithError("no corpus");
    const std::vector<QImage> images = EmbeddedImages(file);
    int64_t pixels = 0;
    for (auto _ : state) {
        for (const QImage& image : images) {
            QByteArray png;
            QBuffer buffer(&png);
            buffer.open(QIODevice::ReadWrite);
            image.save(&buffer, "PNG");
            pixels += (int64_t)image.width() * image.height();
        }
    }
    state.counters["images"] = (double)images.size();
    state.counters["pixels/s"] = benchmark::Counter((double)pixels, benchmark::Counter::kIsRate);
}

}  // namespace

BENCHMARK(BM_ExampleEmf);
BENCHMARK(BM_ExampleWmf);
BENCHMARK(BM_SyntheticEmf20k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SyntheticWmf20k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegionRecord1MB)
    ->ArgNames({"type", "layout"})
    ->ArgsProduct({{mfb::EMR_FILLRGN, mfb::EMR_FRAMERGN, mfb::EMR_EXTSELECTCLIPRGN}, {0, 1, 2}})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CorpusBatch)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    CLogSystem::theRootInstance->setLevel("OFF");
    for (const char* name : kBitmapFiles) {
        benchmark::RegisterBenchmark((std::string("BM_Bitmaps/") + name).c_str(), BM_BitmapFile,
                                     name)
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((std::string("BM_BitmapsPngOnly/") + name).c_str(),
                                     BM_BitmapFilePngOnly, name)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
