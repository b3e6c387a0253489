// CMySVGWriter: turns drawing operations in output coordinates into SVG 1.1 text.
//
// One writer serves one conversion: CreateXML opens the document, drawing operations append
// elements to it as UTF-8, Close writes the footer and TakeSVGOutput hands the bytes over. A
// style argument is SVG attribute text (UTF-8) pasted just before "/>"; an empty style means
// the writer's current style.
#ifndef SVGMODULE_SVGWRITER_H
#define SVGMODULE_SVGWRITER_H

#include <QByteArray>
#include <QString>
#include <vector>

#include "MetafileStructs.h"
#include "style/StyleMgr.h"
#include "svg/SvgBuffer.h"
#include "svg/TextRun.h"

namespace dib {
struct DibSource;
}

class CMySVGWriter {
  public:
    CMySVGWriter();
    ~CMySVGWriter();
    CMySVGWriter(const CMySVGWriter&) = delete;
    CMySVGWriter& operator=(const CMySVGWriter&) = delete;

    // Document.
    bool CreateXML(int width, int height);
    bool Close();
    // The document, and the path being collected, may each grow to `bytes` (a conversion sets
    // OutputBudget of its input, svg/SvgBuffer.h); a write past it throws OutputLimitReached.
    void LimitOutput(size_t bytes);
    size_t OutputSize() const { return m_out.size(); }
    // Ends the drawing at `size` bytes of document: what was written after it and the path
    // being collected are dropped and the limit is lifted, so that the document can be closed.
    void CutOutput(size_t size);
    // The document so far, as text.
    QString GetSVGOutput();
    // Hands the document over as UTF-8 bytes; the writer is left empty.
    QByteArray TakeSVGOutput();
    bool ConvertToValidXML(QString& text);
    bool SetWorldTransform(float eM11, float eM12, float eM21, float eM22, float eDx, float eDy);
    bool ModifyWorldTransform(float eM11, float eM12, float eM21, float eM22, float eDx, float eDy,
                              unsigned long mode);
    bool SetBkMode(int mode);

    // Basic shapes.
    bool MoveTo(int x, int y);
    bool DrawLine(int x1, int y1, int x2, int y2, const QByteArray& style);
    bool DrawLineTo(int x, int y, const QByteArray& style);
    bool DrawPolyLine(const tagPOINT* points, unsigned int count, bool closed, bool fromCurrent,
                      const QByteArray& style);
    bool DrawPolyLine(const tagPOINTS* points, unsigned int count, bool closed, bool fromCurrent,
                      const QByteArray& style);
    QByteArray GetPointsString(const tagPOINT* points, unsigned int count);
    bool DrawPolyPolygon(const tagPOINT* points, const unsigned short* counts,
                         unsigned int polygons, const QByteArray& style);
    bool DrawRect(int x, int y, int width, int height, const QByteArray& style, int rx, int ry);
    bool DrawCircle(int cx, int cy, int r, const QByteArray& style);
    bool DrawEllipse(int cx, int cy, int rx, int ry, const QByteArray& style);

    // Paths and curves.
    bool StartPath();
    bool EndPath();
    bool AbortPath();
    // Both append to the collected path data.
    bool AddToPath(const tagPOINT* points, unsigned int count);
    bool AddToPath(const QByteArray& data);
    QByteArray GetPathString(const tagPOINT* points, unsigned int count);
    bool CloseFigure();
    bool StrokePath();
    bool FillPath();
    QByteArray GetBzrCurveData(const tagPOINT* points, unsigned int count);
    bool DrawPolyBeziers(const tagPOINT* points, unsigned int count, bool fromCurrent,
                         const QByteArray& style);
    bool DrawPolyBeziers(const tagPOINTS* points, unsigned int count, bool fromCurrent,
                         const QByteArray& style);
    bool DrawMixedPoly(const tagPOINT* points, const unsigned char* types, unsigned int count,
                       const QByteArray& style);
    bool DrawMixedPoly(const tagPOINTS* points, const unsigned char* types, unsigned int count,
                       const QByteArray& style);

    // Arcs, chords and pies.
    bool DrawArc(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2, int y2,
                 const QByteArray& style);
    bool DrawArcTo(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2,
                   int y2, const QByteArray& style);
    bool DrawChord(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2,
                   int y2, const QByteArray& style);
    bool DrawPie(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2, int y2,
                 int cx, int cy, const QByteArray& style);

    // Text.
    bool TextOut(const TextRun& text, tagPOINT position, tagRECT rect, const QByteArray& style);
    bool MetaTextOut(const TextRun& text, tagPOINT position, const char* extra,
                     const QByteArray& style);
    bool SmallTextOut(const TextRun& text, _POINTL position);
    bool GetPointOfReference(tagPOINT& point, tagRECT rect);
    bool GetTextDimensions(int& width, int& height, int& descent, const TextRun& text);
    bool CalculateRect(tagRECT& rect, const TextRun& text);

