// metafile2svg: converts EMF and WMF files to SVG with libsvgmodule, one file or many.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFileInfo>
#include <QString>
#include <cstdio>
#include <exception>
#include <thread>

#include "Batch.h"
#include "Console.h"
#include "Gallery.h"
#include "svgmodule.h"

namespace {

const char kDescription[] =
    "Converts Windows metafiles (EMF, or WMF with or without the placeable header) to SVG 1.1\n"
    "documents. One input (- for standard input) is written to standard output, or to FILE\n"
    "with -o; several inputs and folders are converted in parallel into DIR with -O.";

const char kEpilogue[] =
    "\n--faithful (the default) draws what the system that recorded the file would have drawn\n"
    "(in development); --contract writes the library's stable output, the same in every\n"
    "release. Neither draws EMF+ records: a file drawn in them only is counted apart in the\n"
    "summary and marked in the gallery.\n"
    "\n"
    "By default the documents are adjusted to open in every SVG client: the root element\n"
    "declares the xlink namespace, an element that carries an attribute twice keeps only\n"
    "the last, and characters XML does not allow become U+FFFD. --exact writes the\n"
    "library's output unchanged.\n"
    "\n"
    "Environment: LIBLOGGING_LEVEL=TRACE|INFO|WARN|FATAL|OFF sets the diagnostic level.\n"
    "Exit status: 0 when every file converted, 1 when one did not, 2 for a usage error.\n";

const int kMaxJobs = 256;

struct Options {
    QStringList inputs;
    QString output, outputDir, gallery, recordLog;
    bool recursive = false, exact = false, haveRecordLog = false, bothModes = false;
    int jobs = 1;
    int mode = SVGMODULE_MODE_FAITHFUL;
};

int UsageError(const QCommandLineParser&, QString message) {
    if (message.endsWith(QLatin1Char('.'))) message.chop(1);  // Qt's own messages end in one
    std::fprintf(stderr, "metafile2svg: %s; try 'metafile2svg --help'\n",
                 message.toLocal8Bit().constData());
    return 2;
}

int ConvertOne(const Options& options) {
    const Job job{options.inputs.first(), QString(), options.output};
    BatchOptions settings;
    settings.mode = options.mode;
    settings.exact = options.exact;
    const JobResult result = ConvertFile(job.input, settings);
    std::string message = FailureMessage(job, result);
    if (message.empty() && (options.output.isEmpty() || options.output == QLatin1String("-"))) {
        std::fwrite(result.svg.constData(), 1, (size_t)result.svg.size(), stdout);
        if (std::fflush(stdout) == 0) return 0;
        message = "metafile2svg: cannot write to standard output";
    } else if (message.empty()) {
        JobResult unwritten;
        if (WriteFile(options.output, result.svg, &unwritten.reason)) return 0;
        unwritten.outcome = JobResult::NotWritten;
        message = FailureMessage(job, unwritten);
    }
    std::fprintf(stderr, "%s\n", message.c_str());
    return 1;
}

int ConvertMany(const QCommandLineParser& parser, const Options& options) {
    std::vector<Job> jobs;
    const QString clash = PlanJobs(options.inputs, options.recursive, options.outputDir, &jobs);
    if (!clash.isEmpty()) return UsageError(parser, clash);
    if (jobs.empty()) {
        std::fprintf(stderr, "metafile2svg: no .emf or .wmf file in the folders given\n");
        return 1;
    }
    // A folder that cannot be written stops the run before anything is converted.
    QStringList folders;
    if (!options.outputDir.isEmpty()) folders << options.outputDir;
    if (!options.gallery.isEmpty()) folders << QFileInfo(options.gallery).path();
    for (const QString& folder : folders) {
        const std::string error = CheckFolder(folder);
        if (error.empty()) continue;
        std::fprintf(stderr, "metafile2svg: cannot write %s: %s\n",
                     folder.toLocal8Bit().constData(), error.c_str());
        return 1;
    }
    BatchOptions batch;
    batch.jobs = options.jobs;
    batch.mode = options.mode;
    batch.exact = options.exact;
    batch.keepSvg = !options.gallery.isEmpty() && options.outputDir.isEmpty();
    batch.findEmpty = !options.gallery.isEmpty();
    batch.bothModes = options.bothModes;
    Console console(true);
    const std::vector<JobResult> results = RunJobs(jobs, batch, console);
    console.Finish();
    const std::string summary = Summary(results, console.Seconds());
    bool ok = true;
    for (const JobResult& r : results) ok = ok && r.outcome == JobResult::Converted;
    std::fprintf(stderr, "metafile2svg: %s\n", summary.c_str());
    if (!options.gallery.isEmpty()) {
        const QByteArray page = options.gallery.toLocal8Bit();
        std::string error;
        if (WriteGallery(options.gallery, jobs, results, summary, &error, options.mode)) {
            std::fprintf(stderr, "metafile2svg: gallery written to %s\n", page.constData());
        } else {
            std::fprintf(stderr, "metafile2svg: cannot write %s: %s\n", page.constData(),
                         error.c_str());
            ok = false;
        }
    }
    return ok ? 0 : 1;
}

int Run(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(kDescription));
    parser.addPositionalArgument(QStringLiteral("INPUT"),
                                 QStringLiteral("EMF or WMF files, or folders holding them."),
                                 QStringLiteral("INPUT..."));
    const QCommandLineOption help({"h", "help"}, "Show this help.");
    const QCommandLineOption version("version", "Show the version.");
    const QCommandLineOption output({"o", "output"},
                                    "Write the SVG of the one INPUT to FILE (default, or -: "
                                    "standard output).",
                                    "FILE");
    const QCommandLineOption outputDir({"O", "output-dir"},
                                       "Write each SVG under DIR: a file as its name with .svg "
                                       "for its suffix, a folder's files by their path inside it.",
                                       "DIR");
    const QCommandLineOption recursive({"r", "recursive"}, "Descend into subfolders of folders.");
    const QCommandLineOption jobs({"j", "jobs"},
                                  "Convert on N threads (default: the number of cores).", "N");
    const QCommandLineOption exact("exact", "Write the library's bytes unchanged.");
    const QCommandLineOption contract("contract",
                                      "Convert in the contract mode: the library's stable "
                                      "output.");
    const QCommandLineOption faithful("faithful",
                                      "Convert in the faithful mode: what the recording system "
                                      "would have drawn (the default; in development).");
    const QCommandLineOption gallery("gallery",
                                     "Also write an HTML page showing every drawing with its "
                                     "file name, size and status.",
                                     "PAGE");
    const QCommandLineOption bothModes("both-modes",
                                       "Show each drawing in the gallery beside the drawing of "
                                       "the other mode.");
    const QCommandLineOption recordLog("record-log",
                                       "Append the names of records without a handler to FILE "
                                       "(an empty FILE names the log after today's date); "
                                       "files are then converted one at a time.",
                                       "FILE");
    parser.addOptions({help, version, output, outputDir, recursive, jobs, exact, contract, faithful,
                       gallery, bothModes, recordLog});
    if (!parser.parse(QCoreApplication::arguments())) return UsageError(parser, parser.errorText());
    if (parser.isSet(help)) {
        std::printf("%s%s", parser.helpText().toLocal8Bit().constData(), kEpilogue);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("metafile2svg (libsvgmodule) 1.0.0\n");
        return 0;
    }

