// The document itself: header and footer, escaping, the world transform and background mode.
#define TRACE_FILE "SVGWriter"
#include "svg/SVGWriter.h"

#include "api/Trace.h"
#include "geometry/Transform.h"

namespace {
const char kSvgNamespace[] = "http://www.w3.org/2000/svg";
}

CMySVGWriter::CMySVGWriter()
    : m_currStyle(" stroke=\"black\" stroke-width=\"1\" fill=\"none\""),
      m_currStyleStale(false),
      m_bkColor("none"),
      m_textFill(" fill=\"black\""),
      m_textAlign(0),
      m_curX(0),
      m_curY(0),
      m_inPath(false),
      m_clipSelected(false),
      m_figStartX(0),
      m_figStartY(0),
      m_bkMode(-1),
      m_clipId(1),
      m_xform{1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f} {}

CMySVGWriter::~CMySVGWriter() {}

bool CMySVGWriter::CreateXML(int width, int height) {
    TRACE_ENTER();
    m_out.Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?> <svg width=\"", width, "\" height=\" ",
                height, "\" version=\"1.1\" xmlns=\"", kSvgNamespace,
                "\" xml:space=\"preserve\" >\n");
    TRACE_RETURN(true);
}

bool CMySVGWriter::Close() {
    TRACE_ENTER();
    m_out.Write("</svg>\n");
    m_clipId = 1;
    TRACE_RETURN(true);
}

void CMySVGWriter::LimitOutput(size_t bytes) {
    m_out.SetLimit(bytes);
    m_pathData.SetLimit(bytes);
}

void CMySVGWriter::CutOutput(size_t size) {
    m_out.Truncate(size);
    m_out.SetLimit(SvgBuffer::kNoLimit);
    m_pathData.Clear();
}

QString CMySVGWriter::GetSVGOutput() {
    return QString::fromUtf8(m_out.data(), (qsizetype)m_out.size());
}

QByteArray CMySVGWriter::TakeSVGOutput() {
    return m_out.Take();
}

bool CMySVGWriter::ConvertToValidXML(QString& text) {
    TRACE_ENTER();
    text.replace(QLatin1Char('&'), QLatin1String("&amp;"));
    text.replace(QLatin1Char('<'), QLatin1String("&lt;"));
    text.replace(QLatin1Char('>'), QLatin1String("&gt;"));
    TRACE_RETURN(true);
}

bool CMySVGWriter::SetWorldTransform(float eM11, float eM12, float eM21, float eM22, float eDx,
                                     float eDy) {
    m_xform = tagXFORM{eM11, eM12, eM21, eM22, eDx, eDy};
    return true;
}

bool CMySVGWriter::ModifyWorldTransform(float eM11, float eM12, float eM21, float eM22, float eDx,
                                        float eDy, unsigned long mode) {
    return geometry::ApplyWorldTransform(m_xform, tagXFORM{eM11, eM12, eM21, eM22, eDx, eDy}, mode);
}

bool CMySVGWriter::SetBkMode(int mode) {
    m_bkMode = mode;
    return true;
}
