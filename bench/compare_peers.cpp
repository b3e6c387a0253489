// Conversion time of this library, in its contract and its faithful mode, against open-source
// peers, file by file over the shared corpus: libemf2svg for EMF files, libwmf's SVG device for
// WMF files. "ours" is the contract mode; the faithful mode is timed beside it.
//
//     compare_peers [--corpus DIR] [--rounds N] [--csv FILE] [--summary-csv FILE]
//
// Every file is held in memory. Each round converts every file once with each converter,
// interleaved file by file and alternating which converter goes first, and times each call
// with the thread's CPU-time clock (CLOCK_THREAD_CPUTIME_ID), so waiting for a core that
// another process holds is not counted. A file's figure is the median over the rounds.
//
// Before timing, each converter runs every file once in a forked child; a file on which a
// converter crashes or uses more than 5 s of CPU is left out of the comparison and reported.
//
// The "handled" subset holds the files of which at least 80% of the records, by count and by
// bytes, have a handler in this library. The program walks the records itself and learns
// which record types have a handler from the library's record log: it converts a metafile
// holding just one record of the type and looks whether the log names it.
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "CLogSystem.h"
#include "bench/BenchUtil.h"
#include "bench/Peers.h"
#include "svgmodule.h"
#include "tests/MetafileBuilder.h"

namespace {

using benchutil::Median;
using benchutil::TimeNs;

const int kProbeCpuSeconds = 5;
const double kHandledShare = 0.8;

enum Format { kEmf, kWmf };
const char* const kFormatName[] = {"EMF", "WMF"};
const char* const kPeerName[] = {"libemf2svg", "libwmf"};

// --- record walk --------------------------------------------------------------------------

struct Record {
    uint32_t type;
    qint64 offset;
    qint64 size;
};

uint32_t U32(const QByteArray& d, qint64 at) {
    const auto* p = reinterpret_cast<const unsigned char*>(d.constData()) + at;
    return (uint32_t)p[0] | (uint32_t)p[1] << 8 | (uint32_t)p[2] << 16 | (uint32_t)p[3] << 24;
}

uint16_t U16(const QByteArray& d, qint64 at) {
    const auto* p = reinterpret_cast<const unsigned char*>(d.constData()) + at;
    return (uint16_t)(p[0] | p[1] << 8);
}

// EMF: type and byte size at the start of every record, from the header (offset 0) to EMR_EOF.
// WMF: after the optional 22-byte placeable header and the 18-byte header, size in 16-bit
// words then function number, up to META_EOF. Either walk stops at a record that does not fit.
std::vector<Record> WalkRecords(Format format, const QByteArray& d) {
    std::vector<Record> records;
    const qint64 end = d.size();
    qint64 pos = 0;
    if (format == kWmf) {
        if (end >= 22 && U32(d, 0) == 0x9AC6CDD7u) pos = 22;
        pos += 18;
    }
    const qint64 head = format == kEmf ? 8 : 6;
    while (pos + head <= end) {
        const uint32_t type = format == kEmf ? U32(d, pos) : U16(d, pos + 4);
        const qint64 size = format == kEmf ? (qint64)U32(d, pos + 4) : (qint64)U32(d, pos) * 2;
        const bool eof = format == kEmf ? type == 14 : type == 0;
        if (eof || size < head || size > end - pos) break;
        records.push_back({type, pos, size});
        pos += size;
    }
    return records;
}

// Record types the formats define. A type outside these has no name in the record log and
// no handler either.
bool DefinedType(Format format, uint32_t type) {
    if (format == kEmf) return type >= 1 && type <= 122 && type != 69 && type != 117;
    static const uint16_t kWmf[] = {
        0x001E, 0x0035, 0x0037, 0x00F7, 0x0102, 0x0103, 0x0104, 0x0105, 0x0106, 0x0107,
        0x0108, 0x0127, 0x012A, 0x012B, 0x012C, 0x012D, 0x012E, 0x0139, 0x0142, 0x0149,
        0x01F0, 0x01F9, 0x0201, 0x0209, 0x020A, 0x020B, 0x020C, 0x020D, 0x020E, 0x020F,
        0x0211, 0x0213, 0x0214, 0x0220, 0x0228, 0x0231, 0x0234, 0x02FA, 0x02FB, 0x02FC,
        0x0324, 0x0325, 0x0410, 0x0412, 0x0415, 0x0416, 0x0418, 0x0419, 0x041B, 0x041F,
        0x0429, 0x0436, 0x0521, 0x0538, 0x0548, 0x061C, 0x061D, 0x0626, 0x06FF, 0x0817,
        0x081A, 0x0830, 0x0922, 0x0940, 0x0A32, 0x0B23, 0x0B41, 0x0D33, 0x0F43};
    return std::find(std::begin(kWmf), std::end(kWmf), type) != std::end(kWmf);
}

// --- the record log -----------------------------------------------------------------------

// The record names the library logs while converting `metafile` (banners left out).
QStringList LoggedNames(const QByteArray& metafile, const QString& logPath) {
    QFile::remove(logPath);
    EnableLogging(true, logPath);
    QByteArray svg;
    ConvertMetaFileToSVG(metafile, svg);
    EnableLogging(false, QString());
    QStringList names;
    QFile f(logPath);
    if (f.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : f.readAll().split('\n')) {
            const QString name = QString::fromLatin1(line).trimmed();
            if (!name.isEmpty() && !name.contains(QLatin1String("Start Of File")) &&
                !name.contains(QLatin1String("End of File")))
                names << name;
        }
    }
    f.close();
    QFile::remove(logPath);
    return names;
}

