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
    // Why it did not convert or was not written: the kind of refusal (files of one kind are
    // counted together), or the system's reason a file could not be read or written ...
    std::string reason;
    // ... and this file's particulars, if any (a truncated file's sizes).
    std::string detail;
    bool empty = false;        // converted, but nothing is drawn (BatchOptions::findEmpty)
    bool emfPlusOnly = false;  // an EMF drawn in EMF+ records only (SVGMODULE_NOTE_EMFPLUS_ONLY)
    qint64 inputSize = 0;
    qint64 svgSize = 0;
    QByteArray svg;       // kept only when asked for
    QByteArray otherSvg;  // BatchOptions::bothModes: the document of the other mode
};

struct BatchOptions {
    int jobs = 1;                        // threads
    int mode = SVGMODULE_MODE_CONTRACT;  // the library's mode
    bool exact = false;                  // write the library's bytes unchanged
    bool keepSvg = false;                // keep each document in its result
    bool findEmpty = false;              // tell the documents that draw nothing
    bool bothModes = false;              // also convert in the other mode, into otherSvg
};

// What a library status means, in a few words.
const char* StatusMeaning(int status);

// Why the library refused `bytes` with `status`, told from the file's header: sets the
// result's reason ("not an EMF or WMF file", "truncated EMF", ...) and detail.
void Diagnose(const QByteArray& bytes, int status, JobResult* result);

// Reads (standard input for "-") and converts one file in `options.mode`, with the library's
// client repairs unless `options.exact`; the library's diagnostic lines name the input. The
// document is in the result.
JobResult ConvertFile(const QString& input, const BatchOptions& options);

// Writes `data` to `path`, creating its folder; false, with the system's reason in `error`,
// when it could not.
bool WriteFile(const QString& path, const QByteArray& data, std::string* error = nullptr);

// Creates `folder` when missing and checks that a file can be written in it: the system's
// reason when not, else an empty string.
std::string CheckFolder(const QString& folder);

// Whether an SVG document draws anything: an element that renders, outside definitions.
bool DrawsAnything(const QByteArray& svg);

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

// The closing summary: files, time, converted (those drawn in EMF+ records only counted apart),
// and the others counted by reason.
std::string Summary(const std::vector<JobResult>& results, double seconds);

#endif
