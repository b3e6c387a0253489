// The faithful writer: numbers, path data, styles, patterns and the document around them.
#include "faithful/DeviceSvg.h"

#include <QBuffer>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace faithful {

namespace {

const double kLargest = 1e13;

// Room kept for the document's start and end when the body's limit is set.
const size_t kFrameBytes = 512;

// `v` in hundredths, rounded, within the largest written value.
int64_t Hundredths(double v) {
    if (!std::isfinite(v)) return 0;
    v = std::max(-kLargest, std::min(kLargest, v)) * 100;
    // Halves away from zero, as llround, without the library call: the value is below 2^53,
    // so its whole part converts exactly and the fraction is found without rounding.
    int64_t whole = (int64_t)v;
    const double fraction = v - (double)whole;
    if (fraction >= 0.5)
        ++whole;
    else if (fraction <= -0.5)
        --whole;
    return whole;
}

void AppendHundredths(SvgBuffer& out, int64_t n) {
    // Written backwards into a local array, then appended at once.
    char text[32];
    char* const end = text + sizeof text;
    char* p = end;
    uint64_t u = n < 0 ? 0 - (uint64_t)n : (uint64_t)n;
    const uint64_t frac = u % 100;
    uint64_t whole = u / 100;
    if (frac != 0) {
        if (frac % 10) *--p = (char)('0' + frac % 10);
        *--p = (char)('0' + frac / 10);
        *--p = '.';
    }
    if (whole != 0 || frac == 0) {
        do {
            *--p = (char)('0' + whole % 10);
            whole /= 10;
        } while (whole);
    }
    if (n < 0) *--p = '-';
    out.Append(p, (size_t)(end - p));
}

// "#rgb" when each channel repeats its digit, "#rrggbb" otherwise.
void AppendColour(SvgBuffer& out, Rgb c) {
    static const char kHex[] = "0123456789abcdef";
    char s[8] = {'#'};
    for (int i = 0; i < 6; ++i) s[1 + i] = kHex[(c >> (20 - 4 * i)) & 0xF];
    if (s[1] == s[2] && s[3] == s[4] && s[5] == s[6]) {
        const char shortForm[4] = {'#', s[1], s[3], s[5]};
        out.Append(shortForm, 4);
        return;
    }
    out.Append(s, 7);
}

QByteArray ColourText(Rgb c) {
    SvgBuffer b;
    AppendColour(b, c);
    return b.Take();
}

QByteArray NumberText(double v) {
    SvgBuffer b;
    AppendNumber(b, v);
    return b.Take();
}

// The lines of the hatch styles on their 8 x 8 tile, in tile pixels: horizontal, vertical,
// forward diagonal (down to the right), backward diagonal (up to the right). The diagonals run
// past the tile so that neighbouring tiles join.
const double kHatchLines[4][4] = {
    {0, 3.5, 8, 3.5}, {3.5, 0, 3.5, 8}, {-1, -1, 9, 9}, {-1, 9, 9, -1}};
// The lines of each hatch style: bit n draws line n.
const int kHatchStyles[6] = {1, 2, 4, 8, 3, 12};

// The path data of a hatch style's lines on a tile whose pixels are `pixel` units wide.
QByteArray HatchData(uint32_t hatch, double pixel) {
    SvgBuffer d;
    for (int i = 0; i < 4; ++i) {
        if (!(kHatchStyles[hatch % 6] & (1 << i))) continue;
        d.Append('M');
        for (int k = 0; k < 4; ++k) {
            if (k) d.Append(' ');
            AppendNumber(d, kHatchLines[i][k] * pixel);
        }
    }
    return d.Take();
}

// True when a path's fill rule can change its picture: more than one figure, or a figure that
// can cross itself.
bool RuleMatters(const Path& p) {
    return p.FigureCount() > 1 || p.points().size() > 3 || p.HasCurves();
}

}  // namespace

void AppendNumber(SvgBuffer& out, double v) {
    AppendHundredths(out, Hundredths(v));
}

DeviceSvg::DeviceSvg() {}

void DeviceSvg::SetLimit(size_t limit) {
    // Encoding a tile costs time in proportion to its pixels: no more tile bytes are encoded
    // than the document may hold.
    m_imageBudget = limit;
    m_body.SetLimit(limit > 2 * kFrameBytes ? limit - kFrameBytes : limit / 2);
}

