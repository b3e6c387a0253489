// WMF bitmap records: the device-independent bitmap each carries becomes an image element.
//
// The bitmap header follows the record's fixed fields and the pixel bits follow the 40-byte
// header directly; the colour table is read from the same bytes as the bits. META_BITBLT and
// META_STRETCHBLT are read with the layouts of META_DIBBITBLT and META_STRETCHDIB. The corner
// is mapped; the destination width and height are used as the record gives them.
#define TRACE_FILE "Wmf2SVG"
#include "api/Trace.h"
#include "byteorder/WmfNormalisers.h"
#include "svg/DibDecoder.h"
#include "wmf/Wmf2SVG.h"

template <class R>
void WMF2SVGConverter::DrawBitmap(const unsigned char* record, unsigned int size,
                                  int (*normalise)(R*, const unsigned char*), uint16_t R::*width,
                                  uint16_t R::*height) {
    const R r = ReadWmfRecord(record, normalise);
    dib::DibSource bitmap;
    if (!dib::LocateBitmap(record, size, sizeof r, sizeof r + sizeof(tagBITMAPINFOHEADER), bitmap))
        return;
    const QByteArray text = m_writer.OnRasterOperation(bitmap, -1, 0);
    if (!text.isEmpty()) m_writer.WriteBlt(MapX(r.XDest), MapY(r.YDest), r.*width, r.*height, text);
}

int WMF2SVGConverter::OnDIBBitBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    DrawBitmap(record, size, InitWMRBITBLT, &tagWMRBITBLT::Width, &tagWMRBITBLT::Height);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnDIBStretchBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    DrawBitmap(record, size, InitWMRDIBSTRETCHBLT, &tagWMRDIBSTRETCHBLT::DestWidth,
               &tagWMRDIBSTRETCHBLT::DestHeight);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnStretchDIB(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    DrawBitmap(record, size, InitWMRSTRETCHBLT, &tagWMRSTRETCHBLT::DestWidth,
               &tagWMRSTRETCHBLT::DestHeight);
    TRACE_RETURN(1);
}
