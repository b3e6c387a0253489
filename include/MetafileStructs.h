// The published EMF and WMF structures, in file layout. Records are read through these views
// of private, zero-padded record copies after byte-order normalisation. EMF structures are
// naturally aligned; WMF structures use 2-byte packing, as the format does.
#ifndef SVGMODULE_METAFILESTRUCTS_H
#define SVGMODULE_METAFILESTRUCTS_H

#include <cstdint>

typedef uint16_t WCHAR16;  // a UTF-16 code unit as stored in a metafile

// --- basic geometry ----------------------------------------------------------------------
struct tagPOINT {
    int32_t x;
    int32_t y;
};
typedef tagPOINT _POINTL;

struct tagPOINTS {
    int16_t x;
    int16_t y;
};

struct tagRECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};
typedef tagRECT _RECTL;

struct tagRECT16 {
    int16_t left;
    int16_t top;
    int16_t right;
    int16_t bottom;
};

struct tagSIZE {
    int32_t cx;
    int32_t cy;
};
typedef tagSIZE SIZEL;

struct tagXFORM {
    float eM11;
    float eM12;
    float eM21;
    float eM22;
    float eDx;
    float eDy;
};

// --- EMF header and record prefix --------------------------------------------------------
struct tagEMR {
    uint32_t iType;
    uint32_t nSize;
};
typedef tagEMR tagENHMETARECORD;

struct tagENHMETAHEADER {
    uint32_t iType;
    uint32_t nSize;
    tagRECT rclBounds;
    tagRECT rclFrame;
    uint32_t dSignature;
    uint32_t nVersion;
    uint32_t nBytes;
    uint32_t nRecords;
    uint16_t nHandles;
    uint16_t sReserved;
    uint32_t nDescription;
    uint32_t offDescription;
    uint32_t nPalEntries;
    tagSIZE szlDevice;
    tagSIZE szlMillimeters;
};
static_assert(sizeof(tagENHMETAHEADER) == 88, "ENHMETAHEADER layout");

const uint32_t ENHMETA_SIGNATURE = 0x464D4520;

// --- GDI objects embedded in EMF records -------------------------------------------------
struct tagLOGPEN {
    uint32_t lopnStyle;
    tagPOINT lopnWidth;
    uint32_t lopnColor;
};

struct tagEXTLOGPEN {
    uint32_t elpPenStyle;
    uint32_t elpWidth;
    uint32_t elpBrushStyle;
    uint32_t elpColor;
    uint32_t elpHatch;
    uint32_t elpNumEntries;
    uint32_t elpStyleEntry[1];
};

// The 32-bit LOGBRUSH of EMF records (lbHatch is 32 bits in a file).
struct tagLOGBRUSH {
    uint32_t lbStyle;
    uint32_t lbColor;
    uint32_t lbHatch;
};

struct tagLOGFONTW {
    int32_t lfHeight;
    int32_t lfWidth;
    int32_t lfEscapement;
    int32_t lfOrientation;
    int32_t lfWeight;
    uint8_t lfItalic;
    uint8_t lfUnderline;
    uint8_t lfStrikeOut;
    uint8_t lfCharSet;
    uint8_t lfOutPrecision;
    uint8_t lfClipPrecision;
    uint8_t lfQuality;
    uint8_t lfPitchAndFamily;
    WCHAR16 lfFaceName[32];
};
static_assert(sizeof(tagLOGFONTW) == 92, "LOGFONTW layout");

struct tagPANOSE {
    uint8_t bytes[10];
};

struct tagEXTLOGFONTW {
    tagLOGFONTW elfLogFont;
    WCHAR16 elfFullName[64];
    WCHAR16 elfStyle[32];
    uint32_t elfVersion;
    uint32_t elfStyleSize;
    uint32_t elfMatch;
    uint32_t elfReserved;
    uint8_t elfVendorId[4];
    uint32_t elfCulture;
    tagPANOSE elfPanose;
    uint16_t padding;
};
static_assert(sizeof(tagEXTLOGFONTW) == 320, "EXTLOGFONTW layout");