// Which record types the library handles, learnt type by type from the record log.
class HandlerTable {
  public:
    explicit HandlerTable(QString logPath) : m_logPath(std::move(logPath)) {}

    bool Handled(Format format, const QByteArray& file, const Record& r) {
        if (format == kEmf && r.offset == 0) return true;  // the header sets the picture up
        if (!DefinedType(format, r.type)) return false;
        const auto key = std::make_pair((int)format, r.type);
        auto it = m_known.find(key);
        if (it == m_known.end())
            it = m_known.emplace(key, LoggedNames(OneRecord(format, file, r), m_logPath).isEmpty())
                     .first;
        return it->second;
    }

  private:
    // A metafile holding the record `r` of `file` and nothing else.
    static QByteArray OneRecord(Format format, const QByteArray& file, const Record& r) {
        const qint64 head = format == kEmf ? 8 : 6;
        mfb::Bytes payload;
        for (qint64 i = r.offset + head; i < r.offset + r.size; ++i)
            payload.u8((uint8_t)file.at((int)i));
        if (format == kEmf) return mfb::Emf().record(r.type, payload).build();
        return mfb::Wmf().record((uint16_t)r.type, payload).build();
    }

    QString m_logPath;
    std::map<std::pair<int, uint32_t>, bool> m_known;
};

// --- the converters -----------------------------------------------------------------------

struct Outcome {
    bool converted;
    qint64 outBytes;
};

Outcome RunOurs(const QByteArray& in) {
    QByteArray svg;
    const int status = ConvertMetaFileToSVG(in, svg);
    return {status == 1 || status == 2, svg.size()};
}

Outcome RunFaithful(const QByteArray& in) {
    svgmodule_options options = SVGMODULE_OPTIONS_INIT;
    options.mode = SVGMODULE_MODE_FAITHFUL;
    QByteArray svg;
    const int status = svgmodule_convert(in, svg, &options);
    return {status == 1 || status == 2, svg.size()};
}

Outcome RunPeer(Format format, const QByteArray& in) {
    const peers::Result r = format == kEmf ? peers::Emf2svg(in.constData(), (size_t)in.size())
                                           : peers::Libwmf(in.constData(), (size_t)in.size());
    return {r.converted, (qint64)r.outBytes};
}

