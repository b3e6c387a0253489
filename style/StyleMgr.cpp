// The object table and drawing state of the style manager.
//
// Objects are kept by the metafile's handle as finished attribute text. Selecting an object
// copies its text into the pen, brush or font slot and rebuilds the current style; EMF stock
// objects (handles with bit 31 set) are known by number and never have table entries.
#define TRACE_FILE "StyleMgr"
#include "style/StyleMgr.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>

#include "api/Trace.h"
#include "style/HatchPatterns.h"

namespace {

const unsigned int kStockNullPen = 0x80000008;
const unsigned int kStockDeviceDefaultFont = 0x8000000E;
const int kFontDefaultDescent = 3;
const int kFaceNameLength = 32;
// Until the first selection elements are drawn with a black one-unit stroke and no fill.
const char kInitialCurrentStyle[] = "stroke=\"black\" stroke-width=\"1\" fill=\"none\" ";

// Brush styles of a logical brush.
const unsigned int kBrushSolid = 0;
const unsigned int kBrushHatched = 2;

// Handles are the metafile's 32-bit numbers, keyed as signed values.
int Key(unsigned long handle) {
    return static_cast<int32_t>(static_cast<uint32_t>(handle));
}

// The text of a stock object that sets the brush slot, or nullptr.
const char* StockBrushText(unsigned int handle) {
    switch (handle) {
        case 0x80000000:  // WHITE_BRUSH
            return " fill=\"white\" ";
        case 0x80000001:  // LTGRAY_BRUSH
            return " fill=\"lightgray\" ";
        case 0x80000002:  // GRAY_BRUSH
            return " fill=\"gray\" ";
        case 0x80000003:  // DKGRAY_BRUSH
            return " fill=\"darkgray\" ";
        case 0x80000004:  // BLACK_BRUSH
            return " fill=\"black\" ";
        case 0x80000005:  // NULL_BRUSH
            return " fill=\"none\" ";
        case 0x80000006:  // WHITE_PEN: overrides the pen's stroke colour through the brush slot
            return " stroke=\"white\" ";
        case 0x80000007:  // BLACK_PEN
            return " stroke=\"black\" ";
        default:
            return nullptr;
    }
}

QString EmfFaceName(const tagLOGFONTW& lf) {
    int length = 0;
    while (length < kFaceNameLength && lf.lfFaceName[length] != 0) ++length;
    QString name(length, Qt::Uninitialized);
    for (int i = 0; i < length; ++i) name[i] = QChar(static_cast<ushort>(lf.lfFaceName[i]));
    return name;
}

QString WmfFaceName(const FONTSPEC& wmfFont) {
    int length = 0;
    while (length < kFaceNameLength && wmfFont.Facename[length] != '\0') ++length;
    return QString::fromLatin1(wmfFont.Facename, length);
}

// |h| without overflow: the most negative height gives the largest int.
int AbsHeight(int32_t h) {
    return h == INT32_MIN ? INT32_MAX : std::abs(h);
}

// Drops the first stroke="..." attribute from `s`, keeping stroke-width and the rest.
void RemoveStrokeAttribute(QByteArray& s) {
    const auto p = s.indexOf("stroke");
    if (p < 0) return;
    const auto q1 = s.indexOf('"', p);
    if (q1 < 0) return;
    const auto q2 = s.indexOf('"', q1 + 1);
    if (q2 < 0) return;
    s.remove(p, q2 - p + 1);
}

}  // namespace

namespace {

uint64_t HandleSalt() {
    static const uint64_t salt = [] {
        static const int here = 0;
        const uint64_t time = (uint64_t)std::chrono::steady_clock::now().time_since_epoch().count();
        return time * 0x9E3779B97F4A7C15ull ^ (uint64_t)(uintptr_t)&here;
    }();
    return salt;
}

}  // namespace

// The salted handle through a 64-bit mixing function (every input bit moves every output bit).
size_t CStyleManager::HandleHash::operator()(int handle) const {
    uint64_t x = (uint64_t)(uint32_t)handle ^ HandleSalt();
    x ^= x >> 33;
    x *= 0xFF51AFD7ED558CCDull;
    x ^= x >> 33;
    x *= 0xC4CEB9FE1A85EC53ull;
    x ^= x >> 33;
    return (size_t)x;
}

// Out-of-line definition so the constant can be bound to references.
const int CStyleManager::kPatternMade;

