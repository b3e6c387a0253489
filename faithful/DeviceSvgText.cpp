// The faithful writer's text: one SVG text element per line, its characters placed one by one
// where the metafile put them, its font in the attributes of the group that holds it.
#include <algorithm>
#include <cmath>

#include "faithful/DeviceSvg.h"
#include "svg/TextRun.h"

namespace faithful {

namespace {

void AppendColour(SvgBuffer& out, Rgb c) {
    static const char kHex[] = "0123456789abcdef";
    out.Append('#');
    for (int i = 0; i < 6; ++i) out.Append(kHex[(c >> (20 - 4 * i)) & 0xF]);
}

// The style a text's group carries: colour and font.
QByteArray TextStyle(const TextOp& op) {
    SvgBuffer s;
    s.Write(" fill=\"");
    AppendColour(s, op.color);
    s.Write("\" font-family=\"", op.family.toUtf8(), "\" font-size=\"");
    AppendNumber(s, op.size);
    s.Append('"');
    if (op.weight == 700)
        s.Write(" font-weight=\"bold\"");
    else if (op.weight != 400)
        s.Write(" font-weight=\"", op.weight, "\"");
    if (op.italic) s.Write(" font-style=\"italic\"");
    if (op.underline || op.strikeOut) {
        s.Write(" text-decoration=\"");
        if (op.underline)
            s.Append(op.strikeOut ? "underline line-through" : "underline");
        else
            s.Write("line-through");
        s.Append('"');
    }
    if (op.anchor != TextOp::Anchor::Start)
        s.Append(op.anchor == TextOp::Anchor::Middle ? " text-anchor=\"middle\""
                                                     : " text-anchor=\"end\"");
    return s.Take();
}

// True when the text space is the device space moved: no rotation, no stretch.
bool Upright(const TextOp& op) {
    return std::llround(op.angle * 100) % 36000 == 0 && std::llround(op.stretch * 100) == 100;
}

}  // namespace

int DeviceSvg::TextClipFor(const Path& clip) {
    const size_t start = m_body.size();
    const int id = m_nextId;
    m_body.Write("<defs><clipPath id=\"t", id, "\"><path d=\"");
    const size_t data = m_body.size();
    AppendPathData(clip);
    const QByteArray key(m_body.data() + data, (int)(m_body.size() - data));
    const auto found = m_textClips.find(key);
    if (found != m_textClips.end()) {
        m_body.Truncate(start);
        return found->second;
    }
    m_body.Write("\"/></clipPath></defs>\n");
    ++m_nextId;
    m_textClips.emplace(key, id);
    return id;
}

void DeviceSvg::DrawText(const TextOp& op) {
    if (op.text.isEmpty()) return;
    const int clip = op.clip.IsEmpty() ? 0 : TextClipFor(op.clip);
    BeginElement(TextStyle(op));
    const bool upright = Upright(op);
    // Upright text is written in device coordinates, the rest in its own text space.
    const PointF shift = upright ? op.origin : PointF{};
    m_body.Write("<text");
    if (clip) m_body.Write(" clip-path=\"url(#t", clip, ")\"");
    if (!upright) {
        m_body.Write(" transform=\"translate(");
        AppendNumber(m_body, op.origin.x);
        m_body.Append(' ');
        AppendNumber(m_body, op.origin.y);
        m_body.Append(')');
        if (std::llround(op.angle * 100) % 36000 != 0) {
            m_body.Write(" rotate(");
            AppendNumber(m_body, op.angle);
            m_body.Append(')');
        }
        if (std::llround(op.stretch * 100) != 100) {
            m_body.Write(" scale(");
            AppendNumber(m_body, op.stretch);
            m_body.Write(" 1)");
        }
        m_body.Append('"');
    }
    // One x per character; one y for all unless they differ.
    const std::vector<PointF>& at = op.positions;
    const std::vector<PointF> origin{PointF{}};
    const std::vector<PointF>& xs = at.empty() ? origin : at;
    bool oneY = true;
    for (const PointF& p : xs)
        oneY = oneY && std::llround(p.y * 100) == std::llround(xs[0].y * 100);
    m_body.Write(" x=\"");
    for (size_t i = 0; i < xs.size(); ++i) {
        if (i) m_body.Append(' ');
        AppendNumber(m_body, xs[i].x + shift.x);
    }
    m_body.Write("\" y=\"");
    for (size_t i = 0; i < (oneY ? 1 : xs.size()); ++i) {
        if (i) m_body.Append(' ');
        AppendNumber(m_body, xs[i].y + shift.y);
    }
    m_body.Write("\" xml:space=\"preserve\">");
    const TextRun run{reinterpret_cast<const unsigned char*>(op.text.utf16()),
                      (size_t)op.text.size(), true};
    AppendXmlText(m_body, run);
    m_body.Write("</text>\n");

    // The bounds: the em box around the line, from its first to past its last position (or
    // an estimated advance when the text flows).
    double left = 0, right = 0.6 * op.size * op.text.size(), top = 0, bottom = 0;
    if (!at.empty()) {
        left = right = at[0].x;
        top = bottom = at[0].y;
        for (const PointF& p : at) {
            left = std::min(left, p.x);
            right = std::max(right, p.x);
            top = std::min(top, p.y);
            bottom = std::max(bottom, p.y);
        }
        right += 0.6 * op.size;
    } else if (op.anchor != TextOp::Anchor::Start) {
        const double w = right;
        left = op.anchor == TextOp::Anchor::End ? -w : -w / 2;
        right = left + w;
    }
    top -= op.size;
    bottom += 0.3 * op.size;
    const double rad = op.angle * 3.14159265358979323846 / 180, c = std::cos(rad),
                 s = std::sin(rad);
    RectF box;
    const double corners[4][2] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
    for (int i = 0; i < 4; ++i) {
        const double x = corners[i][0] * op.stretch, y = corners[i][1];
        const PointF p{op.origin.x + x * c - y * s, op.origin.y + x * s + y * c};
        if (i == 0)
            box = {p.x, p.y, p.x, p.y};
        else
            box = {std::min(box.left, p.x), std::min(box.top, p.y), std::max(box.right, p.x),
                   std::max(box.bottom, p.y)};
    }
    Extend(box);
}

}  // namespace faithful
