// Conversions on many threads at once give what one conversion alone gives, in both modes, with
// the record log off, on, and switched meanwhile; the log holds every line of every conversion
// once and whole.
// Built on its own so that a ThreadSanitizer build needs only the library and this program.
#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "svg/DibDecoder.h"
#include "svgmodule.h"

namespace {

const int kThreads = 8;
const int kPasses = 3;

// What a conversion writes to the record log besides record names, each banner in one write.
const char* const kBanners[] = {"################# Start Of File ######################\n\n",
                                "\n ############### End of File ##############\n\n",
                                "#Start Of File\n\n", "\nEnd of File\n\n"};

struct Input {
    std::string name;
    QByteArray bytes;
};

// Each entry of the record log at `path` (a whole banner or a record name's line) with its
// count. A line landing inside a banner, or two lines run together, leave entries no conversion
// writes.
using Entries = std::map<std::string, int>;

Entries LogEntries(const QString& path) {
    QFile file(path);
    const std::string log = file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "";
    Entries entries;
    for (size_t pos = 0; pos < log.size();) {
        size_t end = log.find('\n', pos);
        end = end == std::string::npos ? log.size() : end + 1;
        for (const char* banner : kBanners)
            if (log.compare(pos, std::strlen(banner), banner) == 0) end = pos + std::strlen(banner);
        ++entries[log.substr(pos, end - pos)];
        pos = end;
    }
    return entries;
}

// The corpus folder: $SVGMODULE_CORPUS, else the one the build was configured with.
std::string CorpusDir() {
    const char* dir = std::getenv("SVGMODULE_CORPUS");
    return dir && *dir ? dir : SVGMODULE_CORPUS_DIR;
}

// The metafiles under `folder` and its subfolders (none when it is absent).
std::vector<Input> Inputs(const std::string& folder) {
    std::vector<Input> inputs;
    QDirIterator it(QString::fromStdString(folder),
                    {QStringLiteral("*.emf"), QStringLiteral("*.wmf")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        QFile file(it.next());
        if (file.open(QIODevice::ReadOnly))
            inputs.push_back({file.fileName().toStdString(), file.readAll()});
    }
    return inputs;
}

// Converts from the state a fresh thread starts in. A monochrome bitmap left pending at the end
// of one call masks a bitmap of the next call on the same thread, so without this the order in
// which a thread takes its files could change an output.
QByteArray Convert(const Input& input, int mode) {
    dib::PendingMask() = QImage();
    QByteArray svg;
    svgmodule_options options = SVGMODULE_OPTIONS_INIT;
    options.mode = mode;
    QCryptographicHash digest(QCryptographicHash::Sha1);
    digest.addData(QByteArray::number(svgmodule_convert(input.bytes, svg, &options)) + ' ');
    digest.addData(svg);
    return digest.result();
}

// Converts every input `kPasses` times on kThreads threads, each taking the next job from one
// shared counter, while the calling thread runs `meanwhile` over and over; returns the digest of
// each job's result (of its status and document).
std::vector<QByteArray> RunConcurrently(const std::vector<Input>& inputs, int mode,
                                        const std::function<void()>& meanwhile = {}) {
    std::vector<QByteArray> digests(inputs.size() * kPasses);
    std::atomic<size_t> next{0};
    std::atomic<int> running{kThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (size_t job; (job = next++) < digests.size();)
                digests[job] = Convert(inputs[job % inputs.size()], mode);
            --running;
        });
    while (meanwhile && running > 0) meanwhile();
    for (std::thread& t : threads) t.join();
    return digests;
}

// The inputs whose result in some job differed from the reference.
std::vector<std::string> Mismatches(const std::vector<Input>& inputs,
                                    const std::vector<QByteArray>& reference,
                                    const std::vector<QByteArray>& digests) {
    std::vector<std::string> out;
    for (size_t job = 0; job < digests.size(); ++job)
        if (digests[job] != reference[job % inputs.size()])
            out.push_back(inputs[job % inputs.size()].name);
    return out;
}

// Both modes, with the record log off, on and switched meanwhile. The faithful mode keeps no
// record log: whatever reaches the log then is an entry no conversion writes.
void ManyThreadsMatchOneAtATime(const std::vector<Input>& inputs) {
    ASSERT_GE(inputs.size(), 2u);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("records.txt"));
    const QString other = dir.filePath(QStringLiteral("other.txt"));
    const std::vector<std::string> none;
    for (int mode : {SVGMODULE_MODE_CONTRACT, SVGMODULE_MODE_FAITHFUL}) {
        SCOPED_TRACE(mode == SVGMODULE_MODE_CONTRACT ? "contract" : "faithful");
        // First on many threads, so that what the library and Qt set up on first use is set up
        // by calls racing each other; checked once the reference is known.
        const std::vector<QByteArray> first = RunConcurrently(inputs, mode);

        // The reference: one conversion at a time, each with a record log of its own, whose
        // entries every concurrent run with the log on must write kPasses times.
        std::vector<QByteArray> reference;
        Entries expected;
        for (const Input& input : inputs) {
            QFile::remove(path);
            EnableLogging(true, path);
            reference.push_back(Convert(input, mode));
            EnableLogging(false, QString());
            for (const auto& e : LogEntries(path)) expected[e.first] += e.second * kPasses;
        }
        EXPECT_EQ(expected.count(kBanners[0]) && expected.count(kBanners[2]),
                  mode == SVGMODULE_MODE_CONTRACT);
        EXPECT_EQ(Mismatches(inputs, reference, first), none);

        for (const QString& log : {path, other}) QFile::remove(log);
        EnableLogging(true, path);
        EXPECT_EQ(Mismatches(inputs, reference, RunConcurrently(inputs, mode)), none);
        EnableLogging(false, QString());
        EXPECT_EQ(LogEntries(path), expected);

        // Switching the log between two files and off while others convert: the documents stay
        // the same, and whatever reaches either file is made of whole entries.
        const auto switching = [&] {
            EnableLogging(true, path);
            EnableLogging(true, other);
            EnableLogging(false, QString());
        };
        EXPECT_EQ(Mismatches(inputs, reference, RunConcurrently(inputs, mode, switching)), none);
        for (const QString& log : {path, other})
            for (const auto& entry : LogEntries(log))
                EXPECT_EQ(expected.count(entry.first), 1u) << entry.first;
    }
    std::printf("%zu files, %d passes on %d threads\n", inputs.size(), kPasses, kThreads);
}

}  // namespace

TEST(Threads, ExamplesOnManyThreadsMatchOneAtATime) {
    const std::vector<Input> inputs = Inputs(SVGMODULE_SOURCE_DIR "/examples");
    ManyThreadsMatchOneAtATime(inputs);
}

TEST(Threads, CorpusOnManyThreadsMatchesOneAtATime) {
    const std::vector<Input> inputs = Inputs(CorpusDir());
    if (inputs.empty()) GTEST_SKIP() << "corpus absent: no metafiles at " << CorpusDir();
    ManyThreadsMatchOneAtATime(inputs);
}
