// WMF2SVGConverter: the WMF record interpreter with its handle table.
//
// The entry point checks the headers, calls InitializeCoordinates, then ConvertWMFToSVG with
// the first record, and collects the text with TakeOutSVG. Handlers receive a private copy of
// their record, zero-filled up to the fixed fields their table entry names.
#ifndef SVGMODULE_WMF2SVG_H
#define SVGMODULE_WMF2SVG_H

#include <QString>
#include <map>
#include <set>

#include "MetafileStructs.h"
#include "api/Logger.h"
#include "byteorder/RecordReader.h"
#include "svg/SVGWriter.h"

class WMF2SVGConverter {
  public:
    typedef int (WMF2SVGConverter::*Handler)(unsigned char* record, unsigned int size);

    static const unsigned int kNameTableSize = 4000;
    static const unsigned int kHandlerTableSize = 0x1000;

    // One entry of the handler table.
    struct HandlerEntry {
        Handler handler = nullptr;
        // Bytes of fixed fields the handler reads; a shorter record is zero-filled up to them.
        size_t fixed = records::kRecordPadding;
    };

    // One slot of the WMF object table.
    struct tagHandle {
        uint16_t slot;
        uint8_t free;
    };

    WMF2SVGConverter();
    ~WMF2SVGConverter();
    WMF2SVGConverter(const WMF2SVGConverter&) = delete;
    WMF2SVGConverter& operator=(const WMF2SVGConverter&) = delete;

    // `records` is the first record after the headers; `total` the file's byte count with the
    // headers; `maxRecord` the header's largest record size in words. Returns 2, 0 (null
    // records) or -1 (exception during the walk).
    int ConvertWMFToSVG(const unsigned char* records, unsigned long total, unsigned long maxRecord,
                        CLogger& log);
    int HandleWMFRecordData(unsigned char* record, unsigned int size, CLogger& log);
    void InitWMFRecHandlers();
    void InitWMFText();
    QString GetOutSVG();
    // The document as UTF-8, handed over without a copy; the converter keeps no text.
    QByteArray TakeOutSVG();

    const char* RecordName(unsigned int function) const {
        return function < kNameTableSize && m_recordNames ? m_recordNames[function] : nullptr;
    }

    // Coordinates.
    int InitializeCoordinates(int placeable, _PlaceableMetaHeader header);
    short MapX(short x);
    short MapY(short y);

    // Bytes of headers in front of the first record.
    unsigned long HeaderBytes() const { return m_placeable ? 40 : 18; }

    CMySVGWriter& Writer() { return m_writer; }

  private:
    void WalkRecords(const unsigned char* records, unsigned long total, unsigned long maxRecord,
                     CLogger& log);
    short MapAxis(short v, int16_t windowOrg, float factor) const;

    int OnMetaSetWinOrg(unsigned char* record, unsigned int size);
    int OnMetaSetWinExt(unsigned char* record, unsigned int size);
    int OnMetaSetMapMode(unsigned char* record, unsigned int size);

    // Object records and the handle table (WmfObjects.cpp).
    int OnCreatePenIndirect(unsigned char* record, unsigned int size);
    int OnMetaCreateBrushIndirect(unsigned char* record, unsigned int size);
    int OnMetaCreateFontIndirect(unsigned char* record, unsigned int size);
    int OnMetaSelectObject(unsigned char* record, unsigned int size);
    int OnMetaDeleteObject(unsigned char* record, unsigned int size);
    int OnMetaSetBkMode(unsigned char* record, unsigned int size);
    int OnMetaSetTextAlign(unsigned char* record, unsigned int size);
    uint16_t TakeSlot();
    void FreeSlot(int slot);
    int16_t ScaleFontUnits(int16_t value) const;

    // Drawing records (WmfDrawing.cpp).
    int OnMetaMove(unsigned char* record, unsigned int size);
    int OnMetaLineTo(unsigned char* record, unsigned int size);
    int OnMetaPolyLine(unsigned char* record, unsigned int size);
    int OnMetaPolygon(unsigned char* record, unsigned int size);
    int OnMetaPolyPolygon(unsigned char* record, unsigned int size);
    int OnMetaRectangle(unsigned char* record, unsigned int size);
    int OnMetaEllipse(unsigned char* record, unsigned int size);
    int OnMetaPatBlt(unsigned char* record, unsigned int size);
    int OnMetaArc(unsigned char* record, unsigned int size);
    int OnMetaExtTextOut(unsigned char* record, unsigned int size);
    void DrawMappedPolyLine(const unsigned char* record, unsigned int size, bool closed);
    tagRECT MapEdges(const tagWMRELLIPSE& record);

    // Bitmap records (WmfBitmaps.cpp).
    int OnDIBBitBlt(unsigned char* record, unsigned int size);
    int OnDIBStretchBlt(unsigned char* record, unsigned int size);
    int OnStretchDIB(unsigned char* record, unsigned int size);
    // Draws the bitmap that follows the fixed fields R of a bitmap record.
    template <class R>
    void DrawBitmap(const unsigned char* record, unsigned int size,
                    int (*normalise)(R*, const unsigned char*), uint16_t R::*width,
                    uint16_t R::*height);

    // The handler of a record function, or null.
    const HandlerEntry* HandlerFor(unsigned int function) const {
        return function < kHandlerTableSize && m_handlers[function].handler ? &m_handlers[function]
                                                                            : nullptr;
    }
    static const HandlerEntry* HandlerTable();

    const HandlerEntry* m_handlers;  // kHandlerTableSize entries, shared by all converters
    std::map<int, tagHandle> m_handles;
    std::set<int> m_freeSlots;         // keys of m_handles whose free flag is set
    const char* const* m_recordNames;  // kNameTableSize entries, shared by all converters
    CMySVGWriter m_writer;
    records::RecordBuffer m_recordCopy;

    // Coordinate state.
    int16_t m_picWidth;
    int16_t m_winExtX;
    int16_t m_winOrgX;
    int16_t m_picHeight;
    int16_t m_winExtY;
    int16_t m_winOrgY;
    int16_t m_inch;
    float m_scale;
    float m_xFactor;
    float m_yFactor;
    int m_placeable;
};

#endif
