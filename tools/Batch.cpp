#include "Batch.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QTemporaryFile>
#include <QXmlStreamReader>
#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>

#include "Console.h"
#include "svgmodule.h"

const char* StatusMeaning(int status) {
    switch (status) {
        case 1:
            return "EMF converted";
        case 2:
            return "WMF converted";
        case 0:
            return "nothing converted (empty, too short or unreadable input)";
        case -1:
            return "the conversion ended with an exception";
        case -2:
            return "the EMF header's byte count differs from the file size";
        case -3:
            return "the WMF header was refused";
        default:
            return "unknown status";
    }
}

namespace {

uint32_t Le32(const QByteArray& bytes, int at) {
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.constData()) + at;
    return p[0] | p[1] << 8 | p[2] << 16 | (uint32_t)p[3] << 24;
}

// The system's reason for a file's last error.
std::string Reason(const QFile& file) {
    return file.errorString().toLocal8Bit().toStdString();
}

// Reads a file, or standard input for "-"; false with the system's reason when it cannot.
bool ReadInput(const QString& input, QByteArray* bytes, std::string* error) {
    QFile file(input);
    const bool open = input == QLatin1String("-") ? file.open(stdin, QIODevice::ReadOnly)
                                                  : file.open(QIODevice::ReadOnly);
    if (open) *bytes = file.readAll();
    if (open && file.error() == QFileDevice::NoError) return true;
    *error = Reason(file);
    return false;
}

}  // namespace

void Diagnose(const QByteArray& bytes, int status, JobResult* result) {
    const qint64 size = bytes.size();
    const uint32_t kPlaceableKey = 0x9AC6CDD7, kEmfHeaderSize = 88;
    result->detail.clear();
    result->reason = StatusMeaning(status);
    if (status == -1) return;
    if (size == 0) {
        result->reason = "empty file";
    } else if (size >= 44 && bytes.mid(40, 4) == " EMF") {
        // The header's byte count, once the file is long enough to hold it.
        const qint64 declared = size >= 52 ? Le32(bytes, 48) : kEmfHeaderSize;
        if (size < std::max<qint64>(declared, kEmfHeaderSize)) {
            result->reason = "truncated EMF";
            result->detail = "the file has " + std::to_string(size) +
                             " bytes, its header declares " +
                             std::to_string(std::max<qint64>(declared, kEmfHeaderSize));
        } else if (declared != size) {
            result->detail = "the header declares " + std::to_string(declared) +
                             " bytes, the file has " + std::to_string(size);
        }
    } else if (size >= 4 && Le32(bytes, 0) == kPlaceableKey) {
        // A placeable header: a WMF whose own header was refused.
    } else if (size < 18 || ((Le32(bytes, 0) & 0xffff) != 1 && (Le32(bytes, 0) & 0xffff) != 2) ||
               Le32(bytes, 0) >> 16 != 9) {
        result->reason = "not an EMF or WMF file";
    }
}

JobResult ConvertFile(const QString& input, const BatchOptions& options) {
    JobResult result;
    QByteArray bytes;
    if (!ReadInput(input, &bytes, &result.reason)) return result;
    result.inputSize = bytes.size();
    const QByteArray name = input.toLocal8Bit();
    svgmodule_options convert = SVGMODULE_OPTIONS_INIT;
    convert.mode = options.mode;
    convert.repairs = options.exact ? 0 : SVGMODULE_REPAIR_ALL;
    convert.diagnostic_name = name.constData();
    unsigned int notes = 0;
    convert.notes = &notes;
    result.status = svgmodule_convert(bytes, result.svg, &convert);
    result.emfPlusOnly = notes & SVGMODULE_NOTE_EMFPLUS_ONLY;
    if (options.bothModes && (result.status == 1 || result.status == 2)) {
        convert.mode = options.mode == SVGMODULE_MODE_FAITHFUL ? SVGMODULE_MODE_CONTRACT
                                                               : SVGMODULE_MODE_FAITHFUL;
        convert.diagnostic_name = nullptr;  // the file's diagnostics are told once
        convert.notes = nullptr;
        svgmodule_convert(bytes, result.otherSvg, &convert);
    }
    if (result.status != 1 && result.status != 2) {
        result.outcome = JobResult::Refused;
        result.svg.clear();
        Diagnose(bytes, result.status, &result);
        return result;
    }
    result.outcome = JobResult::Converted;
    result.svgSize = result.svg.size();
    return result;
}

