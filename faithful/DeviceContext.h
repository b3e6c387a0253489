// The device-context model of the faithful interpreter: the drawing state a metafile's records
// change (mapping, transforms, colours, modes, selected objects, the path bracket), the object
// tables of both formats, and the drawing calls. The record decoders of EMF and WMF decode
// their fields and call this class in logical coordinates; it resolves every coordinate and
// style into DrawOps in device space and sends them to a DrawSink.
//
// Hostile values are absorbed here: a mapping that would divide by zero or a singular world
// transform is refused as the drawing system refuses it (the state stays as it was), every
// computed device value that is not finite drops the drawing, and saved states are bounded.
#ifndef SVGMODULE_FAITHFUL_DEVICECONTEXT_H
#define SVGMODULE_FAITHFUL_DEVICECONTEXT_H

#include <QImage>
#include <QString>
#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <vector>

#include "faithful/DrawOps.h"
#include "faithful/Geometry.h"

namespace faithful {

// Values of the metafile formats, shared by both.
namespace gdi {
// Map modes.
enum : int {
    MM_TEXT = 1,
    MM_LOMETRIC = 2,
    MM_HIMETRIC = 3,
    MM_LOENGLISH = 4,
    MM_HIENGLISH = 5,
    MM_TWIPS = 6,
    MM_ISOTROPIC = 7,
    MM_ANISOTROPIC = 8
};
// World transform modify modes.
enum : int { MWT_IDENTITY = 1, MWT_LEFTMULTIPLY = 2, MWT_RIGHTMULTIPLY = 3, MWT_SET = 4 };
// Background modes, polygon fill modes, arc directions.
enum : int { TRANSPARENT = 1, OPAQUE = 2 };
enum : int { ALTERNATE = 1, WINDING = 2 };
enum : int { AD_COUNTERCLOCKWISE = 1, AD_CLOCKWISE = 2 };
// Binary raster operations (ROP2).
enum : int {
    R2_BLACK = 1,
    R2_NOTMERGEPEN = 2,
    R2_MASKNOTPEN = 3,
    R2_NOTCOPYPEN = 4,
    R2_MASKPENNOT = 5,
    R2_NOT = 6,
    R2_XORPEN = 7,
    R2_NOTMASKPEN = 8,
    R2_MASKPEN = 9,
    R2_NOTXORPEN = 10,
    R2_NOP = 11,
    R2_MERGENOTPEN = 12,
    R2_COPYPEN = 13,
    R2_MERGEPENNOT = 14,
    R2_MERGEPEN = 15,
    R2_WHITE = 16
};
// Pen styles (the low nibble), end caps, joins and type.
enum : uint32_t {
    PS_SOLID = 0,
    PS_DASH = 1,
    PS_DOT = 2,
    PS_DASHDOT = 3,
    PS_DASHDOTDOT = 4,
    PS_NULL = 5,
    PS_INSIDEFRAME = 6,
    PS_USERSTYLE = 7,
    PS_ALTERNATE = 8,
    PS_STYLE_MASK = 0x0000000F,
    PS_ENDCAP_ROUND = 0x00000000,
    PS_ENDCAP_SQUARE = 0x00000100,
    PS_ENDCAP_FLAT = 0x00000200,
    PS_ENDCAP_MASK = 0x00000F00,
    PS_JOIN_ROUND = 0x00000000,
    PS_JOIN_BEVEL = 0x00001000,
    PS_JOIN_MITER = 0x00002000,
    PS_JOIN_MASK = 0x0000F000,
    PS_GEOMETRIC = 0x00010000
};
// Brush styles.
enum : uint32_t {
    BS_SOLID = 0,
    BS_NULL = 1,
    BS_HATCHED = 2,
    BS_PATTERN = 3,
    BS_DIBPATTERN = 5,
    BS_DIBPATTERNPT = 6
};
// Raster operations of PatBlt.
enum : uint32_t {
    PATCOPY = 0x00F00021,
    PATINVERT = 0x005A0049,
    DSTINVERT = 0x00550009,
    BLACKNESS = 0x00000042,
    WHITENESS = 0x00FF0062
};
// Types of the points of PolyDraw.
enum : uint8_t { PT_CLOSEFIGURE = 1, PT_LINETO = 2, PT_BEZIERTO = 4, PT_MOVETO = 6 };
// Modes of combining a region with the clip.
enum : int { RGN_AND = 1, RGN_OR = 2, RGN_XOR = 3, RGN_DIFF = 4, RGN_COPY = 5 };
// The stock-object flag of an EMF object index.
constexpr uint32_t kStockObject = 0x80000000u;
}  // namespace gdi

// A logical pen, decoded from either format's pen records.
struct LogPen {
    uint32_t style = gdi::PS_SOLID;  // style, end cap, join and PS_GEOMETRIC bits
    double width = 0;                // logical units (device units for a cosmetic pen)
    uint32_t color = 0;              // COLORREF
    // True for a pen of EMR_EXTCREATEPEN: cosmetic unless PS_GEOMETRIC. A pen of CREATEPEN
    // (either format) has a width in logical units whatever its style bits say.
    bool extended = false;
    // PS_USERSTYLE: the dash and gap lengths (logical units for a geometric pen, device units
    // for a cosmetic one).
    std::vector<double> userStyle;
};

// A logical brush.
struct LogBrush {
    uint32_t style = gdi::BS_SOLID;
    uint32_t color = 0;  // COLORREF (BS_SOLID, BS_HATCHED)
    uint32_t hatch = 0;  // BS_HATCHED: the hatch style
    // BS_PATTERN, BS_DIBPATTERN(PT): the tile, decoded. When `monochrome`, the tile is a 1-bit
    // image whose colour index 0 is drawn in the text colour and index 1 in the background
    // colour at the time of drawing (a monochrome pattern brush).
    std::shared_ptr<const QImage> pattern;
    bool monochrome = false;
};

inline LogBrush WhiteBrush() {
    LogBrush b;
    b.color = 0xFFFFFF;
    return b;
}

// A logical font (for the text records; taken and selected like any object).
struct LogFont {
    int32_t height = 0;
    int32_t width = 0;
    int32_t escapement = 0;
    int32_t orientation = 0;
    int32_t weight = 0;
    bool italic = false;
    bool underline = false;
    bool strikeOut = false;
    uint8_t charSet = 0;
    uint8_t pitchAndFamily = 0;
    QString faceName;
};

// An entry of an object table.
struct GdiObject {
    enum class Kind : uint8_t { Pen, Brush, Font, Palette, Region, ColorSpace, Other };
    Kind kind = Kind::Other;
    LogPen pen;
    LogBrush brush;
    LogFont font;
    QRegion region;  // Region: its rectangles as the record gives them
};

// The mapping state that SaveDC keeps and the drawing calls read.
struct DcState {
    int mapMode = gdi::MM_TEXT;
    PointF windowOrg, viewportOrg;
    PointF windowExt{1, 1}, viewportExt{1, 1};
    Matrix world;
    PointF position;  // the current position, logical
    int bkMode = gdi::OPAQUE;
    uint32_t bkColor = 0xFFFFFF;  // COLORREF
    uint32_t textColor = 0;       // COLORREF
    int polyFillMode = gdi::ALTERNATE;
    int arcDirection = gdi::AD_COUNTERCLOCKWISE;
    int rop2 = gdi::R2_COPYPEN;
    double miterLimit = 10;
    PointF brushOrigin;  // device units
    uint32_t textAlign = 0;
    int stretchMode = 0;
    // The selected objects, as copies: deleting one changes nothing here. A new context
    // draws with the black pen, the white brush and the system font.
    LogPen pen;
    LogBrush brush = WhiteBrush();
    LogFont font;
    std::shared_ptr<const Clip> clip;  // device space; null: no clip
};

// A bit block of a bitmap record, decoded (DeviceContextBitmap.cpp).
struct BitmapBlt {
    // The source, top-down; null for a compressed one.
    std::shared_ptr<const QImage> bitmap;
    // A 1-bit source of a bit block (not of the DIB records): index 0 is drawn in the text
    // colour and 1 in the background colour.
    bool monochrome = false;
    // A JPEG or PNG source, drawn whole as it is; its size in pixels.
    std::shared_ptr<const QByteArray> compressed;
    bool jpeg = false;
    int width = 0, height = 0;
    // The source rectangle: x, y, width, height in source pixels (negative extents mirror).
    RectF src;
    // Where the source rectangle's corners (x, y), (x + width, y) and (x, y + height) land,
    // logical.
    PointF dest[3];
    uint32_t rop = 0x00CC0020;  // SRCCOPY; the foreground operation of a masked block
    enum class Blend : uint8_t { Rop, Alpha, Transparent } blend = Blend::Rop;
    // Alpha: the constant alpha and whether the source carries premultiplied alpha.
    uint8_t constantAlpha = 255;
    bool sourceAlpha = false;
    uint32_t key = 0;  // Transparent: the COLORREF drawn as nothing
    // A 1-bit mask (masked blocks): its pixel (x + maskX, y + maskY) selects for the source
    // pixel at (x, y) of the source rectangle the foreground operation (1) or the background
    // one (0, `backgroundRop`; the destination kept when it is 0x00AA0029).
    std::shared_ptr<const QImage> mask;
    PointF maskOrigin;
    uint32_t backgroundRop = 0x00AA0029;
};

// A block without a source extent of its own (its destination's) whose source runs past its
// bitmap draws what the bitmap holds over the whole destination: its writer sized the source
// in other units than the bitmap's pixels. Cuts such a source rectangle at the bitmap's edges.
void FitSourceToBitmap(BitmapBlt& blt);

class DeviceContext {
  public:
    // Draws into `sink`, which must outlive the context.
    explicit DeviceContext(DrawSink& sink);

