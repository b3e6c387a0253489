// The exported functions: format detection, the EMF and WMF entry points, the record log.
#define TRACE_FILE "SVGTool"
#include <QFile>
#include <algorithm>
#include <cstring>
#include <memory>

#include "api/Logger.h"
#include "api/SVGTool.h"
#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "emf/Emf2SVG.h"
#include "svgmodule.h"
#include "wmf/Wmf2SVG.h"

namespace {

const unsigned long kEmfHeaderSize = sizeof(tagENHMETAHEADER);
const unsigned long kWmfHeaderSize = sizeof(_WindowsMetaHeader);
const unsigned long kPlaceableSize = sizeof(_PlaceableMetaHeader);

// Copies up to sizeof(T) bytes of `data` (of which `available` exist) into a zeroed T.
template <class T>
T ReadHeader(const char* data, uint64_t available) {
    T header;
    std::memset(&header, 0, sizeof header);
    std::memcpy(&header, data, (size_t)std::min<uint64_t>(sizeof header, available));
    return header;
}

// Hands a converter's document (UTF-8) to the caller.
void Deliver(QByteArray svg, QByteArray& out) {
    out.clear();
    out.swap(svg);
}

}  // namespace

namespace svgtool {

int ConvertWMFToSVG(const char* data, uint64_t available, QByteArray& out) {
    TRACE_ENTER();
    if (!data) TRACE_RETURN(0);
    try {
        // Built on the heap: the converter's tables make it large for a thread's stack.
        std::unique_ptr<WMF2SVGConverter> converter(new WMF2SVGConverter);
        _PlaceableMetaHeader placeableHeader = ReadHeader<_PlaceableMetaHeader>(data, available);
        InitPlaceableMetaHeader(placeableHeader);
        const int placeable = placeableHeader.Key == PLACEABLE_KEY ? 1 : 0;
        const uint64_t offset =
            converter->InitializeCoordinates(placeable, placeableHeader) ? kPlaceableSize : 0;

        _WindowsMetaHeader header =
            ReadHeader<_WindowsMetaHeader>(data + std::min<uint64_t>(offset, available),
                                           available > offset ? available - offset : 0);
        InitWindowsMetaHeader(header);
        if (header.mtHeaderSize != 9 || header.mtNoParameters != 0) TRACE_RETURN(-3);

        // A header that declares more bytes than there are converts what is present. The
        // records are read in place: nothing writes to the input, and each record the walk
        // hands on is copied first.
        const uint64_t total = std::min<uint64_t>((uint64_t)header.mtSize * 2 + offset, available);
        const uint64_t headers = std::min<uint64_t>(offset + kWmfHeaderSize, total);
        const int result =
            converter->ConvertWMFToSVG(reinterpret_cast<const unsigned char*>(data) + headers,
                                       (unsigned long)total, header.mtMaxRecord, g_Logger);
        Deliver(converter->TakeOutSVG(), out);
        TRACE_RETURN(result);
    } catch (...) {
        LOG_FATAL("Exception occured while converting WMF file to SVG");
        TRACE_RETURN(-1);
    }
}

}  // namespace svgtool

int ConvertEMFToSVG(const char* data, QByteArray& out, unsigned long size) {
    TRACE_ENTER();
    // Too short to hold an EMF header: nothing to convert.
    if (!data || size < kEmfHeaderSize) TRACE_RETURN(0);
    try {
        std::unique_ptr<Emf2SvgConverter> converter(new Emf2SvgConverter);
        tagENHMETAHEADER header = ReadHeader<tagENHMETAHEADER>(data, kEmfHeaderSize);
        InitEnhMetaHeader(header);
        if (header.nBytes != size) {
            LOG_WARN("Invalid EMF data");
            TRACE_RETURN(-2);
        }
        // The records are read in place: nothing writes to the input, and each record the
        // walk hands on is copied first.
        const int result =
            converter->ConvertEMFToSVG(reinterpret_cast<const unsigned char*>(data), g_Logger);
        Deliver(converter->TakeOutSVG(), out);
        TRACE_RETURN(result);
    } catch (...) {
        LOG_FATAL("Exception occured while converting EMF data to SVG");
        TRACE_RETURN(-1);
    }
}

// Traced once, by the shared body, whichever entry reached it.
int ConvertWMFToSVG(const char* data, QByteArray& out) {
    // No length is given: the header's own size is trusted.
    return svgtool::ConvertWMFToSVG(data, UINT64_MAX, out);
}

namespace svgtool {

int ConvertMetafile(const char* data, uint64_t n, QByteArray& out) {
    TRACE_ENTER();
    if (!data || n == 0) TRACE_RETURN(0);
    if (n < kWmfHeaderSize) TRACE_RETURN(0);
    try {
        tagENHMETAHEADER header = ReadHeader<tagENHMETAHEADER>(data, n < kEmfHeaderSize ? 0 : n);
        InitEnhMetaHeader(header);
        int result;
        if (Emf2SvgConverter::IsValidEMFFile(header) == -2)
            result = ConvertWMFToSVG(data, n, out);
        else
            result = ::ConvertEMFToSVG(data, out, (unsigned long)n);
        TRACE_RETURN(result);
    } catch (...) {
        TRACE_RETURN(0);
    }
}

}  // namespace svgtool

// Traced once, by the shared body.
extern "C" int ConvertMetaFileToSVG(const QByteArray& in, QByteArray& out) {
    return svgtool::ConvertMetafile(in.constData(), (uint64_t)in.size(), out);
}

extern "C" int WMFToSVG(const QString& fileName, QByteArray& out) {
    try {
        QFile file(fileName);
        if (!file.exists()) return 0;
        if (!file.open(QIODevice::ReadOnly)) return 0;
        const QByteArray bytes = file.readAll();
        file.close();
        return ConvertMetaFileToSVG(bytes, out);
    } catch (...) {
        return 0;
    }
}

void EnableLogging(bool enable, QString fileName) {
    TRACE_ENTER();
    g_Logger.setLogging(enable, fileName);
    TRACE_RETURN();
}
