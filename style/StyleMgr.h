// CStyleManager: the graphics device's object table and drawing state, as SVG attribute text.
//
// Pens, brushes and fonts are kept under the metafile's own handle numbers as finished
// fragments of SVG attribute text (UTF-8); every selection rebuilds one current style that the
// writer appends to the elements it emits. Hatched brushes become <pattern> definitions.
// Selections and clip changes only share texts and mark the composed styles out of date; a
// composed style is rebuilt when it is next asked for, so its cost goes with the output that
// uses it, never with the number of selections.
#ifndef SVGMODULE_STYLEMGR_H
#define SVGMODULE_STYLEMGR_H

#include <QByteArray>
#include <QString>
#include <cstddef>
#include <unordered_map>

#include "MetafileStructs.h"

class CStyleManager {
  public:
    // Object kinds of the object table.
    enum { KindEmpty = 0, KindPen = 1, KindBrush = 2, KindFont = 3 };
    // Result of EmfCreateBrush for a hatched brush whose pattern was made.
    static const int kPatternMade = 3567;

    struct EmfObject {
        int kind = KindEmpty;
        QByteArray style;
    };
    struct FontInf {
        QString family;
        QByteArray familyText;  // the family as UTF-8, for attribute texts
        int weight = 0;
        int height = 0;
        int descent = 0;
        bool bold = false;
        bool italic = false;
    };

    // Handles are any 32-bit numbers a file chooses. They are hashed with a salt drawn when
    // the process starts, so that no file can pick handles that share buckets: every lookup
    // costs the same however many objects a file makes.
    struct HandleHash {
        size_t operator()(int handle) const;
    };
    template <class T>
    using HandleTable = std::unordered_map<int, T, HandleHash>;

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
    QByteArray EmfGetBrush(unsigned int handle);

    // Hatch patterns.
    QByteArray GetPattern(unsigned int handle, unsigned int hatch, unsigned int colour);
    QByteArray GetPatternDef(unsigned int handle);

    // Clipping.
    int ExtSetClipRgn(const QByteArray& id);

    // Colours and modes.
    QByteArray SetTextColor(unsigned int colour);
    QByteArray SetBkgColor(unsigned int colour);
    void SetBkgMode(float mode);
    float GetBkgMode() const;

    // Attribute texts.
    QByteArray GetColorString(unsigned int colour);
    QByteArray GetDashArray(int width, int penStyle, const unsigned int* entries, int count);
    const QByteArray& GetCurrPenStyle();
    const QByteArray& GetCurrBrushStyle();
    const QByteArray& GetCurrTextStyle();

    // State getters.
    const QByteArray& GetCurrentStyle();
    const QByteArray& GetClipPath();
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
    // The composed pen, brush and text styles, after a change of what they are made of.
    void RebuildPenStyle();
    void RebuildBrushStyle();
    void RebuildTextStyle();
    // Applies a selected stock object; unknown handles change nothing.
    void SelectStockObject(unsigned int handle);
    // Take a new pen or brush text.
    void SetPenStyle(const QByteArray& text);
    void SetBrushStyle(const QByteArray& text);
    // Makes the font under `key` the selected one, metrics included.
    void SelectFont(int key, const QByteArray& text);

    // Attribute texts of created objects.
    QByteArray PenText(unsigned int style, unsigned int width, unsigned int colour,
                       const unsigned int* entries, unsigned int count);
    QByteArray SolidBrushText(unsigned int colour);
    static QByteArray EmfFontText(const QByteArray& family, const tagLOGFONTW& lf);
    static QByteArray WmfFontText(const QByteArray& family, const FONTSPEC& wmfFont);

    int m_patternCounter;
    QByteArray m_penStyle;
    QByteArray m_brushStyle;
    QByteArray m_bkgColor;
    float m_bkgMode;
    QByteArray m_textColor;
    QByteArray m_fontStyle;
    QByteArray m_clipAttr;
    QByteArray m_currentStyle;
    QString m_fontFamily;
    HandleTable<EmfObject> m_objects;
    HandleTable<QByteArray> m_patterns;
    HandleTable<FontInf> m_fonts;
    const char* m_hatchTemplates[6];
    bool m_bold;
    bool m_italic;
    int m_escapement;
    int m_fontHeight;
    int m_fontDescent;
    int m_fontWeight;
    unsigned int m_lastFontHandle;
    // Ready-made results of GetCurrPenStyle, GetCurrBrushStyle and GetCurrTextStyle.
    QByteArray m_penComposed;
    QByteArray m_brushComposed;
    QByteArray m_textComposed;
    // The current style has been merged from pen and brush at least once (the initial one is
    // not such a merge).
    bool m_currentStyleMerged;
    // The composed styles that no longer match their parts.
    bool m_currentStale;
    bool m_penStale;
    bool m_brushStale;
};

#endif