    // --- reference device --------------------------------------------------------------
    // The device the metafile was recorded for: its size in device units and in millimetres.
    // The metric map modes and the isotropic defaults scale by it. Values that are not
    // positive and finite keep the default (1024 x 768 units at 96 per inch).
    void SetReferenceDevice(double widthUnits, double heightUnits, double widthMm, double heightMm);
    // Device units per millimetre on each axis.
    PointF DeviceUnitsPerMm() const;

    // --- mapping ---------------------------------------------------------------------
    void SetMapMode(int mode);  // unknown modes are ignored
    void SetWindowOrg(double x, double y);
    void SetViewportOrg(double x, double y);
    // Ignored outside the isotropic and anisotropic modes, and for a zero extent; the
    // isotropic mode adjusts the viewport extent after either call.
    void SetWindowExt(double cx, double cy);
    void SetViewportExt(double cx, double cy);
    void OffsetWindowOrg(double dx, double dy);
    void OffsetViewportOrg(double dx, double dy);
    // extent = extent * num / denom on each axis; ignored for a zero denominator or result.
    void ScaleWindowExt(double xNum, double xDenom, double yNum, double yDenom);
    void ScaleViewportExt(double xNum, double xDenom, double yNum, double yDenom);
    // A singular or non-finite transform is refused.
    void SetWorldTransform(const Matrix& m);
    // Any gdi::MWT_* mode; a result that is singular or not finite is refused.
    void ModifyWorldTransform(const Matrix& m, int mode);