// --- device-independent bitmaps ----------------------------------------------------------
struct tagBITMAPINFOHEADER {
    uint32_t biSize;
    int32_t biWidth;
    int32_t biHeight;  // positive for bottom-up rows, negative for top-down rows
    uint16_t biPlanes;
    uint16_t biBitCount;
    uint32_t biCompression;
    uint32_t biSizeImage;
    int32_t biXPelsPerMeter;
    int32_t biYPelsPerMeter;
    uint32_t biClrUsed;
    uint32_t biClrImportant;
};
static_assert(sizeof(tagBITMAPINFOHEADER) == 40, "BITMAPINFOHEADER layout");

// A colour table entry: bytes, the same in either byte order.
struct tagRGBQUAD {
    uint8_t rgbBlue;
    uint8_t rgbGreen;
    uint8_t rgbRed;
    uint8_t rgbReserved;
};

struct tagBITMAPINFO {
    tagBITMAPINFOHEADER bmiHeader;
    tagRGBQUAD bmiColors[1];
};

// --- EMF records -------------------------------------------------------------------------
// Header plus one 32-bit value: EMR_SETBKMODE, EMR_SETMAPMODE, EMR_SETTEXTALIGN,
// EMR_SELECTCLIPPATH and the like.
struct tagEMRSELECTCLIPPATH {
    tagEMR emr;
    uint32_t iMode;
};
typedef tagEMRSELECTCLIPPATH tagEMRSETBKMODE;
typedef tagEMRSELECTCLIPPATH tagEMRSETMAPMODE;
typedef tagEMRSELECTCLIPPATH tagEMRSETTEXTALIGN;

struct tagEMRSETTEXTCOLOR {
    tagEMR emr;
    uint32_t crColor;
};
typedef tagEMRSETTEXTCOLOR tagEMRSETBKCOLOR;

// EMR_SETWINDOWORGEX and EMR_SETVIEWPORTORGEX.
struct tagEMRSETVIEWPORTORGEX {
    tagEMR emr;
    tagPOINT ptlOrigin;
};

// EMR_SETWINDOWEXTEX and EMR_SETVIEWPORTEXTEX.
struct tagEMRSETVIEWPORTEXTEX {
    tagEMR emr;
    tagSIZE szlExtent;
};

// EMR_LINETO and EMR_MOVETOEX.
struct tagEMRLINETO {
    tagEMR emr;
    tagPOINT ptl;
};
typedef tagEMRLINETO tagEMRMOVETOEX;

struct tagEMRSETWORLDTRANSFORM {
    tagEMR emr;
    tagXFORM xform;
};

struct tagEMRMODIFYWORLDTRANSFORM {
    tagEMR emr;
    tagXFORM xform;
    uint32_t iMode;
};

// EMR_BITBLT, and the fields that EMR_STRETCHBLT, EMR_MASKBLT and EMR_TRANSPARENTBLT share
// with it. EMR_TRANSPARENTBLT keeps its transparent colour in dwRop.
struct tagEMRBITBLT {
    tagEMR emr;
    tagRECT rclBounds;
    int32_t xDest;
    int32_t yDest;
    int32_t cxDest;
    int32_t cyDest;
    uint32_t dwRop;
    int32_t xSrc;
    int32_t ySrc;
    tagXFORM xformSrc;
    uint32_t crBkColorSrc;
    uint32_t iUsageSrc;
    uint32_t offBmiSrc;
    uint32_t cbBmiSrc;
    uint32_t offBitsSrc;
    uint32_t cbBitsSrc;
};
static_assert(sizeof(tagEMRBITBLT) == 100, "EMR_BITBLT layout");

// EMR_STRETCHBLT and EMR_TRANSPARENTBLT.
struct tagEMRSTRETCHBLT {
    tagEMRBITBLT blt;
    int32_t cxSrc;
    int32_t cySrc;
};
typedef tagEMRSTRETCHBLT tagEMRTRANSPARENTBLT;
static_assert(sizeof(tagEMRSTRETCHBLT) == 108, "EMR_STRETCHBLT layout");

