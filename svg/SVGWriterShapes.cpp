// Placeholder until the shape, path and object operations land.
#include "svg/SVGWriter.h"

bool CMySVGWriter::MoveTo(int x, int y) {
    m_curX = x;
    m_curY = y;
    return true;
}
bool CMySVGWriter::DrawLine(int, int, int, int, const QString&) {
    return true;
}
bool CMySVGWriter::DrawLineTo(int, int, const QString&) {
    return true;
}
bool CMySVGWriter::DrawPolyLine(const tagPOINT*, unsigned int, bool, bool, const QString&) {
    return true;
}
bool CMySVGWriter::DrawPolyLine(const tagPOINTS*, unsigned int, bool, bool, const QString&) {
    return true;
}
QString CMySVGWriter::GetPointsString(const tagPOINT*, unsigned int) {
    return QString();
}
bool CMySVGWriter::DrawPolyPolygon(const tagPOINT*, const unsigned short*, unsigned int,
                                   const QString&) {
    return true;
}
bool CMySVGWriter::DrawRect(int, int, int, int, const QString&, int, int) {
    return true;
}
bool CMySVGWriter::DrawCircle(int, int, int, const QString&) {
    return true;
}
bool CMySVGWriter::DrawEllipse(int, int, int, int, const QString&) {
    return true;
}
bool CMySVGWriter::StartPath() {
    return true;
}
bool CMySVGWriter::EndPath() {
    return true;
}
bool CMySVGWriter::AbortPath() {
    return true;
}
QString CMySVGWriter::AddToPath(const tagPOINT*, unsigned int) {
    return QString();
}
QString CMySVGWriter::AddToPath(const QString&) {
    return QString();
}
QString CMySVGWriter::GetPathString(const tagPOINT*, unsigned int) {
    return QString();
}
bool CMySVGWriter::CloseFigure() {
    return true;
}
bool CMySVGWriter::StrokePath() {
    return true;
}
bool CMySVGWriter::FillPath() {
    return true;
}
QString CMySVGWriter::GetBzrCurveData(const tagPOINT*, unsigned int) {
    return QString();
}
bool CMySVGWriter::DrawPolyBeziers(const tagPOINT*, unsigned int, bool, const QString&) {
    return true;
}
bool CMySVGWriter::DrawPolyBeziers(const tagPOINTS*, unsigned int, bool, const QString&) {
    return true;
}
bool CMySVGWriter::DrawMixedPoly(const tagPOINT*, const unsigned char*, unsigned int,
                                 const QString&) {
    return true;
}
bool CMySVGWriter::DrawMixedPoly(const tagPOINTS*, const unsigned char*, unsigned int,
                                 const QString&) {
    return true;
}
bool CMySVGWriter::SetTextAlign(int flags) {
    m_textAlign = flags;
    return true;
}
bool CMySVGWriter::SetTextColor(unsigned int) {
    return true;
}
bool CMySVGWriter::SetBkgMode(float) {
    return true;
}
bool CMySVGWriter::SetBkgColor(unsigned int) {
    return true;
}
bool CMySVGWriter::CreateFont(unsigned int, tagLOGFONTW) {
    return true;
}
bool CMySVGWriter::MetaCreateFont(unsigned int, FONTSPEC) {
    return true;
}
bool CMySVGWriter::SelectObject(unsigned long) {
    return true;
}
bool CMySVGWriter::DeleteObject(unsigned int) {
    return true;
}
bool CMySVGWriter::CreatePen(unsigned int, unsigned int, unsigned int, unsigned int,
                             const unsigned int*, unsigned int) {
    return true;
}
bool CMySVGWriter::CreateBrushI(unsigned int, unsigned int, unsigned int, unsigned int) {
    return true;
}
bool CMySVGWriter::PatBlt(int, int, int, int) {
    return true;
}