    // Text state.
    bool SetTextAlign(int flags);
    bool SetTextColor(unsigned int colour);
    bool SetBkgMode(float opacity);
    bool SetBkgColor(unsigned int colour);
    bool CreateFont(unsigned int handle, tagLOGFONTW font);
    bool MetaCreateFont(unsigned int handle, FONTSPEC font);

    // Regions and clipping. Rectangle counts are taken as signed: 0 or less draws nothing.
    bool FillRgn(unsigned int count, const tagRECT* rects, unsigned int brush);
    bool FrameRgn(unsigned int count, const tagRECT* rects, unsigned int brush, unsigned int width,
                  unsigned int height);
    bool SetExtClipRgn(unsigned int count, const tagRECT* rects);
    bool SelectClipPath(unsigned int mode);

    // Objects.
    bool SelectObject(unsigned long handle);
    bool DeleteObject(unsigned int handle);
    bool CreatePen(unsigned int handle, unsigned int style, unsigned int width, unsigned int colour,
                   const unsigned int* entries, unsigned int count);
    bool CreateBrushI(unsigned int handle, unsigned int style, unsigned int hatch,
                      unsigned int colour);

    // Pattern fill.
    bool PatBlt(int x, int y, int width, int height);

    // Bitmaps (SVGWriterBitmaps.cpp): the base64 text of a bitmap's PNG image, empty when it
    // gives no image; the image element for such a text.
    QByteArray OnRasterOperation(const dib::DibSource& bitmap, int op, int pad);
    bool WriteBlt(int x, int y, int width, int height, const QByteArray& text);

    // Read access for the interpreters and tests.
    const tagXFORM& WorldTransform() const { return m_xform; }
    CStyleManager& StyleManager() { return m_styleMgr; }

  private:
    const QByteArray& EffectiveStyle(const QByteArray& style) {
        return style.isEmpty() ? CurrentStyle() : style;
    }
    // The style manager's current style, fetched again after a selection or clip change.
    const QByteArray& CurrentStyle() {
        if (m_currStyleStale) {
            m_currStyle = m_styleMgr.GetCurrentStyle();
            m_currStyleStale = false;
        }
        return m_currStyle;
    }
    // The points text of GetPointsString, written into `out`.
    void GetPointsString(const tagPOINT* points, unsigned int count, SvgBuffer& out);
    // The subpath text of GetPathString, written into `out`.
    void GetPathString(const tagPOINT* points, unsigned int count, SvgBuffer& out);
    // The curve commands of GetBzrCurveData, written into `out`.
    void GetBzrCurveData(const tagPOINT* points, unsigned int count, SvgBuffer& out);
    // "M", the start point and the curve commands of a poly-Bézier.
    void WriteBezierPath(SvgBuffer& out, const tagPOINT& start, const tagPOINT* curve,
                         unsigned int count);
    bool AddToPath(const SvgBuffer& data);
    // Writes the style with one space put in front when it would otherwise run into the
    // attribute before it (the style manager's default pen text has no leading space).
    void WriteSeparatedStyle(const QByteArray& style);
    // "C" and the three points of one cubic segment starting at `first`.
    static void WriteBezierSegment(SvgBuffer& out, const tagPOINT* first);
    // Writes the path data of the poly-draw point at `index`; returns how many points it took,
    // 0 when a curve lacks its further points.
    static unsigned int WritePolyDrawPoint(SvgBuffer& out, const tagPOINT* points,
                                           const unsigned char* types, unsigned int index,
                                           unsigned int count);
    // Writes each rectangle with DrawRect in `style`.
    void DrawRects(unsigned int count, const tagRECT* rects, const QByteArray& style);
    // Opens the clip path definition numbered m_clipId; CloseClip ends it and makes it the
    // clip of what follows.
    void OpenClip();
    void CloseClip();
    // The start, radii, flags and relative end of an arc's path data, a space before the "a"
    // command when `spaced`.
    void WriteArcData(int x1, int y1, bool spaced, int rx, int ry, int rotation, int large,
                      int sweep, int x2, int y2);
    // Writes one text element at (x, y), inside a rotation group when the font is rotated.
    enum class TextForm { Emf, Small, Meta };
    void WriteTextElement(TextForm form, int x, int y, const QByteArray& style,
                          const TextRun& text);
    // 16-bit point lists sign-extended to 32 bits; empty for a null list.
    static std::vector<tagPOINT> WidenPoints(const tagPOINTS* points, unsigned int count);

    QByteArray m_currStyle;
    bool m_currStyleStale;
    QByteArray m_bkColor;
    QByteArray m_textFill;
    SvgBuffer m_pathData;
    SvgBuffer m_out;
    int m_textAlign;
    int m_curX;
    int m_curY;
    bool m_inPath;
    bool m_clipSelected;
    int m_figStartX;
    int m_figStartY;
    int m_bkMode;
    int m_clipId;
    tagXFORM m_xform;
    CStyleManager m_styleMgr;
};

#endif
