// Emf2SvgConverter: the EMF record interpreter.
//
// One converter serves one conversion: ConvertEMFToSVG walks the records of a whole file,
// dispatching each to its handler through a table indexed by record type, and TakeOutSVG hands
// over the SVG text. Handlers receive a private copy of their record, zero-filled up to the
// fixed fields their table entry names, and its size from the record header.
#ifndef SVGMODULE_EMF2SVG_H
#define SVGMODULE_EMF2SVG_H

#include <QRegion>
#include <QString>
#include <cstring>
#include <vector>

#include "MetafileStructs.h"
#include "api/Logger.h"
#include "byteorder/RecordReader.h"
#include "svg/SVGWriter.h"

class Emf2SvgConverter {
  public:
    typedef int (Emf2SvgConverter::*Handler)(unsigned char* record, unsigned int size);

    static const unsigned int kNameTableSize = 10000;
    static const unsigned int kHandlerTableSize = 128;

    // One entry of the handler table.
    struct HandlerEntry {
        Handler handler = nullptr;
        // Bytes of fixed fields the handler reads; a shorter record is zero-filled up to them.
        size_t fixed = records::kRecordPadding;
    };

    Emf2SvgConverter();
    ~Emf2SvgConverter();
    Emf2SvgConverter(const Emf2SvgConverter&) = delete;
    Emf2SvgConverter& operator=(const Emf2SvgConverter&) = delete;

    // 1 when the header carries the EMF signature, otherwise -2.
    static int IsValidEMFFile(tagENHMETAHEADER& header);
    // Converts the whole file at `data`, whose header's nBytes the caller has checked against
    // the bytes it holds. Returns 1, 0 (null data or no signature) or -1 (exception).
    int ConvertEMFToSVG(const unsigned char* data, CLogger& log);
    QString GetOutSVG();
    // The document as UTF-8, handed over without a copy; the converter keeps no text.
    QByteArray TakeOutSVG();

    void InitEMFRecHandlers();
    void InitEMFText();
    int HandleEnhMetaRecordData(unsigned char* record, unsigned int size, CLogger& log);

    // The record name for a type, or null when the type has none.
    const char* RecordName(unsigned int type) const {
        return type < kNameTableSize && m_recordNames ? m_recordNames[type] : nullptr;
    }

    // Coordinate mapping: logical to output units.
    int MapX(int x, int withOrigin);
    int MapY(int y, int withOrigin);
    int MapPoint(const tagPOINTS& in, tagPOINTS& out);

    // Read access for tests.
    CMySVGWriter& Writer() { return m_writer; }

  private:
    // Picture origin and size from the header (the document is opened at that size).
    void SetupPicture(const tagENHMETAHEADER& header);
    // Walks the records after the header; returns false when an exception ended the walk.
    void WalkRecords(const unsigned char* data, const tagENHMETAHEADER& header, CLogger& log);
    int MapLength(float v);
    int MapAxis(int v, float divisor, int32_t windowOrg, int origin, int withOrigin);

    // Mapping state (EMR_SETMAPMODE, window and viewport records, world transform).
    int OnSetMapMode(unsigned char* record, unsigned int size);
    int OnSetWindowOrgEx(unsigned char* record, unsigned int size);
    int OnSetWindowsExt(unsigned char* record, unsigned int size);
    int OnSetViewPortOrgEx(unsigned char* record, unsigned int size);
    int OnSetViewPortEx(unsigned char* record, unsigned int size);
    int OnSetWorldTransform(unsigned char* record, unsigned int size);
    int OnModifyWorldTransform(unsigned char* record, unsigned int size);

    // True for a record a handler cannot use at all (no copy, or no bytes).
    static bool IsEmptyRecord(const unsigned char* record, unsigned int size) {
        return record == nullptr || size == 0;
    }
    // A copy of the fixed fields of a record; the record buffer is zero-padded, so the fields
    // of a short record read as zero.
    template <class R>
    static R FixedCopy(const unsigned char* record) {
        R r;
        std::memcpy(&r, record, sizeof r);
        return r;
    }

    // Objects and drawing state (EmfObjects.cpp).
    int OnCreatePen(unsigned char* record, unsigned int size);
    int OnCreatePenEx(unsigned char* record, unsigned int size);
    int OnCreateBrushIndirect(unsigned char* record, unsigned int size);
    int OnCreateMonoBrush(unsigned char* record, unsigned int size);
    int OnExtCreateFontIndirect(unsigned char* record, unsigned int size);
    int OnSelectObject(unsigned char* record, unsigned int size);
    int OnDeleteObject(unsigned char* record, unsigned int size);
    int OnSetBkMode(unsigned char* record, unsigned int size);
    int OnSetBkColor(unsigned char* record, unsigned int size);
    int OnSetTextColor(unsigned char* record, unsigned int size);
    int OnSetTextAlign(unsigned char* record, unsigned int size);

    // Lines, polygons and Béziers (EmfLines.cpp).
    int OnMoveToEx(unsigned char* record, unsigned int size);
    int OnLineTo(unsigned char* record, unsigned int size);
    int OnPolyLine(unsigned char* record, unsigned int size);
    int OnPolygon(unsigned char* record, unsigned int size);
    int OnPolyLineTo(unsigned char* record, unsigned int size);
    int OnPolyPolyLine(unsigned char* record, unsigned int size);
    int OnPolyPolygon(unsigned char* record, unsigned int size);
    int OnPolyBezier(unsigned char* record, unsigned int size);
    int OnPolyBezierTo(unsigned char* record, unsigned int size);
    int OnPolyLine16(unsigned char* record, unsigned int size);
    int OnPolygon16(unsigned char* record, unsigned int size);
    int OnPolyLineTo16(unsigned char* record, unsigned int size);
    int OnPolyPolyLine16(unsigned char* record, unsigned int size);
    int OnPolyPolygon16(unsigned char* record, unsigned int size);
    int OnPolyBezier16(unsigned char* record, unsigned int size);
    int OnPolyBezierTo16(unsigned char* record, unsigned int size);
    int OnPolyDraw(unsigned char* record, unsigned int size);

