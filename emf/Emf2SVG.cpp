// The EMF driver: header test, picture size and origin, the record walk and dispatch.
#define TRACE_FILE "Emf2SVG"
#include "emf/Emf2SVG.h"

#include <cmath>
#include <cstring>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "geometry/RgnPathUtil.h"
#include "geometry/Numeric.h"

namespace {

const uint32_t kEmrEof = 14;

using numeric::Diff32;

// Device pixels per millimetre assumed when the header gives no millimetre size (96 dpi).
const double kDefaultPixelsPerMm = 96.0 / 25.4;

// Device pixels per millimetre on one axis; the default resolution when the header's
// millimetre size is zero or the ratio is not finite.
double PixelsPerMm(int32_t device, int32_t millimetres) {
    if (millimetres == 0) return kDefaultPixelsPerMm;
    const double r = (double)device / (double)millimetres;
    return std::isfinite(r) ? r : kDefaultPixelsPerMm;
}

// Rounds a picture size to an integer: halves go up.
int RoundSize(float v) {
    const double f = std::floor((double)v);
    return numeric::TruncToInt(f + 0.5 > (double)v ? f : std::ceil((double)v));
}

}  // namespace

Emf2SvgConverter::Emf2SvgConverter()
    : m_handlers(nullptr),
      m_clipBudget(0),
      m_recordNames(nullptr),
      m_vpScaleX(1.0f),
      m_vpScaleY(1.0f),
      m_worldXform{1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f},
      m_originX(0),
      m_originY(0),
      m_frameScaleX(1.0f),
      m_frameScaleY(1.0f),
      m_anisotropic(0),
      m_viewportExtX(0),
      m_viewportExtY(0),
      m_windowExtX(0),
      m_windowExtY(0),
      m_windowOrgX(0),
      m_windowOrgY(0),
      m_viewportOrgX(0),
      m_viewportOrgY(0) {}

Emf2SvgConverter::~Emf2SvgConverter() {}

int Emf2SvgConverter::IsValidEMFFile(tagENHMETAHEADER& header) {
    TRACE_ENTER();
    if (header.dSignature != ENHMETA_SIGNATURE) TRACE_RETURN(-2);
    TRACE_RETURN(1);
}

QString Emf2SvgConverter::GetOutSVG() {
    return m_writer.GetSVGOutput();
}

QByteArray Emf2SvgConverter::TakeOutSVG() {
    return m_writer.TakeSVGOutput();
}

int Emf2SvgConverter::ConvertEMFToSVG(const unsigned char* data, CLogger& log) {
    TRACE_ENTER();
    if (!data) TRACE_RETURN(0);
    tagENHMETAHEADER header;
    std::memcpy(&header, data, sizeof header);
    InitEnhMetaHeader(header);
    if (header.dSignature != ENHMETA_SIGNATURE) TRACE_RETURN(0);

    InitEMFRecHandlers();
    SetupPicture(header);
    log.LogString("################# Start Of File ######################\n");
    try {
        WalkRecords(data, header, log);
    } catch (...) {
        LOG_FATAL("Exception occured");
        TRACE_RETURN(-1);
    }
    m_writer.Close();
    log.LogString("\n ############### End of File ##############\n");
    TRACE_RETURN(1);
}

void Emf2SvgConverter::SetupPicture(const tagENHMETAHEADER& h) {
    m_boundsRegion = QRegion(RectToQRect(h.rclBounds));
    m_clipBudget = h.nBytes / 4 + (1u << 18);

    // Frame scales: 0.01 mm per device unit. A degenerate bounds or frame rectangle would
    // make a zero or infinite divisor; the scale then stays 1.
    const int32_t frameW = Diff32(h.rclFrame.right, h.rclFrame.left);
    const int32_t frameH = Diff32(h.rclFrame.bottom, h.rclFrame.top);
    const float fx = (float)frameW / (float)Diff32(h.rclBounds.right, h.rclBounds.left);
    const float fy = (float)frameH / (float)Diff32(h.rclBounds.bottom, h.rclBounds.top);
    m_frameScaleX = (std::isfinite(fx) && fx != 0.0f) ? fx : 1.0f;
    m_frameScaleY = (std::isfinite(fy) && fy != 0.0f) ? fy : 1.0f;

    const double rx = PixelsPerMm(h.szlDevice.cx, h.szlMillimeters.cx);
    const double ry = PixelsPerMm(h.szlDevice.cy, h.szlMillimeters.cy);

    // Picture origin: the bounds' corner when the frame's corner lies within one device unit
    // of it on either axis, otherwise the frame's corner in millimetres.
    const float x = (float)((h.rclFrame.left / 100.0) * rx);
    const float y = (float)((h.rclFrame.top / 100.0) * ry);
    const double dx = (double)x - h.rclBounds.left, dy = (double)y - h.rclBounds.top;
    if ((dx > -1.0 && dx < 1.0) || (dy > -1.0 && dy < 1.0)) {
        m_originX = h.rclBounds.left;
        m_originY = h.rclBounds.top;
    } else {
        m_originX = h.rclFrame.left / 100;
        m_originY = h.rclFrame.top / 100;
    }

    const int width = RoundSize((float)((frameW / 100.0) * rx));
    const int height = RoundSize((float)((frameH / 100.0) * ry));
    m_writer.CreateXML(width, height);
    return;
}

void Emf2SvgConverter::WalkRecords(const unsigned char* data, const tagENHMETAHEADER& header,
                                   CLogger& log) {
    if (header.nRecords == 0) return;
    // The buffer holds nBytes bytes. A record that does not fit, or whose size cannot hold
    // its own header, ends the walk as EMR_EOF would; every step advances by at least 8.
    const uint64_t end = header.nBytes;
    uint64_t pos = header.nSize;
    uint32_t count = 0;
    // Output beyond the budget ends the walk too, at the start of the record that passed it.
    m_writer.LimitOutput(OutputBudget(header.nBytes));
    size_t recordStart = m_writer.OutputSize();
    try {
        while (records::Fits(pos, sizeof(tagEMR), end)) {
            tagEMR emr;
            std::memcpy(&emr, data + pos, sizeof emr);
            InitEMR(emr);
            if (emr.nSize < sizeof(tagEMR) || !records::Fits(pos, emr.nSize, end)) break;
            if (emr.iType == kEmrEof) break;
            // A record without a handler is only named: its type is all that is read of it.
            const HandlerEntry* entry = HandlerFor(emr.iType);
            unsigned char* copy = entry ? m_recordCopy.Fill(data + pos, emr.nSize, entry->fixed)
                                        : m_recordCopy.Fill(data + pos, sizeof(tagEMR), 0);
            recordStart = m_writer.OutputSize();
            HandleEnhMetaRecordData(copy, emr.nSize, log);
            if (++count == header.nRecords) break;
            pos += emr.nSize;
        }
    } catch (const OutputLimitReached&) {
        m_writer.CutOutput(recordStart);
        return;
    }
    m_writer.LimitOutput(SvgBuffer::kNoLimit);
    return;
}

int Emf2SvgConverter::HandleEnhMetaRecordData(unsigned char* record, unsigned int size,
                                              CLogger& log) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    tagEMR emr;
    std::memcpy(&emr, record, sizeof emr);
    InitEMRMETARECORD(emr);
    const HandlerEntry* entry = HandlerFor(emr.iType);
    if (!entry) {
        log.LogString(RecordName(emr.iType));
        TRACE_RETURN(1);
    }
    const int result = (this->*(entry->handler))(record, size);
    TRACE_RETURN(result);
}
