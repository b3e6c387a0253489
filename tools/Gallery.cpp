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
figure.empty { border-color: #e90; }
figure.emfplus { border-color: #90c; }
figure.both { grid-column: span 2; }
.both .pair { display: grid; grid-template-columns: 1fr 1fr; gap: 6px; }
.pair small { display: block; text-align: center; color: #555; }
figure.refused { background: #f6f6f6; }
.view, #large { display: flex; align-items: center; justify-content: center;
        background: repeating-conic-gradient(#f4f4f4 0 25%, #fff 0 50%) 0 0 / 16px 16px; }
.view { height: 220px; }
a.view { cursor: zoom-in; }
.view img { max-width: 100%; max-height: 100%; }
#large { position: fixed; inset: 0; cursor: zoom-out; }
#large[hidden] { display: none; }
#large img { width: 96vw; height: 96vh; object-fit: contain; }
figcaption { margin-top: 6px; overflow-wrap: anywhere; }
figure.broken figcaption::after { content: " \2014 does not display"; color: #c00; }
figure.empty figcaption::after { content: " \2014 empty: nothing is drawn"; color: #c60; }
figure.emfplus figcaption::after {
  content: " \2014 drawn from EMF+ records only: not drawn"; color: #90c; }
.status { color: #555; }
</style>
<script>
function settled(img, shown) {
  var figure = img.closest('figure');
  var marked = figure.classList.contains('empty') || figure.classList.contains('emfplus');
  if (!marked) figure.classList.add(shown ? 'shown' : 'broken');
  var n = function (s) { return document.querySelectorAll('figure.' + s).length; };
  document.getElementById('tally').textContent = n('shown') + ' displayed, ' + n('empty') +
      ' empty, ' + n('emfplus') + ' drawn from EMF+ records only, ' + n('broken') +
      ' failed to display';
}
// A click on a drawing shows it as large as the window; a click or Escape closes it.
function enlarge(link) {
  var large = document.getElementById('large');
  large.firstChild.src = link.firstChild.src;
  large.hidden = false;
  return false;
}
document.addEventListener('keydown', function (e) {
  if (e.key === 'Escape') document.getElementById('large').hidden = true;
});
</script>
</head><body>
<div id="large" hidden onclick="this.hidden = true"><img alt=""></div>
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

// A drawing shown from `source`, enlarged on a click; linked to `href`.
QString View(const QString& source, const QString& href) {
    return QLatin1String("<a class=\"view\" onclick=\"return enlarge(this)\" href=\"") + href +
           QLatin1String(
               "\"><img alt=\"\" onload=\"settled(this, true)\" "
               "onerror=\"settled(this, false)\" src=\"") +
           source + QLatin1String("\"></a>");
}

QString Card(const QDir& pageDir, const Job& job, const JobResult& result, int mode) {
    QString view = QLatin1String("<div class=\"view\">"), sizes = Size(result.inputSize), status;
    const QString reason = QString::fromLocal8Bit(result.reason.c_str());
    switch (result.outcome) {
        case JobResult::Converted: {
            // Linked to the file when there is one (the full-size drawing in a tab of its own).
            const QString source = ImageSource(pageDir, job, result);
            view = View(source, job.output.isEmpty() ? QStringLiteral("#") : source);
            if (!result.otherSvg.isEmpty()) {  // beside the drawing of the other mode
                const bool faithful = mode == SVGMODULE_MODE_FAITHFUL;
                view = QLatin1String("<div class=\"pair\"><div>") + view +
                       QLatin1String(faithful ? "<small>faithful</small></div><div>"
                                              : "<small>contract</small></div><div>") +
                       View(QLatin1String("data:image/svg+xml;base64,") +
                                QString::fromLatin1(result.otherSvg.toBase64()),
                            QStringLiteral("#")) +
                       QLatin1String(faithful ? "<small>contract</small></div></div>"
                                              : "<small>faithful</small></div></div>");
            }
            sizes += QString::fromUtf8(" \u2192 ") + Size(result.svgSize) + QLatin1String(" SVG");
            status = QString::fromLatin1(StatusMeaning(result.status));
            break;
        }
        case JobResult::Refused:
            status = QLatin1String("refused, status ") + QString::number(result.status) +
                     QLatin1String(": ") + reason;
            break;
        case JobResult::Missing:
            status = QLatin1String("not read: ") + reason;
            break;
        case JobResult::NotWritten:
            status = QLatin1String("converted, but the SVG could not be written: ") + reason;
            break;
    }
    const bool converted = result.outcome == JobResult::Converted;
    if (!converted) view += QLatin1String("</div>");
    QString classes = QLatin1String(!converted           ? "refused"
                                    : result.emfPlusOnly ? "emfplus"
                                    : result.empty       ? "empty"
                                                         : "");
    if (converted && !result.otherSvg.isEmpty()) classes += QLatin1String(" both");
    return (classes.isEmpty()
                ? QStringLiteral("<figure>")
                : QLatin1String("<figure class=\"") + classes.trimmed() + QLatin1String("\">")) +
           view + QLatin1String("<figcaption><b>") + job.name.toHtmlEscaped() +
           QLatin1String("</b><br>") + sizes + QLatin1String("<br><span class=\"status\">") +
           status.toHtmlEscaped() + QLatin1String("</span></figcaption></figure>\n");
}

}  // namespace

bool WriteGallery(const QString& page, const std::vector<Job>& jobs,
                  const std::vector<JobResult>& results, const std::string& summary,
                  std::string* error, int mode) {
    const QDir pageDir = QFileInfo(page).absoluteDir();
    QString html = QLatin1String(kHead);
    html += QLatin1String("<h1>metafile2svg</h1>\n<pre>") +
            QString::fromLocal8Bit(summary.c_str()).toHtmlEscaped() +
            QLatin1String("</pre>\n<p id=\"tally\"></p>\n<main>\n");
    for (size_t i = 0; i < jobs.size() && i < results.size(); ++i)
        html += Card(pageDir, jobs[i], results[i], mode);
    html += QLatin1String("</main>\n</body></html>\n");
    return WriteFile(page, html.toUtf8(), error);
}