struct tagEMRMASKBLT {
    tagEMRBITBLT blt;
    int32_t xMask;
    int32_t yMask;
    uint32_t iUsageMask;
    uint32_t offBmiMask;
    uint32_t cbBmiMask;
    uint32_t offBitsMask;
    uint32_t cbBitsMask;
};
static_assert(sizeof(tagEMRMASKBLT) == 128, "EMR_MASKBLT layout");

struct tagEMRSTRETCHDIBITS {
    tagEMR emr;
    tagRECT rclBounds;
    int32_t xDest;
    int32_t yDest;
    int32_t xSrc;
    int32_t ySrc;
    int32_t cxSrc;
    int32_t cySrc;
    uint32_t offBmiSrc;
    uint32_t cbBmiSrc;
    uint32_t offBitsSrc;
    uint32_t cbBitsSrc;
    uint32_t iUsageSrc;
    uint32_t dwRop;
    int32_t cxDest;
    int32_t cyDest;
};
static_assert(sizeof(tagEMRSTRETCHDIBITS) == 80, "EMR_STRETCHDIBITS layout");

// EMR_SELECTOBJECT and EMR_DELETEOBJECT.
struct tagEMRSELECTOBJECT {
    tagEMR emr;
    uint32_t ihObject;
};
typedef tagEMRSELECTOBJECT tagEMRDELETEOBJECT;

struct tagEMRCREATEPEN {
    tagEMR emr;
    uint32_t ihPen;
    tagLOGPEN lopn;
};

struct tagEMREXTCREATEPEN {
    tagEMR emr;
    uint32_t ihPen;
    uint32_t offBmi;
    uint32_t cbBmi;
    uint32_t offBits;
    uint32_t cbBits;
    tagEXTLOGPEN elp;
};

struct tagEMRCREATEBRUSHINDIRECT {
    tagEMR emr;
    uint32_t ihBrush;
    tagLOGBRUSH lb;
};

struct tagEMREXTCREATEFONTINDIRECTW {
    tagEMR emr;
    uint32_t ihFont;
    tagEXTLOGFONTW elfw;
};

// EMR_ELLIPSE and EMR_RECTANGLE.
struct tagEMRELLIPSE {
    tagEMR emr;
    tagRECT rclBox;
};
typedef tagEMRELLIPSE tagEMRRECTANGLE;

struct tagEMRROUNDRECT {
    tagEMR emr;
    tagRECT rclBox;
    tagSIZE szlCorner;
};

// EMR_ARC, EMR_ARCTO, EMR_CHORD and EMR_PIE.
struct tagEMRARC {
    tagEMR emr;
    tagRECT rclBox;
    tagPOINT ptlStart;
    tagPOINT ptlEnd;
};

struct tagEMRANGLEARC {
    tagEMR emr;
    tagPOINT ptlCenter;
    int32_t nRadius;
    float eStartAngle;
    float eSweepAngle;
};

// The text of EMR_EXTTEXTOUTA and EMR_EXTTEXTOUTW; offString and offDx count from the start of
// the record.
struct tagEMRTEXT {
    tagPOINT ptlReference;
    uint32_t nChars;
    uint32_t offString;
    uint32_t fOptions;
    tagRECT rcl;
    uint32_t offDx;
};

struct tagEMREXTTEXTOUTA {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t iGraphicsMode;
    float exScale;
    float eyScale;
    tagEMRTEXT emrtext;
};
typedef tagEMREXTTEXTOUTA tagEMREXTTEXTOUTW;