void DeviceSvg::Rewind(const Mark& mark) {
    m_body.Truncate(mark.size);
    m_groupOpen = mark.groupOpen;
    m_group = mark.group;
    m_clipGroup = mark.clipGroup;
    for (auto it = m_clips.begin(); it != m_clips.end();)
        it = it->second.offset >= mark.size ? m_clips.erase(it) : std::next(it);
    m_clipIds.clear();
    if (m_clipId > 0) m_clipId = -1;
}

bool DeviceSvg::DrawnBounds(RectF& out) const {
    out = m_bounds;
    return m_drawn;
}

int DeviceSvg::PatternFor(const Fill& fill) {
    // The pattern's element, less its id, is its key.
    SvgBuffer p;
    p.Write(" patternUnits=\"userSpaceOnUse\"");
    // A tile's pixels are `pixel` device units wide, drawn as squares (no smoothing).
    const double pixel = fill.pixel > 0 && std::isfinite(fill.pixel) ? fill.pixel : 1;
    if (Hundredths(fill.origin.x) != 0) p.Write(" x=\"", NumberText(fill.origin.x), "\"");
    if (Hundredths(fill.origin.y) != 0) p.Write(" y=\"", NumberText(fill.origin.y), "\"");
    if (fill.kind == Fill::Kind::Hatch) {
        const QByteArray side = NumberText(8 * pixel);
        p.Write(" width=\"", side, "\" height=\"", side, "\">");
        if (fill.hatchBackground)
            p.Write("<rect width=\"", side, "\" height=\"", side, "\" fill=\"",
                    ColourText(fill.background), "\"/>");
        p.Write("<path d=\"", HatchData(fill.hatch, pixel), "\" stroke=\"", ColourText(fill.color),
                "\" stroke-linecap=\"butt\"");
        if (Hundredths(pixel) != 100) p.Write(" stroke-width=\"", NumberText(pixel), "\"");
        p.Write("/>");
    } else {
        QImage image = *fill.image;
        if (fill.monochrome && image.format() == QImage::Format_Mono)
            image.setColorTable({0xFF000000u | fill.color, 0xFF000000u | fill.background});
        QByteArray png;
        QBuffer device(&png);
        device.open(QIODevice::WriteOnly);
        image.save(&device, "PNG");
        const QByteArray w = NumberText(image.width() * pixel),
                         h = NumberText(image.height() * pixel);
        p.Write(" width=\"", w, "\" height=\"", h,
                "\"><image image-rendering=\"optimizeSpeed\" width=\"", w, "\" height=\"", h,
                "\" xlink:href=\"data:image/png;base64,", png.toBase64(), "\"/>");
        m_xlink = true;
    }
    p.Write("</pattern>");
    const QByteArray key = p.Take();
    const auto found = m_patterns.find(key);
    if (found != m_patterns.end()) return found->second;
    const int id = m_nextId++;
    m_body.Write("<defs><pattern id=\"p", id, "\"", key, "</defs>\n");
    m_patterns.emplace(key, id);
    return id;
}

int DeviceSvg::ImagePattern(const Fill& fill) {
    const int64_t colours = fill.monochrome ? (int64_t)fill.color << 24 | fill.background : -1;
    const auto key = std::make_tuple(fill.image.get(), colours, Hundredths(fill.origin.x),
                                     Hundredths(fill.origin.y), Hundredths(fill.pixel));
    const auto found = m_imagePatterns.find(key);
    if (found != m_imagePatterns.end()) return found->second;
    const size_t bytes = (size_t)fill.image->sizeInBytes();
    if (bytes > m_imageBudget) return -1;
    m_imageBudget -= bytes;
    const int id = PatternFor(fill);
    m_imagePatterns.emplace(key, id);
    m_tiles.push_back(fill.image);
    return id;
}

