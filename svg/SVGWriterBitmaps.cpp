// Bitmap output: a bitmap's image encoded as PNG, embedded as base64 text in an image element.
#define TRACE_FILE "SVGWriter"
#include <QBuffer>

#include "api/Trace.h"
#include "geometry/Transform.h"
#include "svg/DibDecoder.h"
#include "svg/SVGWriter.h"

QByteArray CMySVGWriter::OnRasterOperation(const dib::DibSource& bitmap, int op, int pad) {
    TRACE_ENTER();
    QByteArray text;
    const QImage image = dib::GetQImage(bitmap, op, pad);
    if (image.isNull()) TRACE_RETURN(text);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::ReadWrite);
    if (image.save(&buffer, "PNG"))
        dib::ConvertToBase64(reinterpret_cast<const unsigned char*>(png.constData()),
                             (unsigned long)png.size(), text);
    TRACE_RETURN(text);
}

// The corner and the size both go through the world transform as points, translation
// included. The base64 text starts on a line of its own.
bool CMySVGWriter::WriteBlt(int x, int y, int width, int height, const QByteArray& text) {
    TRACE_ENTER();
    const tagPOINT corner = geometry::TransformPoint(m_xform, x, y);
    const tagPOINT size = geometry::TransformPoint(m_xform, width, height);
    m_out.Write("<image x=\"", corner.x, "\" y=\"", corner.y, "\" width=\"", size.x, "\" height=\"",
                size.y, "\" xlink:href=\"data:image/png;base64,\n", text);
    if (m_clipSelected)
        m_out.Write("\" ", m_styleMgr.GetClipPath(), "/>\n");
    else
        m_out.Write("\"/>\n");
    TRACE_RETURN(true);
}