namespace {

// Creates a folder and its parents; false with the system's reason when it cannot.
bool MakeFolder(const QString& folder, std::string* error) {
    std::error_code code;
    std::filesystem::create_directories(QFile::encodeName(folder).toStdString(), code);
    if (code && error) *error = code.message();
    return !code;
}

}  // namespace

bool WriteFile(const QString& path, const QByteArray& data, std::string* error) {
    if (!MakeFolder(QFileInfo(path).path(), error)) return false;
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(data) == data.size() &&
        file.flush())
        return true;
    if (error) *error = Reason(file);
    return false;
}

std::string CheckFolder(const QString& folder) {
    std::string error;
    if (!MakeFolder(folder, &error)) return error;
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral(".metafile2svg-XXXXXX")));
    return probe.open() ? std::string() : probe.errorString().toLocal8Bit().toStdString();
}

bool DrawsAnything(const QByteArray& svg) {
    // Elements that render, and those whose content renders only where it is referenced.
    static const QStringList drawing = {"path",     "rect",    "circle", "ellipse", "line",
                                        "polyline", "polygon", "text",   "image",   "use"};
    static const QStringList definitions = {"defs",    "clipPath",       "mask",
                                            "pattern", "marker",         "symbol",
                                            "filter",  "linearGradient", "radialGradient"};
    QXmlStreamReader xml(svg);
    int hidden = 0;  // depth inside definitions
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        const QString name = xml.name().toString();
        if (token == QXmlStreamReader::StartElement) {
            if (definitions.contains(name))
                ++hidden;
            else if (hidden == 0 && drawing.contains(name))
                return true;
        } else if (token == QXmlStreamReader::EndElement && definitions.contains(name)) {
            --hidden;
        }
    }
    return xml.hasError();  // a document that does not parse is for the viewer to judge
}

namespace {

bool IsMetafileName(const QString& path) {
    return path.endsWith(QLatin1String(".emf"), Qt::CaseInsensitive) ||
           path.endsWith(QLatin1String(".wmf"), Qt::CaseInsensitive);
}

// NAME with its last suffix replaced by ".svg", or NAME + ".svg".
QString OutputName(const QString& name, bool keepSuffix) {
    if (keepSuffix) return name + QLatin1String(".svg");
    const QFileInfo info(name);
    const QString stem = info.completeBaseName() + QLatin1String(".svg");
    return info.path() == QLatin1String(".") ? stem : info.path() + QLatin1Char('/') + stem;
}

QString FindCollision(const std::vector<Job>& jobs, std::vector<bool>* shared) {
    QHash<QString, size_t> first;
    QString clash;
    for (size_t i = 0; i < jobs.size(); ++i) {
        auto it = first.constFind(jobs[i].output);
        if (it == first.constEnd()) {
            first.insert(jobs[i].output, i);
            continue;
        }
        (*shared)[i] = (*shared)[*it] = true;
        if (clash.isEmpty())
            clash = jobs[*it].input + QLatin1String(" and ") + jobs[i].input +
                    QLatin1String(" would both write ") + jobs[i].output;
    }
    return clash;
}

// Converts one job and writes its output; the document is kept only when asked for.
JobResult RunJob(const Job& job, const BatchOptions& options) {
    JobResult result;
    try {
        result = ConvertFile(job.input, options);
        if (result.outcome == JobResult::Converted && options.findEmpty)
            result.empty = !DrawsAnything(result.svg);
        if (result.outcome == JobResult::Converted && !job.output.isEmpty() &&
            !WriteFile(job.output, result.svg, &result.reason))
            result.outcome = JobResult::NotWritten;
    } catch (...) {  // out of memory: the file counts as ended by an exception
        result.outcome = JobResult::Refused;
        result.status = -1;
    }
    if (!options.keepSvg) result.svg = QByteArray();
    return result;
}

}  // namespace

