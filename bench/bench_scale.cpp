// How conversion time and memory grow with the size of a drawing: synthetic EMF and WMF files
// of 1k, 10k, 100k and 1M records (pen selections, move-to and line-to runs, 100-point
// polylines), each converted from memory.
//
//     bench_scale [--rounds N] [--max-records N] [--csv FILE]
//
// Time: median CPU time of the converting thread (CLOCK_THREAD_CPUTIME_ID) over N rounds
// (default 21; at most 5 for a million records), per record.
// Memory: this program counts the heap itself. It replaces malloc, calloc, realloc, free and
// the aligned allocators with wrappers around the C library's, which add and subtract each
// block's usable size while counting is on. The peak is the largest amount of heap that one
// conversion holds above what was allocated before it started, output included; counting is
// on for that one conversion only, never during the timed rounds.
#include <malloc.h>

#include <QByteArray>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "CLogSystem.h"
#include "bench/BenchUtil.h"
#include "svgmodule.h"
#include "tests/MetafileBuilder.h"

// --- heap counting ------------------------------------------------------------------------

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace heap {

std::atomic<bool> g_counting{false};
std::atomic<long long> g_live{0};
std::atomic<long long> g_peak{0};

void Allocated(void* block) {
    if (!block || !g_counting.load(std::memory_order_relaxed)) return;
    const long long live = g_live += (long long)malloc_usable_size(block);
    long long peak = g_peak.load(std::memory_order_relaxed);
    while (live > peak && !g_peak.compare_exchange_weak(peak, live)) {
    }
}

void Released(void* block) {
    if (block && g_counting.load(std::memory_order_relaxed))
        g_live -= (long long)malloc_usable_size(block);
}

// The peak heap, in bytes above the start, that `f` holds at any moment.
template <typename F>
long long Peak(F&& f) {
    g_live = 0;
    g_peak = 0;
    g_counting = true;
    f();
    g_counting = false;
    return g_peak.load();
}

}  // namespace heap

extern "C" {

void* malloc(size_t size) {
    void* block = __libc_malloc(size);
    heap::Allocated(block);
    return block;
}

void* calloc(size_t count, size_t size) {
    void* block = __libc_calloc(count, size);
    heap::Allocated(block);
    return block;
}

void* realloc(void* block, size_t size) {
    heap::Released(block);
    void* moved = __libc_realloc(block, size);
    heap::Allocated(moved ? moved : (size ? block : nullptr));
    return moved;
}

void free(void* block) {
    heap::Released(block);
    __libc_free(block);
}

void* memalign(size_t alignment, size_t size) {
    void* block = __libc_memalign(alignment, size);
    heap::Allocated(block);
    return block;
}

void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** out, size_t alignment, size_t size) {
    void* block = memalign(alignment, size);
    if (!block) return ENOMEM;
    *out = block;
    return 0;
}

}  // extern "C"

// --- synthetic drawings --------------------------------------------------------------------