// Runs `f` once in a forked child. Empty when it returned; otherwise what went wrong.
std::string ProbeInChild(const std::function<void()>& f) {
    std::fflush(stdout);
    std::fflush(stderr);
    const pid_t pid = fork();
    if (pid < 0) return "fork failed";
    if (pid == 0) {
        const rlimit cpu = {(rlim_t)kProbeCpuSeconds, (rlim_t)kProbeCpuSeconds + 1};
        setrlimit(RLIMIT_CPU, &cpu);
        alarm(12 * kProbeCpuSeconds);  // a child that blocks instead of computing
        f();
        _exit(0);
    }
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return "";
    if (WIFSIGNALED(status)) {
        const int sig = WTERMSIG(status);
        if (sig == SIGXCPU || sig == SIGKILL || sig == SIGALRM)
            return "took more than " + std::to_string(kProbeCpuSeconds) + " s";
        return std::string("crashed (") + strsignal(sig) + ")";
    }
    return "ended with exit status " + std::to_string(WEXITSTATUS(status));
}

// --- the corpus -----------------------------------------------------------------------------

struct Input {
    QString path;  // relative to the corpus
    Format format;
    QByteArray data;
    int records = 0, handledRecords = 0, loggedNames = 0;
    qint64 recordBytes = 0, handledBytes = 0;
    std::string oursProbe, peerProbe;
    Outcome ours{false, 0}, peer{false, 0};
    std::vector<double> oursNs, peerNs, faithfulNs;

    bool handled() const {
        return records > 0 && handledRecords >= kHandledShare * records &&
               handledBytes >= kHandledShare * recordBytes;
    }
    bool compared() const {
        return oursProbe.empty() && peerProbe.empty() && ours.converted && peer.converted;
    }
    double oursMedian() const { return Median(oursNs); }
    double peerMedian() const { return Median(peerNs); }
    double faithfulMedian() const { return Median(faithfulNs); }
    double ratio() const { return oursMedian() / peerMedian(); }
    // Why the file is not compared; empty when it is.
    std::string excluded() const {
        if (!oursProbe.empty()) return "this library " + oursProbe;
        if (!peerProbe.empty()) return std::string(kPeerName[format]) + " " + peerProbe;
        if (!ours.converted) return "refused by this library";
        if (!peer.converted) return std::string("refused by ") + kPeerName[format];
        return "";
    }
};

std::vector<Input> LoadCorpus(const QString& root) {
    const struct {
        const char* folder;
        Format format;
    } kFolders[] = {{"emf", kEmf},   {"emf-extra", kEmf}, {"emf-corrupted", kEmf},
                    {"mixed", kEmf}, {"wmf", kWmf},       {"mixed", kWmf}};
    std::vector<Input> inputs;
    for (const auto& folder : kFolders) {
        QDir dir(QDir(root).filePath(QLatin1String(folder.folder)));
        const QString pattern =
            folder.format == kEmf ? QStringLiteral("*.emf") : QStringLiteral("*.wmf");
        for (const QString& name : dir.entryList({pattern}, QDir::Files, QDir::Name)) {
            QFile f(dir.filePath(name));
            if (!f.open(QIODevice::ReadOnly)) continue;
            Input in;
            in.path = QLatin1String(folder.folder) + QLatin1Char('/') + name;
            in.format = folder.format;
            in.data = f.readAll();
            inputs.push_back(std::move(in));
        }
    }
    return inputs;
}

void Classify(Input& in, HandlerTable& table, const QString& logPath) {
    for (const Record& r : WalkRecords(in.format, in.data)) {
        const bool handled = table.Handled(in.format, in.data, r);
        ++in.records;
        in.recordBytes += r.size;
        in.handledRecords += handled;
        in.handledBytes += handled ? r.size : 0;
    }
    in.loggedNames = LoggedNames(in.data, logPath).size();
}

// --- report --------------------------------------------------------------------------------

struct Summary {
    std::string group;
    int files = 0;
    double ours = 0, peer = 0, faithful = 0, bytes = 0, medianRatio = 0, worstRatio = 0;
    std::string worstFile;
};

Summary Summarise(const std::string& group, const std::vector<const Input*>& files) {
    Summary s;
    s.group = group;
    std::vector<double> ratios;
    for (const Input* in : files) {
        ++s.files;
        s.ours += in->oursMedian();
        s.peer += in->peerMedian();
        s.faithful += in->faithfulMedian();
        s.bytes += in->data.size();
        ratios.push_back(in->ratio());
        if (in->ratio() > s.worstRatio) {
            s.worstRatio = in->ratio();
            s.worstFile = in->path.toStdString();
        }
    }
    s.medianRatio = Median(ratios);
    return s;
}

