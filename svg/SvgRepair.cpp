#include "svg/SvgRepair.h"

#include <algorithm>
#include <numeric>
#include <string_view>
#include <vector>

namespace {

using std::string_view;
constexpr size_t npos = string_view::npos;

const char kXlinkDeclaration[] = " xmlns:xlink=\"http://www.w3.org/1999/xlink\"";

bool IsSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool IsTagEnd(char c) {
    return c == '>' || c == '/' || c == '<';
}

bool IsNameStart(char c) {
    const unsigned char u = (unsigned char)c;
    return (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || u == '_' || u == ':' || u >= 0x80;
}

// One attribute of a start tag: its name, where the white space before it begins, and the
// index just past its value.
struct Attribute {
    string_view name;
    size_t cut;
    size_t end;
};

class Repairer {
  public:
    Repairer(const QByteArray& svg, bool xlink, bool repeated)
        : m_input(svg),
          m_text(svg.constData(), (size_t)svg.size()),
          m_xlink(xlink),
          m_repeated(repeated) {}

    QByteArray Run() {
        bool rootSeen = false;
        size_t pos = 0;
        while (pos != npos && (pos = m_text.find('<', pos)) != npos) {
            const string_view rest = m_text.substr(pos);
            if (StartsWith(rest, "<!--")) {
                pos = SkipPast(pos, "-->");
            } else if (StartsWith(rest, "<![CDATA[")) {
                pos = SkipPast(pos, "]]>");
            } else if (StartsWith(rest, "<?")) {
                pos = SkipPast(pos, "?>");
            } else if (StartsWith(rest, "<!")) {
                pos = SkipDeclaration(pos);
            } else if (StartsWith(rest, "</")) {
                pos = SkipPast(pos, ">");
            } else if (rest.size() > 1 && IsNameStart(rest[1])) {
                pos = StartTag(pos, !rootSeen);
                rootSeen = true;
            } else {
                ++pos;  // a stray '<' in text
            }
        }
        if (!m_edited) return m_input;
        CopyTo(m_text.size());
        return m_output;
    }

  private:
    static bool StartsWith(string_view s, string_view prefix) {
        return s.substr(0, prefix.size()) == prefix;
    }

    size_t SkipPast(size_t from, string_view terminator) const {
        const size_t at = m_text.find(terminator, from + 1);
        return at == npos ? npos : at + terminator.size();
    }

    // A declaration such as <!DOCTYPE ...>, whose internal subset in brackets may hold '>'.
    size_t SkipDeclaration(size_t pos) const {
        int depth = 0;
        char quote = 0;
        for (size_t i = pos + 2; i < m_text.size(); ++i) {
            const char c = m_text[i];
            if (quote) {
                if (c == quote) quote = 0;
            } else if (c == '"' || c == '\'') {
                quote = c;
            } else if (c == '[') {
                ++depth;
            } else if (c == ']') {
                --depth;
            } else if (c == '>' && depth <= 0) {
                return i + 1;
            }
        }
        return npos;
    }

    // Reads the start tag at `pos`, applies the fixes to it and returns the index past its '>'.
    // A tag that is not closed, or holds a '<' outside its values, is left untouched: the scan
    // goes on at that '<' (npos at the end of the input).
    size_t StartTag(size_t pos, bool isRoot) {
        const size_t n = m_text.size();
        size_t i = pos + 1;
        while (i < n && !IsSpace(m_text[i]) && !IsTagEnd(m_text[i])) ++i;
        const size_t nameEnd = i;
        m_attributes.clear();
        for (;;) {
            const size_t cut = i;
            while (i < n && IsSpace(m_text[i])) ++i;
            if (i >= n) return npos;
            if (m_text[i] == '<') return i;
            if (m_text[i] == '>') break;
            const size_t nameStart = i;
            while (i < n && !IsSpace(m_text[i]) && m_text[i] != '=' && !IsTagEnd(m_text[i])) ++i;
            if (i == nameStart) {  // a '/' or a stray '='
                ++i;
                continue;
            }
            const string_view name = m_text.substr(nameStart, i - nameStart);
            size_t j = i;
            while (j < n && IsSpace(m_text[j])) ++j;
            if (j < n && m_text[j] == '=') {
                ++j;
                while (j < n && IsSpace(m_text[j])) ++j;
                if (j >= n) return npos;
                if (m_text[j] == '"' || m_text[j] == '\'') {
                    j = m_text.find(m_text[j], j + 1);
                    if (j == npos) return npos;
                    ++j;
                } else {
                    while (j < n && !IsSpace(m_text[j]) && !IsTagEnd(m_text[j])) ++j;
                }
                i = j;
            }
            m_attributes.push_back({name, cut, i});
        }
        const size_t tagEnd = i + 1;

        if (m_xlink && isRoot && m_text.substr(pos + 1, nameEnd - pos - 1) == "svg" &&
            std::none_of(m_attributes.begin(), m_attributes.end(),
                         [](const Attribute& a) { return a.name == "xmlns:xlink"; })) {
            CopyTo(nameEnd);
            m_output.append(kXlinkDeclaration);
        }
        if (m_repeated) DropEarlierDuplicates();
        return tagEnd;
    }

    // Removes every attribute whose name occurs again later in the same tag.
    void DropEarlierDuplicates() {
        if (m_attributes.size() < 2) return;
        m_order.resize(m_attributes.size());
        std::iota(m_order.begin(), m_order.end(), 0);
        std::stable_sort(m_order.begin(), m_order.end(), [this](size_t a, size_t b) {
            return m_attributes[a].name < m_attributes[b].name;
        });
        m_drop.assign(m_attributes.size(), false);
        bool any = false;
        for (size_t k = 0; k + 1 < m_order.size(); ++k) {
            if (m_attributes[m_order[k]].name == m_attributes[m_order[k + 1]].name) {
                m_drop[m_order[k]] = true;
                any = true;
            }
        }
        if (!any) return;
        for (size_t k = 0; k < m_attributes.size(); ++k) {
            if (!m_drop[k]) continue;
            CopyTo(m_attributes[k].cut);
            m_copied = m_attributes[k].end;
        }
    }

    // Appends the input from the last copied position up to `pos` to the output.
    void CopyTo(size_t pos) {
        if (!m_edited) {
            m_output.reserve(m_input.size() + (int)sizeof(kXlinkDeclaration));
            m_edited = true;
        }
        m_output.append(m_text.data() + m_copied, (int)(pos - m_copied));
        m_copied = pos;
    }

    const QByteArray& m_input;
    const string_view m_text;
    const bool m_xlink, m_repeated;
    QByteArray m_output;
    bool m_edited = false;
    size_t m_copied = 0;
    std::vector<Attribute> m_attributes;
    std::vector<size_t> m_order;
    std::vector<bool> m_drop;
};

// The length of the character at `i` that XML does not allow, or 0: a C0 control other than
// tab, line feed and carriage return, or U+FFFE / U+FFFF (EF BF BE / EF BF BF in UTF-8).
size_t ForbiddenAt(const QByteArray& s, int i) {
    const unsigned char c = (unsigned char)s[i];
    if (c < 0x20) return c == '\t' || c == '\n' || c == '\r' ? 0 : 1;
    if (c == 0xEF && i + 2 < s.size() && (unsigned char)s[i + 1] == 0xBF &&
        ((unsigned char)s[i + 2] | 1) == 0xBF)
        return 3;
    return 0;
}

// Replaces every character that XML does not allow by U+FFFD.
QByteArray ReplaceForbidden(QByteArray svg) {
    static const char kReplacement[] = "\xEF\xBF\xBD";
    for (int i = 0; i < svg.size(); ++i) {
        const size_t n = ForbiddenAt(svg, i);
        if (n == 0) continue;
        svg.replace(i, (int)n, kReplacement, 3);
        i += 2;
    }
    return svg;
}

}  // namespace

QByteArray RepairSvg(const QByteArray& svg, unsigned repairs) {
    const bool xlink = repairs & SVGMODULE_REPAIR_XLINK;
    const bool repeated = repairs & SVGMODULE_REPAIR_REPEATED_ATTRIBUTES;
    const QByteArray tags = xlink || repeated ? Repairer(svg, xlink, repeated).Run() : svg;
    return repairs & SVGMODULE_REPAIR_FORBIDDEN_CHARACTERS ? ReplaceForbidden(tags) : tags;
}
