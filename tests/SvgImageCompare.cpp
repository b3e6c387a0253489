#include "tests/SvgImageCompare.h"

#include <QImage>
#include <QList>
#include <cstring>

namespace svgcompare {

namespace {

const char kMarker[] = "data:image/png;base64,";

bool IsBase64Text(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' ||
           c == '/' || c == '=' || c == '\n' || c == '\r';
}

// A document cut into the text around the image data: text[i] stands before image[i], and
// one more text follows the last image.
struct Parts {
    QList<QByteArray> text;
    QList<QByteArray> images;
};

Parts Split(const QByteArray& svg) {
    Parts parts;
    const int markerLength = (int)std::strlen(kMarker);
    int from = 0;
    for (int at; (at = svg.indexOf(kMarker, from)) >= 0;) {
        const int start = at + markerLength;
        int end = start;
        while (end < svg.size() && IsBase64Text(svg.at(end))) ++end;
        parts.text << svg.mid(from, start - from);
        parts.images << svg.mid(start, end - start);
        from = end;
    }
    parts.text << svg.mid(from);
    return parts;
}

QImage Decode(const QByteArray& base64) {
    const QImage image = QImage::fromData(QByteArray::fromBase64(base64), "PNG");
    return image.isNull() ? image : image.convertToFormat(QImage::Format_ARGB32);
}

QString ImageDifference(const QByteArray& a, const QByteArray& b) {
    const QImage x = Decode(a), y = Decode(b);
    if (x.isNull() || y.isNull()) return QStringLiteral("is not a PNG");
    if (x.size() != y.size())
        return QStringLiteral("is %1x%2 against %3x%4")
            .arg(x.width())
            .arg(x.height())
            .arg(y.width())
            .arg(y.height());
    for (int row = 0; row < x.height(); ++row)
        for (int col = 0; col < x.width(); ++col)
            if (x.pixel(col, row) != y.pixel(col, row))
                return QStringLiteral("differs at pixel (%1, %2): #%3 against #%4")
                    .arg(col)
                    .arg(row)
                    .arg(x.pixel(col, row), 8, 16, QLatin1Char('0'))
                    .arg(y.pixel(col, row), 8, 16, QLatin1Char('0'));
    return QString();
}

}  // namespace

QString Difference(const QByteArray& a, const QByteArray& b) {
    const Parts x = Split(a), y = Split(b);
    if (x.images.size() != y.images.size())
        return QStringLiteral("%1 images against %2").arg(x.images.size()).arg(y.images.size());
    for (int i = 0; i < x.text.size(); ++i) {
        if (x.text.at(i) != y.text.at(i))
            return i < x.images.size()
                       ? QStringLiteral("the text before image %1 differs").arg(i + 1)
                       : QStringLiteral("the text after the last image differs");
        if (i == x.images.size() || x.images.at(i) == y.images.at(i)) continue;
        const QString why = ImageDifference(x.images.at(i), y.images.at(i));
        if (!why.isEmpty()) return QStringLiteral("image %1 %2").arg(i + 1).arg(why);
    }
    return QString();
}

}  // namespace svgcompare