void PrintSummary(const Summary& s, Format format) {
    if (s.files == 0) {
        std::printf("%-12s no files\n", s.group.c_str());
        return;
    }
    std::printf(
        "%-12s %3d files  ours %9.2f ms  %-10s %9.2f ms  sum ratio %5.2f  median ratio %5.2f  "
        "worst %5.2f (%s)  ours %6.1f MB/s\n",
        s.group.c_str(), s.files, s.ours / 1e6, kPeerName[format], s.peer / 1e6, s.ours / s.peer,
        s.medianRatio, s.worstRatio, s.worstFile.c_str(), s.bytes / (s.ours / 1e9) / 1e6);
    std::printf("%-12s            faithful %9.2f ms  %.2f x contract  %.2f x %s\n", "",
                s.faithful / 1e6, s.faithful / s.ours, s.faithful / s.peer, kPeerName[format]);
}

bool WriteCsv(const std::string& path, const std::vector<Input>& inputs) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f) return false;
    std::fprintf(f,
                 "file,format,bytes,records,handled_records,record_bytes,handled_bytes,"
                 "logged_unhandled,handled_subset,excluded,ours_median_ns,peer,peer_median_ns,"
                 "ratio,ours_out_bytes,peer_out_bytes\n");
    for (const Input& in : inputs) {
        const bool c = in.compared();
        std::fprintf(f, "%s,%s,%d,%d,%d,%lld,%lld,%d,%d,\"%s\",%.0f,%s,%.0f,%.4f,%lld,%lld\n",
                     in.path.toUtf8().constData(), kFormatName[in.format], (int)in.data.size(),
                     in.records, in.handledRecords, (long long)in.recordBytes,
                     (long long)in.handledBytes, in.loggedNames, in.handled() ? 1 : 0,
                     in.excluded().c_str(), c ? in.oursMedian() : 0.0, kPeerName[in.format],
                     c ? in.peerMedian() : 0.0, c ? in.ratio() : 0.0, (long long)in.ours.outBytes,
                     (long long)in.peer.outBytes);
    }
    return std::fclose(f) == 0;
}

bool WriteSummaryCsv(const std::string& path, const std::vector<Summary>& summaries, int rounds) {
    FILE* f = std::fopen(path.c_str(), "w");
    if (!f) return false;
    std::fprintf(f,
                 "group,rounds,files,ours_sum_ms,peer_sum_ms,sum_ratio,median_ratio,worst_ratio,"
                 "worst_file,ours_mb_per_s\n");
    for (const Summary& s : summaries) {
        if (s.files == 0) continue;
        std::fprintf(f, "%s,%d,%d,%.3f,%.3f,%.4f,%.4f,%.4f,%s,%.2f\n", s.group.c_str(), rounds,
                     s.files, s.ours / 1e6, s.peer / 1e6, s.ours / s.peer, s.medianRatio,
                     s.worstRatio, s.worstFile.c_str(), s.bytes / (s.ours / 1e9) / 1e6);
    }
    return std::fclose(f) == 0;
}

const char kUsage[] =
    "Usage: compare_peers [--corpus DIR] [--rounds N] [--csv FILE] [--summary-csv FILE]\n";

}  // namespace