int DeviceSvg::GradientFor(const Fill& fill) {
    // The gradient's element, less its id, is its key.
    SvgBuffer g;
    g.Write(" gradientUnits=\"userSpaceOnUse\" x1=\"", NumberText(fill.from.x), "\" y1=\"",
            NumberText(fill.from.y), "\" x2=\"", NumberText(fill.to.x), "\" y2=\"");
    g.Write(NumberText(fill.to.y), "\"><stop stop-color=\"", ColourText(fill.color),
            "\"/><stop offset=\"1\" stop-color=\"", ColourText(fill.color2),
            "\"/></linearGradient>");
    const QByteArray key = g.Take();
    const auto found = m_gradients.find(key);
    if (found != m_gradients.end()) return found->second;
    const int id = m_nextId++;
    m_body.Write("<defs><linearGradient id=\"g", id, "\"", key, "</defs>\n");
    m_gradients.emplace(key, id);
    return id;
}

void DeviceSvg::StyleOf(const DrawOp& op, SvgBuffer& s) {
    s.Clear();
    const Fill& f = op.fill;
    if (f.kind == Fill::Kind::Solid) {
        s.Write(" fill=\"");
        AppendColour(s, f.color);
        s.Append('"');
    } else if (f.kind == Fill::Kind::Hatch) {
        s.Write(" fill=\"url(#p", PatternFor(f), ")\"");
    } else if (f.kind == Fill::Kind::LinearGradient) {
        s.Write(" fill=\"url(#g", GradientFor(f), ")\"");
    } else if (f.kind == Fill::Kind::Image) {
        const int id = ImagePattern(f);
        if (id >= 0) {
            s.Write(" fill=\"url(#p", id, ")\"");
        } else {  // past the encoding budget: the tile's first pixel as a plain colour
            s.Write(" fill=\"");
            AppendColour(s, f.monochrome ? f.color : f.image->pixel(0, 0) & 0xFFFFFF);
            s.Append('"');
        }
    }
    if (f.kind != Fill::Kind::None && f.rule == FillRule::EvenOdd && RuleMatters(op.path))
        s.Write(" fill-rule=\"evenodd\"");
    const Stroke& k = op.stroke;
    if (k.visible) {
        s.Write(" stroke=\"");
        AppendColour(s, k.color);
        s.Append('"');
        if (Hundredths(k.width) != 100) {
            s.Write(" stroke-width=\"");
            AppendNumber(s, k.width);
            s.Append('"');
        }
        if (!k.dashes.empty()) {
            s.Write(" stroke-dasharray=\"");
            for (size_t i = 0; i < k.dashes.size(); ++i) {
                if (i) s.Append(' ');
                AppendNumber(s, k.dashes[i]);
            }
            s.Append('"');
        }
        if (k.cap == Stroke::Cap::Flat)
            s.Write(" stroke-linecap=\"butt\"");
        else if (k.cap != Stroke::Cap::Round)
            s.Write(" stroke-linecap=\"square\"");
        if (k.join == Stroke::Join::Bevel)
            s.Write(" stroke-linejoin=\"bevel\"");
        else if (k.join != Stroke::Join::Round)
            s.Write(" stroke-linejoin=\"miter\"");
        if (k.join == Stroke::Join::Miter && Hundredths(k.miterLimit) != 400) {
            s.Write(" stroke-miterlimit=\"");
            AppendNumber(s, k.miterLimit);
            s.Append('"');
        }
    }
}

void DeviceSvg::AppendPathData(const Path& path) {
    // Absolute commands; a repeated command letter is left out, horizontal and vertical lines
    // use H and V. Numbers are separated by a space unless a minus sign separates them.
    SvgBuffer& out = m_body;
    char last = 0;  // the command in force
    bool number = false;
    int64_t cx = 0, cy = 0;  // the current point, in hundredths
    auto num = [&](int64_t n) {
        if (number && n >= 0) out.Append(' ');
        AppendHundredths(out, n);
        number = true;
    };
    auto command = [&](char c) {
        if (c != last || c == 'Z' || c == 'M') {
            out.Append(c);
            number = false;
        }
        last = c == 'M' ? 'L' : c;  // after a move, pairs are lines
    };
    const std::vector<PointF>& pts = path.points();
    size_t i = 0;
    for (Path::Verb v : path.verbs()) {
        if (v == Path::Verb::Close) {
            command('Z');
            continue;
        }
        if (v == Path::Verb::Cubic) {
            command('C');
            for (int k = 0; k < 3; ++k) {
                num(Hundredths(pts[i + k].x));
                num(Hundredths(pts[i + k].y));
            }
            cx = Hundredths(pts[i + 2].x);
            cy = Hundredths(pts[i + 2].y);
            i += 3;
            continue;
        }
        const int64_t x = Hundredths(pts[i].x), y = Hundredths(pts[i].y);
        ++i;
        if (v == Path::Verb::Move) {
            command('M');
            num(x);
            num(y);
        } else if (y == cy && x != cx) {
            command('H');
            num(x);
        } else if (x == cx && y != cy) {
            command('V');
            num(y);
        } else {
            command('L');
            num(x);
            num(y);
        }
        cx = x;
        cy = y;
    }
}

