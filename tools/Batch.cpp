#include "Batch.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <algorithm>
#include <atomic>
#include <condition_variable>
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
            return "the WMF header was refused (not a metafile)";
        default:
            return "unknown status";
    }
}

JobResult ConvertFile(const QString& input, const BatchOptions& options) {
    JobResult result;
    const QFileInfo info(input);
    if (!info.isFile()) return result;
    result.inputSize = info.size();
    QFile file(input);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const QByteArray name = input.toLocal8Bit();
    svgmodule_options convert = SVGMODULE_OPTIONS_INIT;
    convert.mode = options.mode;
    convert.repairs = options.exact ? 0 : SVGMODULE_REPAIR_ALL;
    convert.diagnostic_name = name.constData();
    result.status = svgmodule_convert(bytes, result.svg, &convert);
    if (result.status != 1 && result.status != 2) {
        result.outcome = JobResult::Refused;
        result.svg.clear();
        return result;
    }
    result.outcome = JobResult::Converted;
    result.svgSize = result.svg.size();
    return result;
}

bool WriteFile(const QString& path, const QByteArray& data) {
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder)) return false;
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(data) == data.size() && file.flush();
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
        if (result.outcome == JobResult::Converted && !job.output.isEmpty() &&
            !WriteFile(job.output, result.svg))
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
    const std::string input = job.input.toLocal8Bit().toStdString();
    switch (result.outcome) {
        case JobResult::Converted:
            return std::string();
        case JobResult::Refused:
            return "metafile2svg: " + input + ": status " + std::to_string(result.status) + ": " +
                   StatusMeaning(result.status);
        case JobResult::Missing:
            return "metafile2svg: " + input + ": no such file";
        case JobResult::NotWritten:
            break;
    }
    return "metafile2svg: cannot write " + job.output.toLocal8Bit().toStdString();
}

std::string Summary(const std::vector<JobResult>& results, double seconds) {
    size_t converted = 0, missing = 0, unwritten = 0;
    std::map<int, size_t> refused;
    for (const JobResult& r : results) {
        if (r.outcome == JobResult::Converted) ++converted;
        if (r.outcome == JobResult::Refused) ++refused[r.status];
        if (r.outcome == JobResult::Missing) ++missing;
        if (r.outcome == JobResult::NotWritten) ++unwritten;
    }
    char head[160];
    std::snprintf(head, sizeof head, "%zu file%s in %.1f s: %zu converted", results.size(),
                  results.size() == 1 ? "" : "s", seconds, converted);
    std::string text = head;
    for (auto it = refused.rbegin(); it != refused.rend(); ++it)
        text += "\n  " + std::to_string(it->second) + " refused with status " +
                std::to_string(it->first) + ": " + StatusMeaning(it->first);
    if (missing) text += "\n  " + std::to_string(missing) + " not found";
    if (unwritten) text += "\n  " + std::to_string(unwritten) + " converted but not written";
    return text;
}