CStyleManager::CStyleManager()
    : m_patternCounter(0),
      m_penStyle("stroke=\"none\" stroke-width=\"1\" "),
      m_brushStyle("fill=\"white\""),
      m_bkgColor("none"),
      m_bkgMode(0.0f),
      m_textColor("black"),
      m_fontStyle("  "),
      m_currentStyle(kInitialCurrentStyle),
      m_hatchTemplates(),
      m_bold(false),
      m_italic(false),
      m_escapement(0),
      m_fontHeight(14),
      m_fontDescent(kFontDefaultDescent),
      m_fontWeight(0),
      // No EMF font yet: DEVICE_DEFAULT_FONT then stands for itself and selects nothing.
      m_lastFontHandle(kStockDeviceDefaultFont),
      m_currentStyleMerged(false),
      m_currentStale(false),
      m_penStale(true),
      m_brushStale(true) {
    TRACE_ENTER();
    for (int i = 0; i < hatch::kStyleCount; ++i) m_hatchTemplates[i] = hatch::Template(i);
    RebuildTextStyle();
    TRACE_RETURN();
}

CStyleManager::~CStyleManager() {}

int CStyleManager::EmfCreatePen(unsigned int handle, unsigned int style, unsigned int width,
                                unsigned int colour, const unsigned int* entries,
                                unsigned int count) {
    TRACE_ENTER();
    EmfObject& pen = m_objects[Key(handle)];
    pen.kind = KindPen;
    pen.style = PenText(style, width, colour, entries, count);
    TRACE_RETURN(1);
}

int CStyleManager::EmfCreateBrush(unsigned int handle, unsigned int style, unsigned int hatch,
                                  unsigned int colour) {
    TRACE_ENTER();
    QByteArray text;
    if (style == kBrushSolid)
        text = SolidBrushText(colour);
    else if (style == kBrushHatched)
        text = GetPattern(handle, hatch, colour);
    EmfObject& brush = m_objects[Key(handle)];
    brush.kind = KindBrush;
    brush.style = text;
    TRACE_RETURN(style == kBrushHatched ? kPatternMade : 0);
}

int CStyleManager::EmfCreateFont(unsigned int handle, tagLOGFONTW lf) {
    TRACE_ENTER();
    QString family = EmfFaceName(lf);
    if (family.isEmpty()) family = QStringLiteral("Arial");
    m_escapement = -(lf.lfEscapement / 10);

    FontInf& info = m_fonts[Key(handle)];
    info.family = family;
    info.familyText = family.toUtf8();
    info.weight = lf.lfWeight;
    info.height = AbsHeight(lf.lfHeight);
    info.descent = kFontDefaultDescent;
    info.bold = lf.lfWeight > 400;
    info.italic = lf.lfItalic != 0;

    EmfObject& font = m_objects[Key(handle)];
    font.kind = KindFont;
    font.style = EmfFontText(info.familyText, lf);
    m_lastFontHandle = handle;
    TRACE_RETURN(0);
}

int CStyleManager::MetaCreateFont(unsigned int handle, FONTSPEC wmfFont) {
    TRACE_ENTER();
    const QString family = WmfFaceName(wmfFont);
    const uint16_t weight = static_cast<uint16_t>(wmfFont.Weight);

    FontInf& info = m_fonts[Key(handle)];
    info.family = family;
    info.familyText = family.toUtf8();
    info.weight = weight;
    info.height = static_cast<uint16_t>(wmfFont.Height);
    info.descent = kFontDefaultDescent;
    info.bold = weight > 400;
    info.italic = wmfFont.Italic != 0;

    EmfObject& font = m_objects[Key(handle)];
    font.kind = KindFont;
    font.style = WmfFontText(info.familyText, wmfFont);
    TRACE_RETURN(0);
}

int CStyleManager::EmfSelectObject(unsigned long handle) {
    TRACE_ENTER();
    unsigned int h = static_cast<uint32_t>(handle);
    if (h == kStockDeviceDefaultFont) h = m_lastFontHandle;
    // A handle without an entry is looked up without making one: it acts as a stock object.
    const auto it = m_objects.find(Key(h));
    const int kind = it == m_objects.end() ? KindEmpty : it->second.kind;
    switch (kind) {
        case KindPen:
            SetPenStyle(it->second.style);
            break;
        case KindBrush:
            SetBrushStyle(it->second.style.isEmpty() ? QByteArray(" fill=\"none\" ")
                                                     : it->second.style);
            break;
        case KindFont:
            SelectFont(Key(h), it->second.style);
            RebuildTextStyle();
            break;
        default:
            SelectStockObject(h);
            break;
    }
    // Every selection merges pen, brush and clip anew; the merge is made when it is next asked
    // for, so selections cost the same whatever the length of the texts.
    m_currentStyleMerged = true;
    m_currentStale = true;
    TRACE_RETURN(0);
}

