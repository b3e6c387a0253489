// Conversions on many threads at once give what one conversion alone gives, with the record log
// off, on, and switched meanwhile; the log holds every line of every conversion once and whole.
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

struct Result {
    QByteArray digest;  // of the status and the document
    std::string log;
};

// Each entry of a record log (a whole banner or a record name's line) with its count. A line
// landing inside a banner, or two lines run together, leave entries no conversion writes.
using Entries = std::map<std::string, int>;

Entries SplitLog(const std::string& log) {
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

std::string ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
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
QByteArray Convert(const Input& input) {
    dib::PendingMask() = QImage();
    QByteArray svg;
    QCryptographicHash digest(QCryptographicHash::Sha1);
    digest.addData(QByteArray::number(ConvertMetaFileToSVG(input.bytes, svg)) + ' ');
    digest.addData(svg);
    return digest.result();
}

// Converts every input `kPasses` times on kThreads threads, each taking the next job from one
// shared counter, while the calling thread runs `meanwhile` over and over; returns the digest of
// each job's result.
std::vector<QByteArray> RunConcurrently(const std::vector<Input>& inputs,
                                        const std::function<void()>& meanwhile = {}) {
    std::vector<QByteArray> digests(inputs.size() * kPasses);
    std::atomic<size_t> next{0};
    std::atomic<int> running{kThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&] {
            for (size_t job; (job = next++) < digests.size();)
                digests[job] = Convert(inputs[job % inputs.size()]);
            --running;
        });
    while (meanwhile && running > 0) meanwhile();
    for (std::thread& t : threads) t.join();
    return digests;
}

// The inputs whose result in some job differed from the reference.
std::vector<std::string> Mismatches(const std::vector<Input>& inputs,
                                    const std::vector<Result>& reference,
                                    const std::vector<QByteArray>& digests) {
    std::vector<std::string> out;
    for (size_t job = 0; job < digests.size(); ++job)
        if (digests[job] != reference[job % inputs.size()].digest)
            out.push_back(inputs[job % inputs.size()].name);
    return out;
}

void ConcurrentConversionsMatchOneAtATime(const std::vector<Input>& inputs) {
    ASSERT_GE(inputs.size(), 2u);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("records.txt"));
    const std::vector<std::string> none;

    // First on many threads, so that what the library and Qt set up on first use is set up
    // by calls racing each other; checked once the reference is known.
    const std::vector<QByteArray> first = RunConcurrently(inputs);

    // The reference: one conversion at a time, each with a record log of its own.
    std::vector<Result> reference;
    for (const Input& input : inputs) {
        QFile::remove(path);
        EnableLogging(true, path);
        reference.push_back({Convert(input), std::string()});
        EnableLogging(false, QString());
        reference.back().log = ReadFile(path);
    }
    Entries expected;
    for (const Result& r : reference)
        for (const auto& entry : SplitLog(r.log)) expected[entry.first] += entry.second * kPasses;
    EXPECT_TRUE(expected.count(kBanners[0]) && expected.count(kBanners[2])) << "no record log";

    EXPECT_EQ(Mismatches(inputs, reference, first), none);

    QFile::remove(path);
    EnableLogging(true, path);
    EXPECT_EQ(Mismatches(inputs, reference, RunConcurrently(inputs)), none);
    EnableLogging(false, QString());
    EXPECT_EQ(SplitLog(ReadFile(path)), expected);

    // Switching the log between two files and off while others convert: the documents stay the
    // same, and whatever reaches either file is made of whole entries.
    const QString other = dir.filePath(QStringLiteral("other.txt"));
    const auto switching = [&] {
        EnableLogging(true, path);
        EnableLogging(true, other);
        EnableLogging(false, QString());
    };
    EXPECT_EQ(Mismatches(inputs, reference, RunConcurrently(inputs, switching)), none);
    for (const QString& log : {path, other})
        for (const auto& entry : SplitLog(ReadFile(log)))
            EXPECT_EQ(expected.count(entry.first), 1u) << entry.first;
    std::printf("%zu files, %d passes on %d threads\n", inputs.size(), kPasses, kThreads);
}

}  // namespace

TEST(Threads, ExamplesOnManyThreadsMatchOneAtATime) {
    ConcurrentConversionsMatchOneAtATime(Inputs(SVGMODULE_SOURCE_DIR "/examples"));
}

TEST(Threads, CorpusOnManyThreadsMatchesOneAtATime) {
    const std::vector<Input> inputs = Inputs(CorpusDir());
    if (inputs.empty()) GTEST_SKIP() << "corpus absent: no metafiles at " << CorpusDir();
    ConcurrentConversionsMatchOneAtATime(inputs);
}