    // Logical to device: world transform, then window to viewport.
    Matrix LogicalToDevice() const;
    PointF ToDevice(PointF logical) const { return LogicalToDevice().Map(logical); }

    // --- saved states --------------------------------------------------------------------
    // Keeps the state (mapping, modes, colours, selected objects; not the path).
    void SaveDC();
    // level < 0: the state saved |level| saves ago; level > 0: the state of the level-th save
    // of those still kept (1 is the oldest). Levels that name no saved state are ignored.
    void RestoreDC(int level);
    // How many states are saved.
    int SaveDepth() const;

    // --- modes and colours ---------------------------------------------------------------
    void SetBkMode(int mode);  // gdi::TRANSPARENT or gdi::OPAQUE; others ignored
    void SetBkColor(uint32_t colorRef);
    void SetTextColor(uint32_t colorRef);
    void SetPolyFillMode(int mode);
    void SetArcDirection(int direction);
    // R2_NOP draws nothing; R2_BLACK, R2_WHITE and R2_NOT (the inverse of a white page) draw
    // black or white; R2_NOTCOPYPEN draws the inverted colours; the others draw as R2_COPYPEN.
    void SetRop2(int rop);
    void SetMiterLimit(double limit);      // ignored unless at least 1 and finite
    void SetBrushOrg(double x, double y);  // device units
    void SetTextAlign(uint32_t align);
    void SetStretchBltMode(int mode);
    const DcState& State() const { return m_state; }

