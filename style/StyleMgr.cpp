// The object table and drawing state of the style manager.
//
// Objects are kept by the metafile's handle as finished attribute text. Selecting an object
// copies its text into the pen, brush or font slot and rebuilds the current style; EMF stock
// objects (handles with bit 31 set) are known by number and never have table entries.
#define TRACE_FILE "StyleMgr"
#include "style/StyleMgr.h"

#include <cstdint>
#include <cstdlib>

#include "api/Trace.h"
#include "style/HatchPatterns.h"

namespace {

const unsigned int kStockNullPen = 0x80000008;
const unsigned int kStockDeviceDefaultFont = 0x8000000E;
const int kFontDefaultDescent = 3;
const int kFaceNameLength = 32;

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
    QString name;
    for (int i = 0; i < kFaceNameLength && lf.lfFaceName[i] != 0; ++i)
        name += QChar(static_cast<ushort>(lf.lfFaceName[i]));
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
void RemoveStrokeAttribute(QString& s) {
    const int p = s.indexOf(QLatin1String("stroke"));
    if (p < 0) return;
    const int q1 = s.indexOf(QLatin1Char('"'), p);
    if (q1 < 0) return;
    const int q2 = s.indexOf(QLatin1Char('"'), q1 + 1);
    if (q2 < 0) return;
    s.remove(p, q2 - p + 1);
}

}  // namespace

// Out-of-line definition so the constant can be bound to references.
const int CStyleManager::kPatternMade;

CStyleManager::CStyleManager()
    : m_patternCounter(0),
      m_penStyle(QStringLiteral("stroke=\"none\" stroke-width=\"1\" ")),
      m_brushStyle(QStringLiteral("fill=\"white\"")),
      m_bkgColor(QStringLiteral("none")),
      m_bkgMode(0.0f),
      m_textColor(QStringLiteral("black")),
      m_fontStyle(QStringLiteral("  ")),
      m_currentStyle(QStringLiteral("stroke=\"black\" stroke-width=\"1\" fill=\"none\" ")),
      m_hatchTemplates(),
      m_bold(false),
      m_italic(false),
      m_escapement(0),
      m_fontHeight(14),
      m_fontDescent(kFontDefaultDescent),
      m_fontWeight(0),
      // No EMF font yet: DEVICE_DEFAULT_FONT then stands for itself and selects nothing.
      m_lastFontHandle(kStockDeviceDefaultFont) {
    TRACE_ENTER();
    for (int i = 0; i < hatch::kStyleCount; ++i) m_hatchTemplates[i] = hatch::Template(i);
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
    QString text;
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
    info.weight = lf.lfWeight;
    info.height = AbsHeight(lf.lfHeight);
    info.descent = kFontDefaultDescent;
    info.bold = lf.lfWeight > 400;
    info.italic = lf.lfItalic != 0;

    EmfObject& font = m_objects[Key(handle)];
    font.kind = KindFont;
    font.style = EmfFontText(family, lf);
    m_lastFontHandle = handle;
    TRACE_RETURN(0);
}

int CStyleManager::MetaCreateFont(unsigned int handle, FONTSPEC wmfFont) {
    TRACE_ENTER();
    const QString family = WmfFaceName(wmfFont);
    const uint16_t weight = static_cast<uint16_t>(wmfFont.Weight);

    FontInf& info = m_fonts[Key(handle)];
    info.family = family;
    info.weight = weight;
    info.height = static_cast<uint16_t>(wmfFont.Height);
    info.descent = kFontDefaultDescent;
    info.bold = weight > 400;
    info.italic = wmfFont.Italic != 0;

    EmfObject& font = m_objects[Key(handle)];
    font.kind = KindFont;
    font.style = WmfFontText(family, wmfFont);
    TRACE_RETURN(0);
}

int CStyleManager::EmfSelectObject(unsigned long handle) {
    TRACE_ENTER();
    unsigned int h = static_cast<uint32_t>(handle);
    if (h == kStockDeviceDefaultFont) h = m_lastFontHandle;
    const EmfObject& object = m_objects[Key(h)];
    switch (object.kind) {
        case KindPen:
            m_penStyle = object.style;
            break;
        case KindBrush:
            m_brushStyle =
                object.style.isEmpty() ? QStringLiteral(" fill=\"none\" ") : object.style;
            break;
        case KindFont:
            SelectFont(Key(h), object.style);
            break;
        default:
            SelectStockObject(h);
            break;
    }
    RebuildCurrentStyle();
    TRACE_RETURN(0);
}

void CStyleManager::SelectStockObject(unsigned int handle) {
    if (const char* brush = StockBrushText(handle))
        m_brushStyle = QString::fromLatin1(brush);
    else if (handle == kStockNullPen)
        m_penStyle = QStringLiteral(" stroke=\"none\" ");
}

void CStyleManager::SelectFont(int key, const QString& text) {
    m_fontStyle = text;
    const FontInf& info = m_fonts[key];
    m_fontHeight = info.height;
    m_fontWeight = info.weight;
    m_fontDescent = info.descent;
    m_fontFamily = info.family;
    m_bold = info.bold;
    m_italic = info.italic;
}

void CStyleManager::RebuildCurrentStyle() {
    QString s = m_penStyle + QLatin1Char(' ');
    const QLatin1String strokeAttr("stroke=");
    if (m_brushStyle.contains(strokeAttr, Qt::CaseInsensitive) &&
        s.contains(strokeAttr, Qt::CaseInsensitive))
        RemoveStrokeAttribute(s);
    s += m_brushStyle;
    if (!m_clipAttr.isEmpty()) s += m_clipAttr;
    m_currentStyle = s;
}

int CStyleManager::EmfDeleteObject(unsigned int handle) {
    TRACE_ENTER();
    m_objects.erase(Key(handle));
    m_escapement = 0;
    TRACE_RETURN(0);
}

QString CStyleManager::EmfGetBrush(unsigned int handle) {
    TRACE_ENTER();
    const EmfObject& object = m_objects[Key(handle)];
    if (object.kind != KindBrush) TRACE_RETURN(QString());
    const int equals = object.style.indexOf(QLatin1Char('='));
    TRACE_RETURN(equals < 0 ? object.style : object.style.mid(equals));
}

int CStyleManager::ExtSetClipRgn(const QString& id) {
    TRACE_ENTER();
    if (!m_clipAttr.isEmpty()) m_currentStyle.remove(m_clipAttr, Qt::CaseInsensitive);
    m_clipAttr =
        id.isEmpty() ? QString() : QStringLiteral("clip-path=\"url(#") + id + QStringLiteral(")\"");
    if (!m_clipAttr.isEmpty()) m_currentStyle += m_clipAttr;
    TRACE_RETURN(1);
}

QString CStyleManager::SetTextColor(unsigned int colour) {
    m_textColor = GetColorString(colour);
    return m_textColor;
}

QString CStyleManager::SetBkgColor(unsigned int colour) {
    m_bkgColor = GetColorString(colour);
    return m_bkgColor;
}

void CStyleManager::SetBkgMode(float mode) {
    m_bkgMode = mode;
}

float CStyleManager::GetBkgMode() const {
    return m_bkgMode;
}

QString CStyleManager::GetCurrentStyle() {
    return m_currentStyle;
}

QString CStyleManager::GetClipPath() {
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
