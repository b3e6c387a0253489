// The command line's conversion work: planning output names, converting files on several
// threads, and the summary of a run.
#ifndef SVGMODULE_TOOLS_BATCH_H
#define SVGMODULE_TOOLS_BATCH_H

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <string>
#include <vector>

#include "svgmodule.h"

class Console;

// One file to convert: where it is, the name it is shown under, where its SVG goes (empty:
// nowhere).
struct Job {
    QString input;
    QString name;
    QString output;
};

struct JobResult {
    enum Outcome { Converted, Refused, Missing, NotWritten };
    Outcome outcome = Missing;
    int status = 0;  // the library's status
    qint64 inputSize = 0;
    qint64 svgSize = 0;
    QByteArray svg;  // kept only when asked for
};

struct BatchOptions {
    int jobs = 1;                        // threads
    int mode = SVGMODULE_MODE_CONTRACT;  // the library's mode
    bool exact = false;                  // write the library's bytes unchanged
    bool keepSvg = false;                // keep each document in its result
};

// What a library status means, in a few words.
const char* StatusMeaning(int status);

// Reads and converts one file in `options.mode`, with the library's client repairs unless
// `options.exact`; the library's diagnostic lines name the input. The document is in the
// result.
JobResult ConvertFile(const QString& input, const BatchOptions& options);

// Writes `data` to `path`, creating its folder; false when it could not.
bool WriteFile(const QString& path, const QByteArray& data);

// Expands the inputs into jobs. A folder contributes its .emf and .wmf files (any case), and
// with `recursive` those of its subfolders, named by their path inside it; a file is named by
// its file name. With an output folder, each job writes NAME with its suffix replaced by
// ".svg" under it; when two inputs would share an output, each of them keeps its suffix and
// gains ".svg". Returns an error message, or an empty string.
QString PlanJobs(const QStringList& inputs, bool recursive, const QString& outputDir,
                 std::vector<Job>* jobs);

// Converts every job on `options.jobs` threads, writing each result to its output. Reports
// each file that did not convert through `console`, in input order, and keeps its progress
// bar up to date.
std::vector<JobResult> RunJobs(const std::vector<Job>& jobs, const BatchOptions& options,
                               Console& console);

// The message for a file that did not convert (empty when it did).
std::string FailureMessage(const Job& job, const JobResult& result);

// The closing summary: files, time, converted, and the others counted by reason.
std::string Summary(const std::vector<JobResult>& results, double seconds);

#endif
