#include "Gallery.h"

#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace {

const char kHead[] = R"(<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>metafile2svg gallery</title>
<style>
body { font: 14px sans-serif; margin: 1em; background: #eee; }
main { display: grid; grid-template-columns: repeat(auto-fill, minmax(260px, 1fr)); gap: 12px; }
figure { margin: 0; padding: 8px; background: #fff; border: 2px solid #ccc; }
figure.broken { border-color: #c00; }
figure.refused { background: #f6f6f6; }
.view { height: 220px; display: flex; align-items: center; justify-content: center;
        background: repeating-conic-gradient(#f4f4f4 0 25%, #fff 0 50%) 0 0 / 16px 16px; }
.view img { max-width: 100%; max-height: 100%; }
figcaption { margin-top: 6px; overflow-wrap: anywhere; }
figure.broken figcaption::after { content: " \2014 does not display"; color: #c00; }
.status { color: #555; }
</style>
<script>
function settled(img, shown) {
  img.closest('figure').classList.add(shown ? 'shown' : 'broken');
  var n = function (s) { return document.querySelectorAll('figure.' + s).length; };
  document.getElementById('tally').textContent =
      n('shown') + ' displayed, ' + n('broken') + ' failed to display';
}
</script>
</head><body>
)";

QString Size(qint64 bytes) {
    if (bytes < 1024) return QString::number(bytes) + QLatin1String(" B");
    if (bytes < 1024 * 1024) return QString::number(bytes / 1024.0, 'f', 1) + QLatin1String(" KiB");
    return QString::number(bytes / (1024.0 * 1024.0), 'f', 1) + QLatin1String(" MiB");
}

QString ImageSource(const QDir& pageDir, const Job& job, const JobResult& result) {
    if (!job.output.isEmpty()) {
        const QString relative = pageDir.relativeFilePath(QFileInfo(job.output).absoluteFilePath());
        return QString::fromLatin1(QUrl::toPercentEncoding(relative, "/"));
    }
    return QLatin1String("data:image/svg+xml;base64,") + QString::fromLatin1(result.svg.toBase64());
}

QString Card(const QDir& pageDir, const Job& job, const JobResult& result) {
    QString image, sizes = Size(result.inputSize), status;
    switch (result.outcome) {
        case JobResult::Converted:
            image = QLatin1String(
                        "<img alt=\"\" onload=\"settled(this, true)\" "
                        "onerror=\"settled(this, false)\" src=\"") +
                    ImageSource(pageDir, job, result) + QLatin1String("\">");
            sizes += QString::fromUtf8(" \u2192 ") + Size(result.svgSize) + QLatin1String(" SVG");
            status = QString::fromLatin1(StatusMeaning(result.status));
            break;
        case JobResult::Refused:
            status = QLatin1String("refused, status ") + QString::number(result.status) +
                     QLatin1String(": ") + QString::fromLatin1(StatusMeaning(result.status));
            break;
        case JobResult::Missing:
            status = QLatin1String("not found");
            break;
        case JobResult::NotWritten:
            status = QLatin1String("converted, but the SVG could not be written");
            break;
    }
    const bool converted = result.outcome == JobResult::Converted;
    return QLatin1String(converted ? "<figure>" : "<figure class=\"refused\">") +
           QLatin1String("<div class=\"view\">") + image + QLatin1String("</div><figcaption><b>") +
           job.name.toHtmlEscaped() + QLatin1String("</b><br>") + sizes +
           QLatin1String("<br><span class=\"status\">") + status.toHtmlEscaped() +
           QLatin1String("</span></figcaption></figure>\n");
}

}  // namespace

bool WriteGallery(const QString& page, const std::vector<Job>& jobs,
                  const std::vector<JobResult>& results, const std::string& summary) {
    const QDir pageDir = QFileInfo(page).absoluteDir();
    QString html = QLatin1String(kHead);
    html += QLatin1String("<h1>metafile2svg</h1>\n<pre>") +
            QString::fromLocal8Bit(summary.c_str()).toHtmlEscaped() +
            QLatin1String("</pre>\n<p id=\"tally\"></p>\n<main>\n");
    for (size_t i = 0; i < jobs.size() && i < results.size(); ++i)
        html += Card(pageDir, jobs[i], results[i]);
    html += QLatin1String("</main>\n</body></html>\n");
    return WriteFile(page, html.toUtf8());
}