    // The writer call that receives a point list.
    enum class PolyCall { Polyline, Polygon, PolylineTo, Bezier, BezierTo };
    // How the points of a list are mapped before the call: not at all, by MapX/MapY with the
    // origins, or through the world transform first (MapPoint).
    enum class PointMapping { None, Origin, World };
    void DrawPointList32(unsigned char* record, unsigned int size, PolyCall call,
                         PointMapping mapping);
    void DrawPointList16(unsigned char* record, unsigned int size, PolyCall call,
                         PointMapping mapping);
    void DrawPolyLists32(unsigned char* record, unsigned int size, bool closed);
    void DrawPolyLists16(unsigned char* record, unsigned int size, bool closed);
    template <class P>
    void EmitPoints(const P* points, uint32_t count, PolyCall call);
    void MapInPlace(tagPOINT* points, uint32_t count);
    void MapInPlace(tagPOINTS* points, uint32_t count);

    // Rectangles, ellipses and arcs (EmfShapes.cpp).
    int OnRectangle(unsigned char* record, unsigned int size);
    int OnRoundedRect(unsigned char* record, unsigned int size);
    int OnEllipse(unsigned char* record, unsigned int size);
    int OnArc(unsigned char* record, unsigned int size);
    int OnArcTo(unsigned char* record, unsigned int size);
    int OnChord(unsigned char* record, unsigned int size);
    int OnPie(unsigned char* record, unsigned int size);
    int OnAngleArc(unsigned char* record, unsigned int size);
    enum class ArcCall { Arc, ArcTo, Chord };
    // The logical half sizes of a box and its centre, mapped as a position.
    struct EllipseBox {
        int32_t rx, ry;
        int cx, cy;
    };
    EllipseBox MapEllipse(const tagRECT& box);
    void DrawArcRecord(unsigned char* record, ArcCall call);

    // Text (EmfText.cpp).
    int OnExtTextOutW(unsigned char* record, unsigned int size);
    int OnSmallTextOut(unsigned char* record, unsigned int size);
    // The output position of a text record's reference point.
    tagPOINT MapTextReference(const tagPOINT& reference);

    // The path bracket (EmfPaths.cpp).
    int OnBeginPath(unsigned char* record, unsigned int size);
    int OnEndPath(unsigned char* record, unsigned int size);
    int OnCloseFigure(unsigned char* record, unsigned int size);
    int OnFillPath(unsigned char* record, unsigned int size);
    int OnStrokePath(unsigned char* record, unsigned int size);
    int OnAbortPath(unsigned char* record, unsigned int size);

    // Regions and clipping (EmfRegions.cpp).
    int OnFillRgn(unsigned char* record, unsigned int size);
    int OnFrameRgn(unsigned char* record, unsigned int size);
    int OnExtSetClipRgn(unsigned char* record, unsigned int size);
    int OnSelectClipPath(unsigned char* record, unsigned int size);
    int OnIntersectClipRect(unsigned char* record, unsigned int size);
    // The rectangles of the region data `offset` bytes into a fill or frame record, mapped
    // as positions; the region header is normalised in place.
    std::vector<tagRECT> MappedRegion(unsigned char* record, unsigned int size, size_t offset);

    // Bitmap records (EmfBitmaps.cpp).
    int OnBitBlt(unsigned char* record, unsigned int size);
    int OnStretchBlt(unsigned char* record, unsigned int size);
    int OnMaskBlt(unsigned char* record, unsigned int size);
    int OnPlgBlt(unsigned char* record, unsigned int size);
    int OnStretchDIB(unsigned char* record, unsigned int size);
    int OnTransparentBlt(unsigned char* record, unsigned int size);
    // Where a record's bitmap lies and where it is drawn (logical units).
    struct BitmapPlacement {
        int32_t x, y, cx, cy;
        uint32_t offBmi, offBits;
        int op;           // the raster operation or transparent colour for the decoder
        bool stretchDib;  // EMR_STRETCHDIBITS: 4-bit rows are padded as cbBits implies
        uint32_t cbBits;
    };
    static BitmapPlacement Placement(const tagEMRBITBLT& blt, int op);
    void DrawBitmap(const unsigned char* record, unsigned int size, const BitmapPlacement& at);

    // The handler of a record type, or null.
    const HandlerEntry* HandlerFor(unsigned int type) const {
        return type < kHandlerTableSize && m_handlers[type].handler ? &m_handlers[type] : nullptr;
    }

    static const HandlerEntry* HandlerTable();

    const HandlerEntry* m_handlers;  // kHandlerTableSize entries, shared by all converters
    CMySVGWriter m_writer;
    QRegion m_boundsRegion;
    uint64_t m_clipBudget;  // rectangles that clip-region records may still combine and write
    const char* const* m_recordNames;  // kNameTableSize entries, shared by all converters
    float m_vpScaleX;
    float m_vpScaleY;
    tagXFORM m_worldXform;
    int m_originX;
    int m_originY;
    float m_frameScaleX;
    float m_frameScaleY;
    int m_anisotropic;
    int32_t m_viewportExtX;
    int32_t m_viewportExtY;
    int32_t m_windowExtX;
    int32_t m_windowExtY;
    int32_t m_windowOrgX;
    int32_t m_windowOrgY;
    int32_t m_viewportOrgX;
    int32_t m_viewportOrgY;
    records::RecordBuffer m_recordCopy;
};

#endif
