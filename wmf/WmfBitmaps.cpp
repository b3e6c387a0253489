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

void WMF2SVGConverter::DrawBitmap(const unsigned char* record, unsigned int size,
                                  size_t headerOffset, int16_t x, int16_t y, uint16_t width,
                                  uint16_t height) {
    dib::DibSource bitmap;
    if (!dib::LocateBitmap(record, size, headerOffset, headerOffset + sizeof(tagBITMAPINFOHEADER),
                           bitmap))
        return;
    const QByteArray text = m_writer.OnRasterOperation(bitmap, -1, 0);
    if (!text.isEmpty()) m_writer.WriteBlt(MapX(x), MapY(y), width, height, text);
}

int WMF2SVGConverter::OnDIBBitBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMRBITBLT r = ReadWmfRecord(record, InitWMRBITBLT);
    DrawBitmap(record, size, sizeof r, r.XDest, r.YDest, r.Width, r.Height);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnDIBStretchBlt(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMRDIBSTRETCHBLT r = ReadWmfRecord(record, InitWMRDIBSTRETCHBLT);
    DrawBitmap(record, size, sizeof r, r.XDest, r.YDest, r.DestWidth, r.DestHeight);
    TRACE_RETURN(1);
}

int WMF2SVGConverter::OnStretchDIB(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMRSTRETCHBLT r = ReadWmfRecord(record, InitWMRSTRETCHBLT);
    DrawBitmap(record, size, sizeof r, r.XDest, r.YDest, r.DestWidth, r.DestHeight);
    TRACE_RETURN(1);
}