    // --- objects -------------------------------------------------------------------------
    // EMF: creates the object at `index`, replacing what was there (index 0 and stock
    // indices are refused).
    void CreateObjectAt(uint32_t index, const GdiObject& object);
    // WMF: puts the object into the lowest free slot and returns it; -1 when the table
    // (see SetObjectTableSize) is full and the object is dropped.
    int CreateObjectInFreeSlot(const GdiObject& object);
    // The number of WMF slots (the header's object count); 0: no limit but the input's.
    void SetObjectTableSize(uint32_t count);
    // Selects the object at `index`, or the stock object (gdi::kStockObject | n). An empty
    // index or a palette or colour space is ignored here; a region becomes the clip.
    void SelectObject(uint32_t index);
    // Empties the slot; what is selected stays selected and keeps drawing (the context holds
    // its own copies). Stock objects cannot be deleted.
    void DeleteObject(uint32_t index);
    // The object at `index`, null when the slot is empty.
    const GdiObject* ObjectAt(uint32_t index) const;

    // --- drawing, in logical coordinates ---------------------------------------------------
    void MoveTo(PointF p);
    void LineTo(PointF p);
    void Polyline(const PointF* points, size_t count);
    void PolylineTo(const PointF* points, size_t count);
    void Polygon(const PointF* points, size_t count);
    // counts[i] points of `points` per figure, one after another; `count` points in all.
    // Counts past the points are cut. One path for the whole list.
    void PolyPolyline(const PointF* points, size_t count, const uint32_t* counts, size_t figures);
    void PolyPolygon(const PointF* points, size_t count, const uint32_t* counts, size_t figures);
    // A start point then three points per curve; an incomplete last curve is dropped.
    void PolyBezier(const PointF* points, size_t count);
    // Three points per curve from the current position, which moves to the last point.
    void PolyBezierTo(const PointF* points, size_t count);
    // Points with gdi::PT_* types.
    void PolyDraw(const PointF* points, const uint8_t* types, size_t count);
    void Rectangle(const RectF& box);
    void RoundRect(const RectF& box, double cornerW, double cornerH);
    void Ellipse(const RectF& box);
    // Arcs run from the ray towards `start` to the ray towards `end` in the arc direction as
    // seen on the device; start and end on one ray make a whole ellipse.
    void Arc(const RectF& box, PointF start, PointF end);
    void ArcTo(const RectF& box, PointF start, PointF end);
    void Chord(const RectF& box, PointF start, PointF end);
    void Pie(const RectF& box, PointF start, PointF end);
    void AngleArc(PointF centre, double radius, double startDeg, double sweepDeg);
    // The rectangle filled with the colour: no pen, no raster operation (the opaque
    // rectangle of a text record).
    void FillRect(const RectF& box, uint32_t colorRef);
    // One pixel (see PixelWidth) at `p` in the colour.
    void SetPixel(PointF p, uint32_t colorRef);
    // The rectangle at (x, y) of width w and height h filled by the raster operation
    // (gdi::PATCOPY; PATINVERT drawn as PATCOPY; BLACKNESS, WHITENESS; DSTINVERT and the
    // others draw nothing). The brush is used as it is, without the binary raster operation.
    void PatBlt(const RectF& xywh, uint32_t rop);
    // Gradient fills (DeviceContextGradient.cpp), drawn without pen, brush or raster operation.
    // The rectangle of corners `a` and `b` (logical) blended from `ca` at a's x to `cb` at b's
    // x, or along y when `vertical`: under any transform, colours stay constant along the
    // images of logical verticals (horizontals).
    void GradientRect(PointF a, Rgb ca, PointF b, Rgb cb, bool vertical);
    // The triangle blended between its vertices' colours. SVG blends along one direction only:
    // the triangle is drawn as a linear gradient between its two most different colours, the
    // third vertex taking the nearest blend of them; when that is off by more than a few
    // levels, the triangle is first cut at its edges' midpoints into 4 or 16 triangles (each
    // then off by a half or a quarter), at most `maxPieces` in all.
    void GradientTriangle(const PointF (&v)[3], const Rgb (&c)[3], size_t maxPieces);

