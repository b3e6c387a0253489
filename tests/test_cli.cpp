// The command line: its SVG repair, its progress line, and the program run as a user runs it.
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "svg/SvgRepair.h"
#include "svgmodule.h"
#include "tests/TestUtil.h"
#include "tools/Console.h"

namespace {

const char kXlink[] = "xmlns:xlink=\"http://www.w3.org/1999/xlink\"";

// Every repair, and each flag alone (it changes what it names and nothing else).
TEST(SvgRepair, DeclaresXlinkKeepsTheLastOfRepeatedAttributesAndReplacesForbiddenCharacters) {
    const std::string x = kXlink, in = "<svg a=\"1\" a=\"2\">\x01</svg>";
    const struct {
        std::string in, out;
        unsigned repairs = SVGMODULE_REPAIR_ALL;
    } cases[] = {
        {in, in, 0},
        {in, "<svg " + x + " a=\"1\" a=\"2\">\x01</svg>", SVGMODULE_REPAIR_XLINK},
        {in, "<svg a=\"2\">\x01</svg>", SVGMODULE_REPAIR_REPEATED_ATTRIBUTES},
        {in, "<svg a=\"1\" a=\"2\">\xEF\xBF\xBD</svg>", SVGMODULE_REPAIR_FORBIDDEN_CHARACTERS},
        {in, "<svg " + x + " a=\"2\">\xEF\xBF\xBD</svg>"},
        {"<?xml version=\"1.0\"?> <svg width=\"1\" >\n</svg>\n",
         "<?xml version=\"1.0\"?> <svg " + x + " width=\"1\" >\n</svg>\n"},
        {"<svg>", "<svg " + x + ">"},
        {"<svg " + x + "/>", "<svg " + x + "/>"},
        {"<svg><svg/></svg>", "<svg " + x + "><svg/></svg>"},  // the root only
        {"<g/><svg/>", "<g/><svg/>"},
        {"<svg xmlns:xlink='other'/>", "<svg xmlns:xlink='other'/>"},
        // Repeated attributes: every earlier one goes with the white space before it.
        {"<g><path d=\"M1\"  stroke=\"black\"  stroke=\"none\" w=\"0\" />",
         "<g><path d=\"M1\"  stroke=\"none\" w=\"0\" />"},
        {"<g a=\"1\"\n a=\"2\" b='3' a=\"4\"/>", "<g b='3' a=\"4\"/>"},
        {"<g a = \"1\" a=2 A=\"3\">", "<g a=2 A=\"3\">"},
        {"<g t=\"x>y a=1\" u='say \"t=2\"' t=\"2\">", "<g u='say \"t=2\"' t=\"2\">"},
        // Markup that is not a start tag passes unchanged.
        {"<g><!-- <svg a=\"1\" a=\"2\"> --><![CDATA[<g a=\"1\" a=\"2\">]]>"
         "<?pi a=\"1\" a=\"2\"?>a < b a=\"1\" a=\"2\"</g a=\"1\" a=\"2\">",
         "<g><!-- <svg a=\"1\" a=\"2\"> --><![CDATA[<g a=\"1\" a=\"2\">]]>"
         "<?pi a=\"1\" a=\"2\"?>a < b a=\"1\" a=\"2\"</g a=\"1\" a=\"2\">"},
        {"<!DOCTYPE svg [ <!ENTITY e \"<g>\"> ]><svg a=\"1\" a=\"2\">",
         "<!DOCTYPE svg [ <!ENTITY e \"<g>\"> ]><svg " + x + " a=\"2\">"},
        // A tag left open is left alone.
        {"<svg a=\"1\" a=\"2", "<svg a=\"1\" a=\"2"},
        {"<g><h a=\"1\" a=\"2\" <!-- -->", "<g><h a=\"1\" a=\"2\" <!-- -->"},
        {"", ""},
        // Characters XML does not allow, in text or values, become U+FFFD; tab, line feed and
        // carriage return stay.
        {std::string("<g a=\"\x01\">\t\x00\x1f\n\r\xef\xbf\xbe\xef\xbf\xbf\xef\xbf\xbd", 23),
         "<g a=\"\xef\xbf\xbd\">\t\xef\xbf\xbd\xef\xbf\xbd\n\r\xef\xbf\xbd\xef\xbf\xbd"
         "\xef\xbf\xbd"},
    };
    for (const auto& c : cases) {
        const QByteArray in = QByteArray::fromStdString(c.in);
        EXPECT_EQ(RepairSvg(in, c.repairs).toStdString(), c.out) << c.in << c.repairs;
    }
}

TEST(Console, ProgressLineFitsAndEstimates) {
    EXPECT_EQ(ProgressLine(0, 10, 0, 80),
              "[........................................] 0/10   0%  0.0 files/s  -:-- left");
    EXPECT_EQ(ProgressLine(5, 10, 10, 80),
              "[####################....................] 5/10  50%  0.5 files/s  0:10 left");
    EXPECT_EQ(ProgressLine(1, 4000, 1, 40).size(), 40u);
    EXPECT_NE(ProgressLine(1, 4000, 1, 200).find("1:06:39 left"), std::string::npos);
}

struct CliRun {
    int exitCode;
    QString out, err;
};

CliRun Cli(const QStringList& args, const QString& folder = QString(),
           const QByteArray& input = QByteArray()) {
    QProcess process;
    if (!folder.isEmpty()) process.setWorkingDirectory(folder);
    process.start(QStringLiteral(SVGMODULE_CLI_PATH), args);
    process.write(input);
    process.closeWriteChannel();
    process.waitForFinished(300000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

// The files under `folder`, relative to it, sorted.
QStringList FilesUnder(const QString& folder) {
    QStringList names;
    QDirIterator it(folder, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) names << QDir(folder).relativeFilePath(it.next());
    names.sort();
    return names;
}

QByteArray Read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// What the library's faithful mode makes of a file, repaired unless `exact`: empty when it
// does not convert it.
QByteArray Faithful(const QString& path, bool exact) {
    svgmodule_options options = SVGMODULE_OPTIONS_INIT;
    options.mode = SVGMODULE_MODE_FAITHFUL;
    options.repairs = exact ? 0 : SVGMODULE_REPAIR_ALL;
    QByteArray svg;
    const int status = svgmodule_convert(Read(path), svg, &options);
    return status == 1 || status == 2 ? svg : QByteArray();
}

bool Write(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// An EMF whose only drawing would be EMF+ records: an EMF+ header comment, dual flag clear.
QByteArray EmfPlusOnly() {
    return mfb::Emf()
        .record(70, mfb::U32s({32, 0x2B464D45, 0x4001, 28, 16, 0xDBC01002, 0, 96, 96}))
        .build();
}

class CommandLine : public ::testing::Test {
  protected:
    void SetUp() override {
        const QString examples = QStringLiteral(SVGMODULE_SOURCE_DIR "/examples/");
        QDir().mkpath(In(QStringLiteral("sub")));
        QFile::copy(examples + "example.emf", In(QStringLiteral("a.emf")));
        QFile::copy(examples + "example.wmf", In(QStringLiteral("a.wmf")));
        QFile::copy(examples + "example.wmf", In(QStringLiteral("sub/b.WMF")));
        ASSERT_TRUE(Write(In(QStringLiteral("sub/junk.emf")), QByteArray(40, 'x')));
        QFile::copy(examples + "example.emf", In(QStringLiteral("sub/notes.txt")));
        ASSERT_TRUE(Write(m_dir.filePath("cut.emf"), Read(examples + "example.emf").chopped(4)));
    }
    QString In(const QString& name) const { return m_dir.filePath("in/" + name); }
    QTemporaryDir m_dir;
};

// Usage errors, files that do not convert or cannot be read or written, and standard input
// and output: each gives its message.
TEST_F(CommandLine, MessagesAndSingleFile) {
    const QString a = In(QStringLiteral("a.emf")), w = In(QStringLiteral("a.wmf"));
    const QByteArray exact = testutil::Convert(Read(a)).svg.toUtf8();
    const QByteArray faithful = Faithful(a, false), faithfulExact = Faithful(a, true);
    const int faithfulExit = faithful.isEmpty() ? 1 : 0;
    const QString none = In(QStringLiteral("none.emf")), cut = In(QStringLiteral("cut.emf"));
    ASSERT_TRUE(Write(cut, Read(a).left(1000)));
    const QString plus = In(QStringLiteral("plus.emf"));
    ASSERT_TRUE(Write(plus, EmfPlusOnly()));
    const QString help = QStringLiteral("; try 'metafile2svg --help'\n");
    const struct {
        QStringList args;
        int exitCode;
        QString out, err;  // parts of standard output and error (ending in "\n": its end)
        QByteArray input = QByteArray();  // standard input
    } cases[] = {
        {{"--version"}, 0, "metafile2svg (libsvgmodule) 1.0.0\n", ""},
        {{"--help"}, 0, "--gallery <PAGE>", ""},
        {{}, 2, "", "metafile2svg: no input file" + help},
        {{"--bogus", a}, 2, "", "metafile2svg: Unknown option 'bogus'" + help},
        {{"-j", "0", a}, 2, "", "metafile2svg: -j takes a number from 1 to 256" + help},
        {{a, a}, 2, "", "several inputs or a folder need -O DIR" + help},
        {{In("sub")}, 2, "", "several inputs or a folder need -O DIR"},
        {{"-o", "x.svg", "-O", "out", a}, 2, "", "-o takes one input file"},
        {{"-O", "out", a, "a.emf"}, 2, "", "would both write"},
        {{"-O", "out", "-"}, 2, "", "standard input (-) is converted alone" + help},
        {{none}, 1, "", "metafile2svg: cannot read " + none + ": No such file or directory\n"},
        {{In("sub/junk.emf")}, 1, "", "junk.emf: not an EMF or WMF file (status -3)\n"},
        {{"--contract", cut},
         1,
         "",
         "cut.emf: truncated EMF: the file has 1000 bytes, its header declares 3248"},
        {{cut}, 0, "", "truncated EMF: the file has 1000 bytes, its header declares 3248: drawn"},
        // A file in place of a folder: the batch stops before converting anything.
        {{"-o", w + "/a.svg", a}, 1, "", "cannot write " + w + "/a.svg: Not a directory\n"},
        {{"-O", w + "/o", In("")}, 1, "", "cannot write " + w + "/o: Not a directory\n"},
        {{"-o", m_dir.path(), a}, 1, "", "cannot write " + m_dir.path() + ": Is a directory\n"},
        {{a}, faithfulExit, QString::fromUtf8(faithful), ""},  // the faithful mode by default
        {{"--exact", a}, faithfulExit, QString::fromUtf8(faithfulExact), ""},
        {{"--contract", a}, 0, QString::fromUtf8(RepairSvg(exact)), ""},
        {{"--exact", "--contract", a}, 0, QString::fromUtf8(exact), ""},
        {{"--faithful", a}, faithfulExit, QString::fromUtf8(faithful), ""},
        {{"--faithful", "--exact", a}, faithfulExit, QString::fromUtf8(faithfulExact), ""},
        {{"--contract", "--faithful", a}, 2, "", "--contract and --faithful exclude each other"},
        // The library's diagnostics name the input.
        {{"--contract", "cut.emf"}, 1, "", "WARN cut.emf: SVGTool\t"},
        {{plus}, 0, "", "drawn from EMF+ records only: not drawn"},
        {{"--contract", "--exact", "-", "-o", "-"}, 0, QString::fromUtf8(exact), "", Read(a)},
        {{"-"}, 1, "", "standard input: not an EMF or WMF file (status 0)\n", "text"},
    };
    for (const auto& c : cases) {
        const CliRun run = Cli(c.args, m_dir.path(), c.input);
        const std::string args = c.args.join(' ').toStdString();
        EXPECT_EQ(run.exitCode, c.exitCode) << args << "\n" << run.err.toStdString();
        EXPECT_TRUE(run.out.contains(c.out)) << args;
        EXPECT_TRUE(c.err.endsWith('\n') ? run.err.endsWith(c.err) : run.err.contains(c.err))
            << args << "\n"
            << run.err.toStdString();
    }
    EXPECT_NE(exact.indexOf("<svg width"), -1);
    EXPECT_EQ(Cli({"--contract", "-o", m_dir.filePath("one/a.svg"), a}).exitCode, 0);
    EXPECT_EQ(Read(m_dir.filePath("one/a.svg")), RepairSvg(exact));
}

TEST_F(CommandLine, FoldersNamesSummaryAndGallery) {
    const QString out = m_dir.filePath(QStringLiteral("out"));
    // The faithful mode writes what the library's faithful mode converts.
    QStringList faithfulWritten;
    for (const char* name : {"a.emf", "a.wmf"})
        if (!Faithful(In(name), true).isEmpty()) faithfulWritten << QString(name) + ".svg";
    const int faithfulExit = faithfulWritten.size() == 2 ? 0 : 1;
    const struct {
        QStringList args;
        int exitCode;
        QStringList written;
        QString err;
    } cases[] = {
        {{"-O", out, In("")}, 0, {"a.emf.svg", "a.wmf.svg"}, "2 files in"},
        {{"-O", out, "-j", "3", "-r", In("")},
         1,
         {"a.emf.svg", "a.wmf.svg", "sub/b.svg"},
         "4 files in %1 s: 3 converted\n  1 refused with status -3: not an EMF or WMF file"},
        {{"-O", out, In("a.emf"), In("sub/b.WMF"), In("none.wmf"), "--record-log", "log.txt",
          "--contract"},
         1,
         {"a.svg", "b.svg"},
         "3 files in %1 s: 2 converted\n  1 could not be read"},
        {{"-O", out, "-j", "2", "--faithful", "--exact", "--gallery", "page.html", In("a.emf"),
          In("a.wmf")},
         faithfulExit,
         faithfulWritten,
         "2 files in"},
    };
    for (const auto& c : cases) {
        QDir(out).removeRecursively();
        const CliRun run = Cli(c.args, m_dir.path());
        const std::string args = c.args.join(' ').toStdString();
        EXPECT_EQ(run.exitCode, c.exitCode) << args << "\n" << run.err.toStdString();
        EXPECT_EQ(FilesUnder(out), c.written) << args;
        QString err = run.err;
        err.replace(QRegularExpression("in [0-9.]+ s"), "in %1 s");
        EXPECT_TRUE(err.contains(c.err)) << args << "\n" << run.err.toStdString();
        for (const QString& name : FilesUnder(out))
            if (c.args.contains("--faithful"))
                EXPECT_EQ(Read(out + "/" + name), Faithful(In(name.chopped(4)), true)) << args;
    }
    EXPECT_EQ(Read(m_dir.filePath(QStringLiteral("page.html"))).count("<figure"), 2);
    // With the record log, files convert one at a time in input order: the EMF, then the WMF.
    const QByteArray log = Read(m_dir.filePath(QStringLiteral("log.txt")));
    EXPECT_GE(log.indexOf("End of File ####"), 0);
    EXPECT_GT(log.indexOf("#Start Of File\n"), log.indexOf("End of File ####"));

    // The page links the written files, or embeds the drawings when nothing is written.
    const QString page = m_dir.filePath(QStringLiteral("page.html"));
    EXPECT_EQ(Cli({"-O", out, "--gallery", page, "-r", In("")}).exitCode, 1);
    const QByteArray linked = Read(page);
    EXPECT_TRUE(linked.contains("href=\"out/sub/b.svg\"><img")) << linked.left(3000).constData();
    EXPECT_TRUE(
        linked.contains("<b>sub/junk.emf</b><br>40 B<br><span class=\"status\">refused, "
                        "status -3"));
    // A drawing of nothing is marked empty, one of EMF+ records only apart; both modes side by
    // side.
    const QString empty = m_dir.filePath(QStringLiteral("empty.emf")),
                  plus = m_dir.filePath(QStringLiteral("plus.emf"));
    ASSERT_TRUE(Write(empty, mfb::Emf().build()) && Write(plus, EmfPlusOnly()));
    const CliRun both = Cli({"--gallery", page, "--both-modes", In("a.emf"), empty, plus});
    EXPECT_EQ(both.exitCode, 0);
    EXPECT_TRUE(both.err.contains("3 converted\n  1 drawn from EMF+ records only: not drawn\n"));
    const QByteArray embedded = Read(page);
    const QByteArray svg = RepairSvg(testutil::Convert(Read(In("a.emf"))).svg.toUtf8());
    for (const QByteArray& drawing : {svg, Faithful(In("a.emf"), false)})
        EXPECT_TRUE(embedded.contains("src=\"data:image/svg+xml;base64," + drawing.toBase64()));
    EXPECT_EQ(embedded.count("<figure class=\"empty both\">"), 1);
    EXPECT_EQ(embedded.count("<figure class=\"emfplus both\">"), 1);
    EXPECT_EQ(Cli({"--both-modes", "-O", out, plus}).exitCode, 2);
}

}  // namespace