int main(int argc, char** argv) {
    benchutil::Options options(argc, argv);
    std::string corpus = SVGMODULE_CORPUS_DIR, csv, summaryCsv;
    long rounds = 21;
    options.Take("--corpus", &corpus);
    options.Take("--csv", &csv);
    options.Take("--summary-csv", &summaryCsv);
    const bool haveRounds = options.TakeInt("--rounds", &rounds);
    if (!options.Rest().empty() || rounds < 1 || (haveRounds && rounds > 10000)) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    CLogSystem::theRootInstance->setLevel("OFF");
    std::vector<Input> inputs = LoadCorpus(QString::fromStdString(corpus));
    if (inputs.empty()) {
        std::printf("compare_peers: no metafiles under %s, nothing to compare\n", corpus.c_str());
        return 0;
    }

    // Untimed: which converter survives which file, what it makes of it, the record shares.
    const QString logPath =
        QDir::temp().filePath(QStringLiteral("compare_peers_%1.log").arg(getpid()));
    HandlerTable table(logPath);
    std::fprintf(stderr, "probing %zu files...\n", inputs.size());
    for (Input& in : inputs) {
        in.oursProbe = ProbeInChild([&] {
            RunOurs(in.data);
            RunFaithful(in.data);
        });
        in.peerProbe = ProbeInChild([&] { RunPeer(in.format, in.data); });
        if (in.oursProbe.empty()) {
            in.ours = RunOurs(in.data);
            Classify(in, table, logPath);
        }
        if (in.peerProbe.empty()) in.peer = RunPeer(in.format, in.data);
    }

    std::vector<Input*> timed;
    for (Input& in : inputs)
        if (in.compared()) timed.push_back(&in);
    for (long r = 0; r < rounds; ++r) {
        std::fprintf(stderr, "\rround %ld/%ld", r + 1, rounds);
        for (size_t i = 0; i < timed.size(); ++i) {
            Input& in = *timed[i];
            const auto ours = [&] {
                in.oursNs.push_back(TimeNs([&] { RunOurs(in.data); }));
                in.faithfulNs.push_back(TimeNs([&] { RunFaithful(in.data); }));
            };
            const auto peer = [&] {
                in.peerNs.push_back(TimeNs([&] { RunPeer(in.format, in.data); }));
            };
            if ((r + (long)i) % 2 == 0) {
                ours();
                peer();
            } else {
                peer();
                ours();
            }
        }
    }
    std::fprintf(stderr, "\n");

    std::printf(
        "Per-file medians of %ld rounds, CPU time of the converting thread "
        "(CLOCK_THREAD_CPUTIME_ID); ratio = ours / peer, below 1 means this library "
        "is faster.\nrec%%/byte%% = share of records, by count and by bytes, that have "
        "a handler here; H = handled subset (both at least %.0f%%).\n\n",
        rounds, kHandledShare * 100);
    std::printf("%-50s %9s %6s %6s %6s %10s %10s %10s %7s\n", "file", "KB", "recs", "rec%", "byte%",
                "ours ms", "faith ms", "peer ms", "ratio");
    for (const Input& in : inputs) {
        if (!in.compared()) continue;
        std::printf("%-50s %9.1f %6d %6.1f %6.1f %10.3f %10.3f %10.3f %7.2f %s\n",
                    in.path.toUtf8().constData(), in.data.size() / 1024.0, in.records,
                    100.0 * in.handledRecords / in.records,
                    100.0 * (double)in.handledBytes / (double)in.recordBytes, in.oursMedian() / 1e6,
                    in.faithfulMedian() / 1e6, in.peerMedian() / 1e6, in.ratio(),
                    in.handled() ? "H" : "");
    }
    std::printf("\nNot compared:\n");
    int excluded = 0;
    for (const Input& in : inputs) {
        if (in.compared()) continue;
        ++excluded;
        std::printf("  %-50s %s\n", in.path.toUtf8().constData(), in.excluded().c_str());
    }
    if (!excluded) std::printf("  none\n");

    std::printf("\nSums of the per-file medians (peer: %s for EMF, %s for WMF):\n", kPeerName[kEmf],
                kPeerName[kWmf]);
    std::vector<Summary> summaries;
    for (Format format : {kEmf, kWmf}) {
        std::vector<const Input*> all, handled;
        for (const Input* in : timed) {
            if (in->format != format) continue;
            all.push_back(in);
            if (in->handled()) handled.push_back(in);
        }
        const std::string name = kFormatName[format];
        summaries.push_back(Summarise(name + " all", all));
        PrintSummary(summaries.back(), format);
        summaries.push_back(Summarise(name + " handled", handled));
        PrintSummary(summaries.back(), format);
    }
    if (!csv.empty() && !WriteCsv(csv, inputs))
        std::fprintf(stderr, "cannot write %s\n", csv.c_str());
    if (!summaryCsv.empty() && !WriteSummaryCsv(summaryCsv, summaries, (int)rounds))
        std::fprintf(stderr, "cannot write %s\n", summaryCsv.c_str());
    return 0;
}
