// Placeholder until the style manager lands.
#define TRACE_FILE "StyleMgr"
#include "style/StyleMgr.h"

#include "api/Trace.h"

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
      m_fontDescent(3),
      m_fontWeight(0),
      m_lastFontHandle(0) {}

CStyleManager::~CStyleManager() {}
int CStyleManager::EmfCreatePen(unsigned int, unsigned int, unsigned int, unsigned int,
                                const unsigned int*, unsigned int) {
    return 1;
}
int CStyleManager::EmfCreateBrush(unsigned int, unsigned int, unsigned int, unsigned int) {
    return 0;
}
int CStyleManager::EmfCreateFont(unsigned int, tagLOGFONTW) {
    return 0;
}
int CStyleManager::MetaCreateFont(unsigned int, FONTSPEC) {
    return 0;
}
int CStyleManager::EmfSelectObject(unsigned long) {
    return 0;
}
int CStyleManager::EmfDeleteObject(unsigned int) {
    return 0;
}
QString CStyleManager::EmfGetBrush(unsigned int) {
    return QString();
}
QString CStyleManager::GetPattern(unsigned int, unsigned int, unsigned int) {
    return QString();
}
QString CStyleManager::GetPatternDef(unsigned int) {
    return QString();
}
int CStyleManager::ExtSetClipRgn(const QString&) {
    return 1;
}
QString CStyleManager::SetTextColor(unsigned int) {
    return m_textColor;
}
QString CStyleManager::SetBkgColor(unsigned int) {
    return m_bkgColor;
}
void CStyleManager::SetBkgMode(float mode) {
    m_bkgMode = mode;
}
float CStyleManager::GetBkgMode() const {
    return m_bkgMode;
}
QString CStyleManager::GetColorString(unsigned int) {
    return QString();
}
QString CStyleManager::GetDashArray(int, int, const unsigned int*, int) {
    return QString();
}
QString CStyleManager::GetCurrPenStyle() {
    return m_penStyle;
}
QString CStyleManager::GetCurrBrushStyle() {
    return m_brushStyle;
}
QString CStyleManager::GetCurrTextStyle() {
    return m_fontStyle;
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
void CStyleManager::RebuildCurrentStyle() {}
