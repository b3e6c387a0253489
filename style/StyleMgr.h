// CStyleManager: the graphics device's object table and drawing state, as SVG attribute text.
//
// Pens, brushes and fonts are kept under the metafile's own handle numbers as finished
// fragments of SVG attribute text; every selection rebuilds one current style that the writer
// appends to the elements it emits. Hatched brushes become <pattern> definitions.
#ifndef SVGMODULE_STYLEMGR_H
#define SVGMODULE_STYLEMGR_H

#include <QString>
#include <map>

#include "MetafileStructs.h"

class CStyleManager {
  public:
    // Object kinds of the object table.
    enum { KindEmpty = 0, KindPen = 1, KindBrush = 2, KindFont = 3 };
    // Result of EmfCreateBrush for a hatched brush whose pattern was made.
    static const int kPatternMade = 3567;

    struct EmfObject {
        int kind = KindEmpty;
        QString style;
    };
    struct FontInf {
        QString family;
        int weight = 0;
        int height = 0;
        int descent = 0;
        bool bold = false;
        bool italic = false;
    };

    CStyleManager();
    ~CStyleManager();

    // Object table.
    int EmfCreatePen(unsigned int handle, unsigned int style, unsigned int width,
                     unsigned int colour, const unsigned int* entries, unsigned int count);
    int EmfCreateBrush(unsigned int handle, unsigned int style, unsigned int hatch,
                       unsigned int colour);
    int EmfCreateFont(unsigned int handle, tagLOGFONTW lf);
    int MetaCreateFont(unsigned int handle, FONTSPEC wmfFont);
    int EmfSelectObject(unsigned long handle);
    int EmfDeleteObject(unsigned int handle);
    QString EmfGetBrush(unsigned int handle);

    // Hatch patterns.
    QString GetPattern(unsigned int handle, unsigned int hatch, unsigned int colour);
    QString GetPatternDef(unsigned int handle);

    // Clipping.
    int ExtSetClipRgn(const QString& id);

    // Colours and modes.
    QString SetTextColor(unsigned int colour);
    QString SetBkgColor(unsigned int colour);
    void SetBkgMode(float mode);
    float GetBkgMode() const;

    // Attribute texts.
    QString GetColorString(unsigned int colour);
    QString GetDashArray(int width, int penStyle, const unsigned int* entries, int count);
    QString GetCurrPenStyle();
    QString GetCurrBrushStyle();
    QString GetCurrTextStyle();

    // State getters.
    QString GetCurrentStyle();
    QString GetClipPath();
    int GetEscapement();
    int GetCurrentFontHeight();
    int GetCurrentFontDescent();
    int GetCurrentFontWeight();
    QString GetCurrentFontFamily();
    bool GetCurrentFontBold();
    bool GetCurrentFontItalic();

  private:
    // Merges pen, brush and clip texts into the current style.
    void RebuildCurrentStyle();
    // Applies a selected stock object; unknown handles change nothing.
    void SelectStockObject(unsigned int handle);
    // Makes the font under `key` the selected one, metrics included.
    void SelectFont(int key, const QString& text);

    // Attribute texts of created objects.
    QString PenText(unsigned int style, unsigned int width, unsigned int colour,
                    const unsigned int* entries, unsigned int count);
    QString SolidBrushText(unsigned int colour);
    static QString EmfFontText(const QString& family, const tagLOGFONTW& lf);
    static QString WmfFontText(const QString& family, const FONTSPEC& wmfFont);

    int m_patternCounter;
    QString m_penStyle;
    QString m_brushStyle;
    QString m_bkgColor;
    float m_bkgMode;
    QString m_textColor;
    QString m_fontStyle;
    QString m_clipAttr;
    QString m_currentStyle;
    QString m_fontFamily;
    std::map<int, EmfObject> m_objects;
    std::map<int, QString> m_patterns;
    std::map<int, FontInf> m_fonts;
    const char* m_hatchTemplates[6];
    bool m_bold;
    bool m_italic;
    int m_escapement;
    int m_fontHeight;
    int m_fontDescent;
    int m_fontWeight;
    unsigned int m_lastFontHandle;
};

#endif