namespace {

const int kPens = 4;
const int kPolylinePoints = 100;

// After kPens pen creations, cycles of eight records: select a pen, move to, five line-tos
// and a 100-point polyline. `records` counts every record but the header and the end record.
// Positions wander over a 1000 x 1000 grid (EMF) or 15000 x 15000 (WMF, 15 units a pixel).
template <typename Sink>
void Drawing(int records, int scale, Sink&& out) {
    for (int i = 0; i < records; ++i) {
        const int cycle = (i - kPens) / 8, step = (i - kPens) % 8;
        const int x = (cycle * 37 + step * 11) % 900, y = (cycle * 53 + step * 7) % 900;
        if (i < kPens)
            out.pen(i);
        else if (step == 0)
            out.select(cycle % kPens);
        else if (step == 1)
            out.moveTo(x * scale, y * scale);
        else if (step < 7)
            out.lineTo(x * scale, y * scale);
        else
            out.polyline(x * scale, y * scale, scale);
    }
}

mfb::Bytes PolylinePoints(int x, int y, int scale) {
    mfb::Bytes b;
    for (int k = 0; k < kPolylinePoints; ++k)
        b.i16((int16_t)(x + (k % 10) * 9 * scale)).i16((int16_t)(y + (k / 10) * 9 * scale));
    return b;
}

const uint32_t kColors[kPens] = {0x000000, 0x0000FF, 0x00A000, 0xC00000};

QByteArray SyntheticEmf(int records) {
    struct {
        mfb::Emf emf;
        void pen(int k) {
            emf.record(mfb::EMR_CREATEPEN,
                       mfb::Bytes().u32(k + 1).u32(0).i32(k + 1).i32(0).u32(kColors[k]));
        }
        void select(int k) { emf.record(mfb::EMR_SELECTOBJECT, mfb::Bytes().u32(k + 1)); }
        void moveTo(int x, int y) { emf.record(mfb::EMR_MOVETOEX, mfb::Bytes().i32(x).i32(y)); }
        void lineTo(int x, int y) { emf.record(mfb::EMR_LINETO, mfb::Bytes().i32(x).i32(y)); }
        void polyline(int x, int y, int scale) {
            emf.record(
                mfb::EMR_POLYLINE16,
                mfb::Bytes().zeros(16).u32(kPolylinePoints).append(PolylinePoints(x, y, scale)));
        }
    } e;
    e.emf.bounds(0, 0, 1000, 1000).frame(0, 0, 31250, 31250);
    Drawing(records, 1, e);
    return e.emf.build();
}

QByteArray SyntheticWmf(int records) {
    struct {
        mfb::Wmf wmf;
        void pen(int k) {
            wmf.record(mfb::META_CREATEPENINDIRECT,
                       mfb::Bytes().u16(0).i16((int16_t)(15 * (k + 1))).i16(0).u32(kColors[k]));
        }
        void select(int k) { wmf.record(mfb::META_SELECTOBJECT, mfb::Bytes().u16((uint16_t)k)); }
        void moveTo(int x, int y) {
            wmf.record(mfb::META_MOVETO, mfb::Bytes().i16((int16_t)y).i16((int16_t)x));
        }
        void lineTo(int x, int y) {
            wmf.record(mfb::META_LINETO, mfb::Bytes().i16((int16_t)y).i16((int16_t)x));
        }
        void polyline(int x, int y, int scale) {
            wmf.record(mfb::META_POLYLINE,
                       mfb::Bytes().u16(kPolylinePoints).append(PolylinePoints(x, y, scale)));
        }
    } w;
    w.wmf.placeable(0, 0, 15000, 15000, 1440);
    Drawing(records, 15, w);
    return w.wmf.build();
}

struct Row {
    const char* format;
    int records, rounds, status;
    long long in, out, peak;
    double medianNs;
};

Row Measure(const char* format, const QByteArray& in, int records, int rounds) {
    Row row{format, records, rounds, 0, in.size(), 0, 0, 0};
    row.peak = heap::Peak([&] {
        QByteArray svg;
        row.status = ConvertMetaFileToSVG(in, svg);
        row.out = svg.size();
    });
    std::vector<double> ns;
    for (int r = 0; r < rounds; ++r) {
        ns.push_back(benchutil::TimeNs([&] {
            QByteArray svg;
            ConvertMetaFileToSVG(in, svg);
        }));
    }
    row.medianNs = benchutil::Median(ns);
    return row;
}

void Print(const Row& r) {
    const double mb = 1024.0 * 1024.0;
    std::printf("%-4s %8d %9.2f %10.2f %6d %10.2f %10.1f %9.2f %8.2f%s\n", r.format, r.records,
                r.in / mb, r.out / mb, r.rounds, r.medianNs / 1e6, r.medianNs / r.records,
                r.peak / mb, (double)r.peak / (double)(r.in + r.out),
                r.status == 1 || r.status == 2 ? "" : "  (not converted!)");
}

}  // namespace

int main(int argc, char** argv) {
    benchutil::Options options(argc, argv);
    long rounds = 21, maxRecords = 1000000;
    std::string csv;
    options.TakeInt("--rounds", &rounds);
    options.TakeInt("--max-records", &maxRecords);
    options.Take("--csv", &csv);
    if (!options.Rest().empty() || rounds < 1) {
        std::fputs("Usage: bench_scale [--rounds N] [--max-records N] [--csv FILE]\n", stderr);
        return 2;
    }
    CLogSystem::theRootInstance->setLevel("OFF");

    std::printf(
        "Synthetic drawings: median CPU time of the converting thread "
        "(CLOCK_THREAD_CPUTIME_ID); peak = most heap one conversion holds above its "
        "start, output included (counted by this program's malloc wrappers).\n\n");
    std::printf("%-4s %8s %9s %10s %6s %10s %10s %9s %8s\n", "fmt", "records", "input MB",
                "output MB", "rounds", "median ms", "ns/record", "peak MB", "peak/io");
    std::vector<Row> rows;
    for (const char* format : {"EMF", "WMF"}) {
        for (int records = 1000; records <= maxRecords; records *= 10) {
            const QByteArray in = format[0] == 'E' ? SyntheticEmf(records) : SyntheticWmf(records);
            const int n = (int)(records >= 1000000 && rounds > 5 ? 5 : rounds);
            rows.push_back(Measure(format, in, records, n));
            Print(rows.back());
        }
    }
    std::printf("\npeak/io = peak / (input bytes + output bytes)\n");

    if (!csv.empty()) {
        FILE* f = std::fopen(csv.c_str(), "w");
        if (!f) {
            std::fprintf(stderr, "cannot write %s\n", csv.c_str());
            return 1;
        }
        std::fprintf(f,
                     "format,records,rounds,input_bytes,output_bytes,median_ns,ns_per_record,"
                     "peak_heap_bytes,peak_over_io\n");
        for (const Row& r : rows)
            std::fprintf(f, "%s,%d,%d,%lld,%lld,%.0f,%.2f,%lld,%.3f\n", r.format, r.records,
                         r.rounds, r.in, r.out, r.medianNs, r.medianNs / r.records, r.peak,
                         (double)r.peak / (double)(r.in + r.out));
        std::fclose(f);
    }
    return 0;
}