// EMR_SMALLTEXTOUT: the fixed fields; a clipping rectangle (unless ETO_NO_RECT) and the
// characters follow.
struct tagEMRSMALLTEXTOUT {
    tagEMR emr;
    tagPOINT ptlReference;
    uint32_t cChars;
    uint32_t fuOptions;
    uint32_t iGraphicsMode;
    float exScale;
    float eyScale;
};
static_assert(sizeof(tagEMRROUNDRECT) == 32, "EMR_ROUNDRECT layout");
static_assert(sizeof(tagEMRARC) == 40, "EMR_ARC layout");
static_assert(sizeof(tagEMRANGLEARC) == 28, "EMR_ANGLEARC layout");
static_assert(sizeof(tagEMREXTTEXTOUTW) == 76, "EMR_EXTTEXTOUTW layout");
static_assert(sizeof(tagEMRSMALLTEXTOUT) == 36, "EMR_SMALLTEXTOUT layout");

// Point lists: EMR_POLYBEZIER, EMR_POLYGON, EMR_POLYLINE, EMR_POLYBEZIERTO, EMR_POLYLINETO.
struct tagEMRPOLYLINE {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t cptl;
    tagPOINT aptl[1];
};
typedef tagEMRPOLYLINE tagEMRPOLYGON;

// 16-bit point lists: EMR_POLYBEZIER16 to EMR_POLYLINETO16.
struct tagEMRPOLYLINE16 {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t cpts;
    tagPOINTS apts[1];
};
typedef tagEMRPOLYLINE16 tagEMRPOLYGON16;

// EMR_POLYPOLYLINE, EMR_POLYPOLYGON: counts, then points.
struct tagEMRPOLYPOLYLINE {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t nPolys;
    uint32_t cptl;
    uint32_t aPolyCounts[1];
};
typedef tagEMRPOLYPOLYLINE tagEMRPOLYPOLYGON;

// EMR_POLYPOLYLINE16, EMR_POLYPOLYGON16.
struct tagEMRPOLYPOLYLINE16 {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t nPolys;
    uint32_t cpts;
    uint32_t aPolyCounts[1];
};
typedef tagEMRPOLYPOLYLINE16 tagEMRPOLYPOLYGON16;

// EMR_POLYDRAW16: cpts points, then cpts type bytes.
struct tagEMRPOLYDRAW16 {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t cpts;
    tagPOINTS apts[1];
};

// EMR_FILLPATH, EMR_STROKEPATH and the like.
struct tagEMRFILLPATH {
    tagEMR emr;
    tagRECT rclBounds;
};

// Region data: the header, then nCount rectangles starting dwSize bytes after its start.
struct _RGNDATAHEADER {
    uint32_t dwSize;
    uint32_t iType;
    uint32_t nCount;
    uint32_t nRgnSize;
    tagRECT rcBound;
};
struct _RGNDATA {
    _RGNDATAHEADER rdh;
};

struct tagEMRFILLRGN {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t cbRgnData;
    uint32_t ihBrush;
    _RGNDATA RgnData;
};

struct tagEMRFRAMERGN {
    tagEMR emr;
    tagRECT rclBounds;
    uint32_t cbRgnData;
    uint32_t ihBrush;
    tagSIZE szlStroke;
    _RGNDATA RgnData;
};

struct tagEMREXTSELECTCLIPRGN {
    tagEMR emr;
    uint32_t cbRgnData;
    uint32_t iMode;
    _RGNDATA RgnData;
};

// Offsets of the trailing arrays of the EMF records above, from the start of the record.
// Arrays are reached through these offsets and sized against the record's nSize, never
// through the one-element array members.
const unsigned int EMR_EXTCREATEPEN_ENTRIES_OFFSET = 52;  // elpStyleEntry
const unsigned int EMR_POLY_POINTS_OFFSET = 28;           // aptl, apts
const unsigned int EMR_POLYPOLY_COUNTS_OFFSET = 32;       // aPolyCounts, then the points

static_assert(sizeof(tagEMREXTCREATEPEN) == EMR_EXTCREATEPEN_ENTRIES_OFFSET + 4,
              "EMR_EXTCREATEPEN layout");