QString PlanJobs(const QStringList& inputs, bool recursive, const QString& outputDir,
                 std::vector<Job>* jobs) {
    jobs->clear();
    for (const QString& input : inputs) {
        const QFileInfo info(input);
        if (!info.isDir()) {
            jobs->push_back({input, info.fileName(), QString()});
            continue;
        }
        const QDir folder(info.absoluteFilePath());
        QStringList names;
        QDirIterator it(folder.path(), QDir::Files,
                        recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
        while (it.hasNext()) {
            const QString path = it.next();
            if (IsMetafileName(path)) names << folder.relativeFilePath(path);
        }
        names.sort();
        for (const QString& name : names)
            jobs->push_back({QDir(input).filePath(name), name, QString()});
    }
    if (outputDir.isEmpty()) return QString();

    const QDir out(outputDir);
    std::vector<bool> shared(jobs->size(), false);
    for (int pass = 0; pass < 2; ++pass) {
        for (size_t i = 0; i < jobs->size(); ++i)
            (*jobs)[i].output = out.filePath(OutputName((*jobs)[i].name, shared[i]));
        const QString clash = FindCollision(*jobs, &shared);
        if (clash.isEmpty()) return QString();
        if (pass == 1) return clash;
    }
    return QString();
}

std::vector<JobResult> RunJobs(const std::vector<Job>& jobs, const BatchOptions& options,
                               Console& console) {
    const size_t total = jobs.size();
    std::vector<JobResult> results(total);
    std::vector<bool> done(total, false);
    std::atomic<size_t> next{0};
    std::mutex mutex;
    std::condition_variable changed;
    size_t finished = 0;

    auto work = [&]() {
        for (size_t i; (i = next++) < total;) {
            JobResult result = RunJob(jobs[i], options);
            std::lock_guard<std::mutex> lock(mutex);
            results[i] = std::move(result);
            done[i] = true;
            ++finished;
            changed.notify_one();
        }
    };
    std::vector<std::thread> threads;
    struct Joiner {
        std::vector<std::thread>& threads;
        ~Joiner() {
            for (std::thread& thread : threads) thread.join();
        }
    } joiner{threads};
    const size_t count = std::min(total, (size_t)std::max(1, options.jobs));
    try {
        for (size_t t = 0; t < count; ++t) threads.emplace_back(work);
    } catch (const std::system_error&) {
        if (threads.empty()) work();  // no thread to be had: convert on this one
    }

    size_t reported = 0;
    std::unique_lock<std::mutex> lock(mutex);
    while (reported < total) {
        for (; reported < total && done[reported]; ++reported) {
            const std::string message = FailureMessage(jobs[reported], results[reported]);
            if (!message.empty()) console.Message(message);
        }
        console.Progress(finished, total);
        if (reported < total) changed.wait_for(lock, std::chrono::milliseconds(100));
    }
    return results;
}

std::string FailureMessage(const Job& job, const JobResult& result) {
    const std::string input =
        job.input == QLatin1String("-") ? "standard input" : job.input.toLocal8Bit().toStdString();
    switch (result.outcome) {
        case JobResult::Converted:
            return std::string();
        case JobResult::Refused:
            return "metafile2svg: " + input + ": " + result.reason +
                   (result.detail.empty() ? "" : ": " + result.detail) + " (status " +
                   std::to_string(result.status) + ")";
        case JobResult::Missing:
            return "metafile2svg: cannot read " + input + ": " + result.reason;
        case JobResult::NotWritten:
            break;
    }
    return "metafile2svg: cannot write " + job.output.toLocal8Bit().toStdString() + ": " +
           result.reason;
}

std::string Summary(const std::vector<JobResult>& results, double seconds) {
    size_t converted = 0, missing = 0, unwritten = 0, emfPlusOnly = 0;
    std::map<std::pair<int, std::string>, size_t> refused;
    for (const JobResult& r : results) {
        if (r.outcome == JobResult::Converted) ++converted;
        if (r.outcome == JobResult::Converted && r.emfPlusOnly) ++emfPlusOnly;
        if (r.outcome == JobResult::Refused) ++refused[{r.status, r.reason}];
        if (r.outcome == JobResult::Missing) ++missing;
        if (r.outcome == JobResult::NotWritten) ++unwritten;
    }
    char head[160];
    std::snprintf(head, sizeof head, "%zu file%s in %.1f s: %zu converted", results.size(),
                  results.size() == 1 ? "" : "s", seconds, converted);
    std::string text = head;
    if (emfPlusOnly)
        text += "\n  " + std::to_string(emfPlusOnly) + " drawn from EMF+ records only: not drawn";
    for (auto it = refused.rbegin(); it != refused.rend(); ++it)
        text += "\n  " + std::to_string(it->second) + " refused with status " +
                std::to_string(it->first.first) + ": " + it->first.second;
    if (missing) text += "\n  " + std::to_string(missing) + " could not be read";
    if (unwritten) text += "\n  " + std::to_string(unwritten) + " converted but not written";
    return text;
}
