// CMySVGWriter: turns drawing operations in output coordinates into SVG 1.1 text.
//
// One writer serves one conversion: CreateXML opens the document, drawing operations append
// elements through the text stream, Close writes the footer and GetSVGOutput hands the text
// back. A style argument is SVG attribute text pasted just before "/>"; an empty style means
// the writer's current style.
#ifndef SVGMODULE_SVGWRITER_H
#define SVGMODULE_SVGWRITER_H

#include <QString>
#include <QTextStream>
#include <vector>

#include "MetafileStructs.h"
#include "style/StyleMgr.h"
#include "svg/TextRun.h"

class CMySVGWriter {
  public:
    CMySVGWriter();
    ~CMySVGWriter();
    CMySVGWriter(const CMySVGWriter&) = delete;
    CMySVGWriter& operator=(const CMySVGWriter&) = delete;

    // Document.
    bool CreateXML(int width, int height);
    bool Close();
    QString GetSVGOutput();
    bool ConvertToValidXML(QString& text);
    bool SetWorldTransform(float eM11, float eM12, float eM21, float eM22, float eDx, float eDy);
    bool ModifyWorldTransform(float eM11, float eM12, float eM21, float eM22, float eDx, float eDy,
                              unsigned long mode);
    bool SetBkMode(int mode);

    // Basic shapes.
    bool MoveTo(int x, int y);
    bool DrawLine(int x1, int y1, int x2, int y2, const QString& style);
    bool DrawLineTo(int x, int y, const QString& style);
    bool DrawPolyLine(const tagPOINT* points, unsigned int count, bool closed, bool fromCurrent,
                      const QString& style);
    bool DrawPolyLine(const tagPOINTS* points, unsigned int count, bool closed, bool fromCurrent,
                      const QString& style);
    QString GetPointsString(const tagPOINT* points, unsigned int count);
    bool DrawPolyPolygon(const tagPOINT* points, const unsigned short* counts,
                         unsigned int polygons, const QString& style);
    bool DrawRect(int x, int y, int width, int height, const QString& style, int rx, int ry);
    bool DrawCircle(int cx, int cy, int r, const QString& style);
    bool DrawEllipse(int cx, int cy, int rx, int ry, const QString& style);

    // Paths and curves.
    bool StartPath();
    bool EndPath();
    bool AbortPath();
    QString AddToPath(const tagPOINT* points, unsigned int count);
    QString AddToPath(const QString& data);
    QString GetPathString(const tagPOINT* points, unsigned int count);
    bool CloseFigure();
    bool StrokePath();
    bool FillPath();
    QString GetBzrCurveData(const tagPOINT* points, unsigned int count);
    bool DrawPolyBeziers(const tagPOINT* points, unsigned int count, bool fromCurrent,
                         const QString& style);
    bool DrawPolyBeziers(const tagPOINTS* points, unsigned int count, bool fromCurrent,
                         const QString& style);
    bool DrawMixedPoly(const tagPOINT* points, const unsigned char* types, unsigned int count,
                       const QString& style);
    bool DrawMixedPoly(const tagPOINTS* points, const unsigned char* types, unsigned int count,
                       const QString& style);

    // Arcs, chords and pies.
    bool DrawArc(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2, int y2,
                 const QString& style);
    bool DrawArcTo(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2,
                   int y2, const QString& style);
    bool DrawChord(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2,
                   int y2, const QString& style);
    bool DrawPie(int x1, int y1, int rx, int ry, int rotation, int large, int sweep, int x2, int y2,
                 int cx, int cy, const QString& style);

    // Text.
    bool TextOut(const TextRun& text, tagPOINT position, tagRECT rect, const QString& style);
    bool MetaTextOut(const TextRun& text, tagPOINT position, const char* extra,
                     const QString& style);
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

    // Objects.
    bool SelectObject(unsigned long handle);
    bool DeleteObject(unsigned int handle);
    bool CreatePen(unsigned int handle, unsigned int style, unsigned int width, unsigned int colour,
                   const unsigned int* entries, unsigned int count);
    bool CreateBrushI(unsigned int handle, unsigned int style, unsigned int hatch,
                      unsigned int colour);

    // Pattern fill.
    bool PatBlt(int x, int y, int width, int height);

    // Read access for the interpreters and tests.
    const tagXFORM& WorldTransform() const { return m_xform; }
    CStyleManager& StyleManager() { return m_styleMgr; }

  private:
    // Unit tests set the clip flag that clip-path selection sets in a conversion.
    friend class WriterTestPeer;

    const QString& EffectiveStyle(const QString& style) const {
        return style.isEmpty() ? m_currStyle : style;
    }
    // "x,y" of one point in path and points data.
    static QString PointText(int x, int y);
    // The style with one space put in front when it would otherwise run into the attribute
    // before it (the style manager's default pen text has no leading space).
    static QString SeparatedStyle(const QString& style);
    // "C" and the three points of one cubic segment starting at `first`.
    static QString BezierSegment(const tagPOINT* first);
    // Appends the path data of the poly-draw point at `index`; returns how many points it took,
    // 0 when a curve lacks its further points.
    static unsigned int AppendPolyDrawPoint(QString& data, const tagPOINT* points,
                                            const unsigned char* types, unsigned int index,
                                            unsigned int count);
    // The start, radii, flags and relative end of an arc's path data; `separator` goes
    // between the start point and the "a" command.
    void WriteArcData(int x1, int y1, const char* separator, int rx, int ry, int rotation,
                      int large, int sweep, int x2, int y2);
    // Writes one text element at (x, y), inside a rotation group when the font is rotated.
    enum class TextForm { Emf, Small, Meta };
    void WriteTextElement(TextForm form, int x, int y, const QString& style, const TextRun& text);
    // 16-bit point lists sign-extended to 32 bits; empty for a null list.
    static std::vector<tagPOINT> WidenPoints(const tagPOINTS* points, unsigned int count);

    QString m_currStyle;
    QString m_bkColor;
    QString m_textFill;
    QString m_pathData;
    QTextStream m_stream;
    QString m_output;
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