void DeviceSvg::BeginElement(const QByteArray& style) {
    BeginElement(style.constData(), (size_t)style.size());
}

void DeviceSvg::BeginElement(const char* style, size_t length) {
    const int clip = ClipId();
    if (clip != m_clipGroup) {
        CloseGroups();
        if (clip) m_body.Write("<g clip-path=\"url(#c", clip, ")\">\n");
        m_clipGroup = clip;
    }
    const bool same = (size_t)m_group.size() == length &&
                      (length == 0 || std::memcmp(m_group.constData(), style, length) == 0);
    if (m_groupOpen && same) return;
    if (m_groupOpen) m_body.Write("</g>\n");
    m_groupOpen = false;
    m_body.Append("<g", 2);
    m_body.Append(style, length);
    m_body.Append(">\n", 2);
    if (!same) m_group = QByteArray(style, (qsizetype)length);
    m_groupOpen = true;
}

void DeviceSvg::Extend(const RectF& drawn) {
    RectF b = drawn;
    if (m_clip) {
        if (!ClipShows(b)) return;
        const QRect c = m_clip->region.boundingRect();
        b = {std::max<double>(b.left, c.x()), std::max<double>(b.top, c.y()),
             std::min<double>(b.right, (double)c.x() + c.width()),
             std::min<double>(b.bottom, (double)c.y() + c.height())};
    }
    if (!m_drawn) {
        m_bounds = b;
        m_drawn = true;
    } else {
        m_bounds = {std::min(m_bounds.left, b.left), std::min(m_bounds.top, b.top),
                    std::max(m_bounds.right, b.right), std::max(m_bounds.bottom, b.bottom)};
    }
}

void DeviceSvg::Draw(const DrawOp& op) {
    RectF b = op.path.Bounds();
    if (op.stroke.visible) {
        const double h = op.stroke.width / 2;
        b = {b.left - h, b.top - h, b.right + h, b.bottom + h};
    }
    if (!ClipShows(b)) return;
    StyleOf(op, m_style);
    BeginElement(m_style.data(), m_style.size());
    m_body.Write("<path d=\"");
    AppendPathData(op.path);
    m_body.Write("\"/>\n");
    Extend(b);
}

QByteArray DeviceSvg::Finish(double widthPx, double heightPx, const RectF& viewBox) {
    m_body.SetLimit(SvgBuffer::kNoLimit);
    CloseGroups();
    SvgBuffer doc;
    doc.Append(
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<svg xmlns=\"http://www.w3.org/2000/svg\"");
    if (m_xlink) doc.Write(" xmlns:xlink=\"http://www.w3.org/1999/xlink\"");
    doc.Write(" version=\"1.1\" width=\"", NumberText(widthPx), "\" height=\"",
              NumberText(heightPx), "\" viewBox=\"");
    AppendNumber(doc, viewBox.left);
    doc.Append(' ');
    AppendNumber(doc, viewBox.top);
    doc.Append(' ');
    AppendNumber(doc, viewBox.right - viewBox.left);
    doc.Append(' ');
    AppendNumber(doc, viewBox.bottom - viewBox.top);
    doc.Append(
        "\" preserveAspectRatio=\"none\" fill=\"none\" stroke-linecap=\"round\" "
        "stroke-linejoin=\"round\">\n");
    doc.Append(m_body);
    doc.Write("</svg>\n");
    m_body.Clear();
    return doc.Take();
}

}  // namespace faithful
