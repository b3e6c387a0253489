// The WMF driver: document size, the record walk and dispatch.
#define TRACE_FILE "Wmf2SVG"
#include "wmf/Wmf2SVG.h"

#include <cstring>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "geometry/Numeric.h"

namespace {

const uint16_t kMetaEof = 0x0000;

// Reads a record prefix in host order.
tagWMR ReadPrefix(const unsigned char* p, int (*normalise)(tagWMR*, const unsigned char*)) {
    tagWMR wmr;
    if (!normalise(&wmr, p)) std::memcpy(&wmr, p, sizeof wmr);
    return wmr;
}

}  // namespace

WMF2SVGConverter::WMF2SVGConverter()
    : m_handlers(nullptr),
      m_recordNames(nullptr),
      m_picWidth(0),
      m_winExtX(0),
      m_winOrgX(0),
      m_picHeight(0),
      m_winExtY(0),
      m_winOrgY(0),
      m_inch(1440),
      m_scale(15.0f),
      m_xFactor(1.0f),
      m_yFactor(1.0f),
      m_placeable(0) {}

WMF2SVGConverter::~WMF2SVGConverter() {}

QString WMF2SVGConverter::GetOutSVG() {
    return m_writer.GetSVGOutput();
}

QByteArray WMF2SVGConverter::TakeOutSVG() {
    return m_writer.TakeSVGOutput();
}

int WMF2SVGConverter::ConvertWMFToSVG(const unsigned char* records, unsigned long total,
                                      unsigned long maxRecord, CLogger& log) {
    TRACE_ENTER();
    if (!records) TRACE_RETURN(0);
    InitWMFRecHandlers();
    if (m_placeable)
        m_writer.CreateXML(numeric::TruncToInt(m_picWidth / (double)m_scale),
                           numeric::TruncToInt(m_picHeight / (double)m_scale));
    else
        m_writer.CreateXML(1024, 768);
    log.LogString("#Start Of File\n");
    try {
        WalkRecords(records, total, maxRecord, log);
    } catch (...) {
        m_writer.Close();
        LOG_FATAL("Exception occured while converting WMF file to SVG");
        TRACE_RETURN(-1);
    }
    log.LogString("\nEnd of File\n");
    m_writer.Close();
    TRACE_RETURN(2);
}

void WMF2SVGConverter::WalkRecords(const unsigned char* records, unsigned long total,
                                   unsigned long maxRecord, CLogger& log) {
    // The records occupy what the headers leave of `total`. A record that does not fit, or
    // whose size is 0, ends the walk; every step advances by at least 2 bytes.
    const uint64_t end = total > HeaderBytes() ? total - HeaderBytes() : 0;
    uint64_t pos = 0;
    uint64_t count = 0;
    uint32_t recordNumber = 1;
    // Output beyond the budget ends the walk too, at the start of the record that passed it.
    m_writer.LimitOutput(OutputBudget(total));
    size_t recordStart = m_writer.OutputSize();
    try {
        while (records::Fits(pos, sizeof(tagWMR), end)) {
            const tagWMR wmr = ReadPrefix(records + pos, InitWMR);
            if (wmr.rdSize > maxRecord || wmr.rdSize == 0) break;
            const uint64_t size = (uint64_t)wmr.rdSize * 2;
            if (!records::Fits(pos, size, end)) break;
            count += size;
            if (count >= total || wmr.rdFunction == kMetaEof) break;
            // A record without a handler is only named: its prefix is all that is read of it.
            const HandlerEntry* entry = HandlerFor(wmr.rdFunction);
            unsigned char* copy = entry ? m_recordCopy.Fill(records + pos, size, entry->fixed)
                                        : m_recordCopy.Fill(records + pos, sizeof(tagWMR), 0);
            recordStart = m_writer.OutputSize();
            HandleWMFRecordData(copy, (unsigned int)size, log);
            if (++recordNumber == 0) break;
            pos += size;
        }
    } catch (const OutputLimitReached&) {
        m_writer.CutOutput(recordStart);
        return;
    }
    m_writer.LimitOutput(SvgBuffer::kNoLimit);
    return;
}

int WMF2SVGConverter::HandleWMFRecordData(unsigned char* record, unsigned int size, CLogger& log) {
    TRACE_ENTER();
    if (size == 0) TRACE_RETURN(0);
    const tagWMR wmr = ReadPrefix(record, InitMETARECORD);
    const HandlerEntry* entry = HandlerFor(wmr.rdFunction);
    if (!entry) {
        log.LogString(RecordName(wmr.rdFunction));
        TRACE_RETURN(1);
    }
    const int result = (this->*(entry->handler))(record, size);
    TRACE_RETURN(result);
}