static_assert(sizeof(tagEMRCREATEPEN) == 28, "EMR_CREATEPEN layout");
static_assert(sizeof(tagEMRCREATEBRUSHINDIRECT) == 24, "EMR_CREATEBRUSHINDIRECT layout");
static_assert(sizeof(tagEMREXTCREATEFONTINDIRECTW) == 332, "EMR_EXTCREATEFONTINDIRECTW layout");
static_assert(sizeof(tagEMRPOLYLINE) == EMR_POLY_POINTS_OFFSET + 8, "EMR_POLYLINE layout");
static_assert(sizeof(tagEMRPOLYLINE16) == EMR_POLY_POINTS_OFFSET + 4, "EMR_POLYLINE16 layout");
static_assert(sizeof(tagEMRPOLYDRAW16) == EMR_POLY_POINTS_OFFSET + 4, "EMR_POLYDRAW16 layout");
static_assert(sizeof(_RGNDATAHEADER) == 32, "RGNDATAHEADER layout");
static_assert(sizeof(tagEMRFILLRGN) == 64, "EMR_FILLRGN layout");
static_assert(sizeof(tagEMRFRAMERGN) == 72, "EMR_FRAMERGN layout");
static_assert(sizeof(tagEMREXTSELECTCLIPRGN) == 48, "EMR_EXTSELECTCLIPRGN layout");
static_assert(sizeof(tagEMRPOLYPOLYLINE) == EMR_POLYPOLY_COUNTS_OFFSET + 4,
              "EMR_POLYPOLYLINE layout");
static_assert(sizeof(tagEMRPOLYPOLYLINE16) == EMR_POLYPOLY_COUNTS_OFFSET + 4,
              "EMR_POLYPOLYLINE16 layout");

// --- WMF structures (2-byte packing) -----------------------------------------------------
#pragma pack(push, 2)

struct _PlaceableMetaHeader {
    uint32_t Key;
    uint16_t Hmf;
    tagRECT16 BoundingBox;
    uint16_t Inch;
    uint32_t Reserved;
    uint16_t Checksum;
};
static_assert(sizeof(_PlaceableMetaHeader) == 22, "placeable header layout");

const uint32_t PLACEABLE_KEY = 0x9AC6CDD7;

struct _WindowsMetaHeader {
    uint16_t mtType;
    uint16_t mtHeaderSize;
    uint16_t mtVersion;
    uint32_t mtSize;
    uint16_t mtNoObjects;
    uint32_t mtMaxRecord;
    uint16_t mtNoParameters;
};
static_assert(sizeof(_WindowsMetaHeader) == 18, "METAHEADER layout");

// The WMF record prefix: size in 16-bit words, then the function number.
struct tagWMR {
    uint32_t rdSize;
    uint16_t rdFunction;
};
static_assert(sizeof(tagWMR) == 6, "WMF record prefix layout");

struct tagMETARECORD {
    uint32_t rdSize;
    uint16_t rdFunction;
    uint16_t rdParm[1];
};

// The WMF font object, in file order.
struct FONTSPEC {
    int16_t Height;
    int16_t Width;
    int16_t Escapement;
    int16_t Orientation;
    int16_t Weight;
    uint8_t Italic;
    uint8_t Underline;
    uint8_t StrikeOut;
    uint8_t CharSet;
    uint8_t OutPrecision;
    uint8_t ClipPrecision;
    uint8_t Quality;
    uint8_t PitchAndFamily;
    char Facename[32];
};
static_assert(sizeof(FONTSPEC) == 50, "WMF font layout");

struct tagLOGPEN16 {
    uint16_t lopnStyle;
    tagPOINTS lopnWidth;
    uint32_t lopnColor;
};

struct tagLOGBRUSH16 {
    uint16_t lbStyle;
    uint32_t lbColor;
    uint16_t lbHatch;
};

struct tagWMRCREATEPEN {
    tagWMR wmr;
    tagLOGPEN16 pen;
};
static_assert(sizeof(tagWMRCREATEPEN) == 16, "META_CREATEPENINDIRECT layout");

struct tagWMRCREATEBRUSHINDIRECT {
    tagWMR wmr;
    tagLOGBRUSH16 brush;
};
static_assert(sizeof(tagWMRCREATEBRUSHINDIRECT) == 14, "META_CREATEBRUSHINDIRECT layout");