    // --- bitmaps (DeviceContextBitmap.cpp) -----------------------------------------------
    // Draws a bit block. Raster operations that read no source go to PatBlt. Blocks of
    // operations that read the destination wait for the next block on the same destination
    // (a mask and its image are drawn as one image with transparency); FlushBitmaps draws
    // what waits, before anything else is drawn and at the end of the picture.
    void DrawBitmap(const BitmapBlt& blt);
    void FlushBitmaps();

    // --- text (DeviceContextText.cpp) ------------------------------------------------------
    // One text record in logical coordinates: the characters as UTF-16, one advance per
    // code unit (x along the baseline, y across it with ETO_PDY) or none, the ETO_* options
    // and their rectangle. Draws the opaque rectangle, the background of the text cells in
    // the opaque background mode, then the characters, and moves the current position under
    // TA_UPDATECP.
    struct TextCall {
        PointF reference;
        QString text;
        std::vector<PointF> advances;  // empty, or one per code unit of `text`
        uint32_t options = 0;
        RectF rect;
        // The record's compatible graphics mode: the world transform moves the reference point
        // and scales the text but does not turn or shear its glyphs.
        bool compatible = false;
    };
    void ExtTextOut(const TextCall& call);
    // Decodes 8-bit characters by the selected font's character set into `call.text`;
    // `advances` (one per byte, or null) become one per code unit, the bytes of a character
    // adding up.
    void DecodeAnsi(const unsigned char* bytes, size_t count, const PointF* advances,
                    TextCall& call) const;

    // --- path bracket ----------------------------------------------------------------------
    void BeginPath();  // discards an earlier path; drawing calls then add to the path
    void EndPath();
    void CloseFigure();
    void AbortPath();
    void FillPath();
    void StrokePath();
    void StrokeAndFillPath();
    void FlattenPath();  // curves are kept: nothing changes
    // The path becomes the outline of its stroke by the pen: filling it then draws the pen's
    // stroke in the brush's colour, stroking it draws the pen's stroke.
    void WidenPath();
    // The path's pixels (under the polygon fill mode) combine with the clip by `mode`
    // (gdi::RGN_*); the path is used up.
    void SelectClipPath(int mode);
    bool InPathBracket() const { return m_inBracket; }

    // --- resolved styles (also for tests) --------------------------------------------------
    // The stroke of the selected pen under the current mapping and raster operation.
    Stroke CurrentStroke() const;
    // The thinnest stroke drawn, in device units: one pixel of the picture shown at its size
    // (1/96 inch), or one device unit when that is wider. Pens of width 0, cosmetic pens and
    // thinner geometric pens are drawn this wide; cosmetic dashes count in these pixels.
    double PixelWidth() const;
    // The fill of the selected brush under the current mapping, modes and raster operation.
    Fill CurrentFill() const;