void CStyleManager::SelectStockObject(unsigned int handle) {
    if (const char* brush = StockBrushText(handle))
        SetBrushStyle(QByteArray(brush));
    else if (handle == kStockNullPen)
        SetPenStyle(QByteArray(" stroke=\"none\" "));
}

// The texts are shared, not copied; the composed styles made from them are rebuilt when next
// asked for.
void CStyleManager::SetPenStyle(const QByteArray& text) {
    m_penStyle = text;
    m_penStale = true;
}

void CStyleManager::SetBrushStyle(const QByteArray& text) {
    m_brushStyle = text;
    m_brushStale = true;
}

void CStyleManager::SelectFont(int key, const QByteArray& text) {
    m_fontStyle = text;
    const auto it = m_fonts.find(key);
    const FontInf info = it == m_fonts.end() ? FontInf() : it->second;
    m_fontHeight = info.height;
    m_fontWeight = info.weight;
    m_fontDescent = info.descent;
    m_fontFamily = info.family;
    m_bold = info.bold;
    m_italic = info.italic;
}

// Every text searched here is made by this class in lower case, so the search for the stroke
// attribute needs no case folding. Before the first selection the merge is the initial style;
// the clip attribute always comes last, so replacing it equals removing and appending it.
void CStyleManager::RebuildCurrentStyle() {
    m_currentStale = false;
    if (!m_currentStyleMerged) {
        m_currentStyle = kInitialCurrentStyle + m_clipAttr;
        return;
    }
    QByteArray s;
    s.reserve(m_penStyle.size() + 1 + m_brushStyle.size() + m_clipAttr.size());
    s += m_penStyle;
    s += ' ';
    if (m_brushStyle.contains("stroke=") && s.contains("stroke=")) RemoveStrokeAttribute(s);
    s += m_brushStyle;
    s += m_clipAttr;
    m_currentStyle = s;
}

int CStyleManager::EmfDeleteObject(unsigned int handle) {
    TRACE_ENTER();
    m_objects.erase(Key(handle));
    m_escapement = 0;
    TRACE_RETURN(0);
}

QByteArray CStyleManager::EmfGetBrush(unsigned int handle) {
    TRACE_ENTER();
    const auto it = m_objects.find(Key(handle));
    if (it == m_objects.end() || it->second.kind != KindBrush) TRACE_RETURN(QByteArray());
    const QByteArray& style = it->second.style;
    const auto equals = style.indexOf('=');
    TRACE_RETURN(equals < 0 ? style : style.mid(equals));
}

// The clip attribute is made here in one spelling, so it is found without case folding.
int CStyleManager::ExtSetClipRgn(const QByteArray& id) {
    TRACE_ENTER();
    m_clipAttr = id.isEmpty() ? QByteArray() : "clip-path=\"url(#" + id + ")\"";
    m_currentStale = true;
    m_penStale = true;
    TRACE_RETURN(1);
}

QByteArray CStyleManager::SetTextColor(unsigned int colour) {
    m_textColor = GetColorString(colour);
    RebuildTextStyle();
    return m_textColor;
}

QByteArray CStyleManager::SetBkgColor(unsigned int colour) {
    m_bkgColor = GetColorString(colour);
    return m_bkgColor;
}

void CStyleManager::SetBkgMode(float mode) {
    m_bkgMode = mode;
}

float CStyleManager::GetBkgMode() const {
    return m_bkgMode;
}

const QByteArray& CStyleManager::GetCurrentStyle() {
    if (m_currentStale) RebuildCurrentStyle();
    return m_currentStyle;
}

const QByteArray& CStyleManager::GetClipPath() {
    return m_clipAttr;
}

int CStyleManager::GetEscapement() {
    return m_escapement;
}

int CStyleManager::GetCurrentFontHeight() {
    return m_fontHeight;
}

int CStyleManager::GetCurrentFontDescent() {
    return m_fontDescent;
}

int CStyleManager::GetCurrentFontWeight() {
    return m_fontWeight;
}

QString CStyleManager::GetCurrentFontFamily() {
    return m_fontFamily;
}

bool CStyleManager::GetCurrentFontBold() {
    return m_bold;
}

bool CStyleManager::GetCurrentFontItalic() {
    return m_italic;
}