struct tagWMREXTCREATEFONTINDIRECT {
    tagWMR wmr;
    FONTSPEC font;
};
static_assert(sizeof(tagWMREXTCREATEFONTINDIRECT) == 56, "META_CREATEFONTINDIRECT layout");

// META_SELECTOBJECT and META_DELETEOBJECT.
struct tagWMRSELECTOBJECT {
    tagWMR wmr;
    uint16_t ObjectIndex;
};

// META_MOVETO and META_LINETO (parameters in reverse order).
struct tagWMRLINETO {
    tagWMR wmr;
    int16_t y;
    int16_t x;
};

// META_SETWINDOWORG and META_SETWINDOWEXT.
struct tagWMRSETVIEWPORTORGEX {
    tagWMR wmr;
    int16_t y;
    int16_t x;
};

// META_DIBBITBLT and META_BITBLT; the bitmap follows at offset 22.
struct tagWMRBITBLT {
    tagWMR wmr;
    uint32_t RasterOperation;
    int16_t YSrc;
    int16_t XSrc;
    uint16_t Height;
    uint16_t Width;
    int16_t YDest;
    int16_t XDest;
};
static_assert(sizeof(tagWMRBITBLT) == 22, "META_DIBBITBLT layout");

// META_DIBSTRETCHBLT; the bitmap follows at offset 26.
struct tagWMRDIBSTRETCHBLT {
    tagWMR wmr;
    uint32_t RasterOperation;
    int16_t SrcHeight;
    int16_t SrcWidth;
    int16_t YSrc;
    int16_t XSrc;
    uint16_t DestHeight;
    uint16_t DestWidth;
    int16_t YDest;
    int16_t XDest;
};
static_assert(sizeof(tagWMRDIBSTRETCHBLT) == 26, "META_DIBSTRETCHBLT layout");

// META_STRETCHDIB and META_STRETCHBLT; the bitmap follows at offset 28.
struct tagWMRSTRETCHBLT {
    tagWMR wmr;
    uint32_t RasterOperation;
    uint16_t ColorUsage;
    int16_t SrcHeight;
    int16_t SrcWidth;
    int16_t YSrc;
    int16_t XSrc;
    uint16_t DestHeight;
    uint16_t DestWidth;
    int16_t YDest;
    int16_t XDest;
};
static_assert(sizeof(tagWMRSTRETCHBLT) == 28, "META_STRETCHDIB layout");

// META_POLYLINE and META_POLYGON.
struct tagWMRPOLYLINE {
    tagWMR wmr;
    uint16_t NumberOfPoints;
    tagPOINTS aPoints[1];
};

// META_POLYPOLYGON: counts, then all points.
struct tagWMRPOLYPOLYLINE {
    tagWMR wmr;
    uint16_t NumberOfPolygons;
    uint16_t aPointsPerPolygon[1];
};

// META_RECTANGLE and META_ELLIPSE: BottomRect, RightRect, TopRect, LeftRect.
struct tagWMRELLIPSE {
    tagWMR wmr;
    int16_t BottomRect;
    int16_t RightRect;
    int16_t TopRect;
    int16_t LeftRect;
};

// META_EXTTEXTOUT: the fixed fields; the characters follow.
struct tagWMREXTTEXTOUT {
    tagWMR wmr;
    int16_t y;
    int16_t x;
    uint16_t StringLength;
    uint16_t fwOpts;
};
static_assert(sizeof(tagWMREXTTEXTOUT) == 14, "META_EXTTEXTOUT layout");

struct tagWMRPATBLT {
    tagWMR wmr;
    uint32_t RasterOperation;
    int16_t Height;
    int16_t Width;
    int16_t YLeft;
    int16_t XLeft;
};

// META_SETBKMODE: the mode, then a reserved word that many files leave out.
struct tagWMRSETBKMODE {
    tagWMR wmr;
    uint16_t BkMode;
    uint16_t Reserved;
};

#pragma pack(pop)

#endif