    // --- clipping and regions (DeviceContextClip.cpp) ----------------------------------------
    // The clip is a set of device pixels, kept with the saved states. Rectangles are logical;
    // their device rectangles (or, under a rotation, the pixels of their outline) combine with
    // the clip. Every combination costs work from the region budget; one the budget cannot pay
    // for, or whose result would pass kMaxRegionRects, is refused and the clip stays.
    void IntersectClipRect(const RectF& box);
    void ExcludeClipRect(const RectF& box);
    // `region` in device units; null with RGN_COPY removes the clip, with the others nothing.
    void SelectClipRegion(const QRegion* region, int mode);
    void OffsetClipRgn(double dx, double dy);  // logical units
    // The clip becomes (part of) the meta region, which every later clip is intersected with
    // and no RestoreDC takes back; the clip is removed.
    void SetMetaRgn();
    // The clip in force: the meta region and the clip; null when neither.
    const std::shared_ptr<const Clip>& CurrentClip() const { return m_effectiveClip; }
    // Work the region operations may still do (about a rectangle or a scanline crossing each).
    void SetRegionBudget(uint64_t units) { m_regionBudget = units; }
    // Regions drawn, in logical units: filled with a brush, framed by a brush (frame width
    // and height logical), inverted (drawn black, as on a white page), painted with the
    // selected brush. The brush is used as it is, without the binary raster operation.
    void FillRegion(const QRegion& region, const LogBrush& brush);
    void FrameRegion(const QRegion& region, const LogBrush& brush, double width, double height);
    void InvertRegion(const QRegion& region);
    void PaintRegion(const QRegion& region);
    // The brush at an object index (or a stock brush); false when it names none.
    bool BrushAt(uint32_t index, LogBrush& out) const;

  private:
    // Clipping helpers (DeviceContextClip.cpp).
    const GdiObject* Lookup(uint32_t index, GdiObject& stock) const;
    bool Charge(uint64_t units);
    bool DeviceRegion(const QRegion& logical, QRegion& out);
    bool BoxRegion(const RectF& box, QRegion& out);
    bool CombineClip(const QRegion& region, int mode);
    void SetClipRegion(const QRegion& region);
    void ClipChanged();
    void DrawRegion(const QRegion& device, const Fill& fill);
    std::shared_ptr<const Clip> m_metaClip;
    std::shared_ptr<const Clip> m_effectiveClip;
    uint64_t m_regionBudget = uint64_t(1) << 22;

    // The isotropic mode's adjustment: the viewport extent shrinks on one axis until a
    // logical unit spans the same length on both.
    void FixIsotropic();
    void SetExtent(PointF& extent, double cx, double cy);
    // Drawing helpers (DeviceContextDraw.cpp).
    Path& Target(Path& scratch) { return m_inBracket ? m_path : scratch; }
    void ContinueFrom(Path& path) const;
    void Emit(Path& path, bool fill, bool stroke, FillRule rule = FillRule::NonZero);
    void Send(DrawOp& op);
    FillRule PolyFillRule() const;
    RectF InsideFrame(const RectF& box) const;
    double DeviceLength(double logical) const;
    Fill BrushFill(const LogBrush& brush) const;
    void UsePath(bool fill, bool stroke);

    // Text helpers (DeviceContextText.cpp).
    // Fills the text cells from `left` to `right` (text space) around the baseline at y =
    // `baseline` with the background colour.
    void DrawTextCells(const TextOp& op, double left, double right, double baseline);

    DcState m_state;
    std::vector<DcState> m_saved;
    int m_savesDropped = 0;  // saves past the bound, undone first by RestoreDC
    PointF m_unitsPerMm{96.0 / 25.4, 96.0 / 25.4};
    PointF m_deviceSize{1024, 768};
    DrawSink& m_sink;
    // Objects: EMF indices and WMF slots share the table.
    std::map<uint32_t, GdiObject> m_objects;
    std::set<uint32_t> m_freeSlots;  // WMF: free slots below m_nextSlot
    uint32_t m_nextSlot = 0;
    uint32_t m_slotLimit = 0;
    // The path bracket.
    bool m_inBracket = false;
    bool m_pathReady = false;  // EndPath closed a bracket whose path waits for its use
    bool m_widened = false;
    Path m_path;
    // Bit blocks waiting for the next one on their destination (DeviceContextBitmap.cpp).
    struct PendingBlt {
        std::shared_ptr<const QImage> image;  // cropped
        Matrix toDevice;                      // from its pixels to device units
        uint32_t rop = 0;
        Rgb pattern = 0;
        bool smooth = false;
    };
    std::vector<PendingBlt> m_pendingBlts;
    void ResolveBlts();
};

}  // namespace faithful

#endif