    Options o;
    o.inputs = parser.positionalArguments();
    o.output = parser.value(output);
    o.outputDir = parser.value(outputDir);
    o.gallery = parser.value(gallery);
    o.recursive = parser.isSet(recursive);
    o.exact = parser.isSet(exact);
    if (parser.isSet(contract) && parser.isSet(faithful))
        return UsageError(parser, QStringLiteral("--contract and --faithful exclude each other"));
    if (parser.isSet(contract)) o.mode = SVGMODULE_MODE_CONTRACT;
    o.bothModes = parser.isSet(bothModes);
    o.haveRecordLog = parser.isSet(recordLog);
    o.recordLog = parser.value(recordLog);
    o.jobs = (int)std::max(1u, std::thread::hardware_concurrency());
    if (parser.isSet(jobs)) {
        bool number = false;
        o.jobs = parser.value(jobs).toInt(&number);
        if (!number || o.jobs < 1 || o.jobs > kMaxJobs)
            return UsageError(parser,
                              QStringLiteral("-j takes a number from 1 to %1").arg(kMaxJobs));
    }
    // The record log is one file shared by every conversion: one file at a time keeps each
    // file's entries together and in input order.
    if (o.haveRecordLog) o.jobs = 1;

    if (o.inputs.isEmpty()) return UsageError(parser, QStringLiteral("no input file"));
    if (parser.isSet(outputDir) && o.outputDir.isEmpty())
        return UsageError(parser, QStringLiteral("-O needs a folder name"));
    if (parser.isSet(gallery) && o.gallery.isEmpty())
        return UsageError(parser, QStringLiteral("--gallery needs a file name"));
    if (o.bothModes && !parser.isSet(gallery))
        return UsageError(parser, QStringLiteral("--both-modes needs --gallery"));
    const bool many = parser.isSet(outputDir) || parser.isSet(gallery) || o.inputs.size() > 1 ||
                      QFileInfo(o.inputs.first()).isDir();
    if (many && parser.isSet(output))
        return UsageError(parser, QStringLiteral("-o takes one input file; use -O DIR for more"));
    if (many && !parser.isSet(outputDir) && !parser.isSet(gallery))
        return UsageError(parser, QStringLiteral("several inputs or a folder need -O DIR"));
    if (many && o.inputs.contains(QStringLiteral("-")))
        return UsageError(parser, QStringLiteral("standard input (-) is converted alone"));

    if (o.haveRecordLog) EnableLogging(true, o.recordLog);
    const int status = many ? ConvertMany(parser, o) : ConvertOne(o);
    if (o.haveRecordLog) EnableLogging(false, QString());
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "metafile2svg: %s\n", e.what());
    } catch (...) {
        std::fprintf(stderr, "metafile2svg: internal error\n");
    }
    return 1;
}
