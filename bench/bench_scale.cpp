// How conversion time and memory grow with the size of a drawing: synthetic EMF and WMF files
// of 1k, 10k, 100k and 1M records (pen selections, move-to and line-to runs, 100-point
// polylines), each converted from memory.
//
//     bench_scale [--rounds N] [--max-records N] [--csv FILE]
//     bench_scale --adversarial [--rounds N] [--max-bytes N] [--family NAME]
//
// The second form converts every family of hostile files (tests/AdversarialFiles) at 256 KiB
// and four times larger up to --max-bytes (default 4 MiB; rounds default 3) and prints input,
// output, peak heap and time per file, with the growth of the time per input byte from the
// smallest size to the largest (1.0 is linear).
//
// Time: median CPU time of the converting thread (CLOCK_THREAD_CPUTIME_ID) over N rounds
// (default 21; at most 5 for a million records), per record.
// Memory: this program counts the heap itself (bench/HeapCount). The peak is the largest amount
// of heap that one conversion holds above what was allocated before it started, output
// included; counting is on for that one conversion only, never during the timed rounds.
#include <QByteArray>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "CLogSystem.h"
#include "bench/BenchUtil.h"
#include "svgmodule.h"
#include "tests/AdversarialFiles.h"
#include "bench/HeapCount.h"
#include "tests/MetafileBuilder.h"

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

int Adversarial(long rounds, long maxBytes, const std::string& only) {
    const double mb = 1024.0 * 1024.0;
    std::printf(
        "Hostile files: median CPU time of the converting thread over %ld rounds; peak = "
        "most heap one conversion holds above its start, output included.\n\n",
        rounds);
    std::printf("%-22s %8s %9s %7s %9s %7s %9s %8s %6s\n", "family", "input MB", "output MB",
                "out/in", "peak MB", "peak/in", "ms", "ns/byte", "status");
    for (const adversarial::Family& family : adversarial::Families()) {
        if (!only.empty() && only != family.name) continue;
        double first = 0, last = 0;
        for (long bytes = 256 * 1024; bytes <= maxBytes; bytes *= 4) {
            const QByteArray in = family.build((int)bytes);
            const Row r = Measure(family.name, in, 1, (int)rounds);
            const double nsPerByte = r.medianNs / (double)r.in;
            if (first == 0) first = nsPerByte;
            last = nsPerByte;
            std::printf("%-22s %8.2f %9.2f %7.2f %9.2f %7.2f %9.2f %8.2f %6d\n", family.name,
                        r.in / mb, r.out / mb, (double)r.out / (double)r.in, r.peak / mb,
                        (double)r.peak / (double)r.in, r.medianNs / 1e6, nsPerByte, r.status);
        }
        std::printf("%-22s time per byte, largest / smallest: %.2f\n", family.name,
                    first > 0 ? last / first : 0.0);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    benchutil::Options options(argc, argv);
    const bool hostile = options.TakeFlag("--adversarial");
    long rounds = hostile ? 3 : 21, maxRecords = 1000000, maxBytes = 4 * 1024 * 1024;
    std::string csv, family;
    options.Take("--family", &family);
    options.TakeInt("--rounds", &rounds);
    options.TakeInt("--max-records", &maxRecords);
    options.TakeInt("--max-bytes", &maxBytes);
    options.Take("--csv", &csv);
    if (!options.Rest().empty() || rounds < 1) {
        std::fputs(
            "Usage: bench_scale [--rounds N] [--max-records N] [--csv FILE]\n"
            "       bench_scale --adversarial [--rounds N] [--max-bytes N] [--family NAME]\n",
            stderr);
        return 2;
    }
    CLogSystem::theRootInstance->setLevel("OFF");
    if (!heap::Available()) std::fputs("(heap counting unavailable in this build)\n", stderr);
    if (hostile) return Adversarial(rounds, maxBytes, family);

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
