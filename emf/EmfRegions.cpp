// Region fills and frames, clip regions and clip paths. Region records carry their rectangles
// after a region header; fills and frames map them to output units, while the clip-region
// record combines them, unmapped, into the converter's accumulated clip region and hands the
// writer the rectangles of the result.
//
// A rectangle count beyond what the record holds is cut to the rectangles that lie inside the
// record (as for point lists); a count with the top bit set gives no rectangles.
#define TRACE_FILE "Emf2SVG"
#include <algorithm>
#include <cstddef>
#include <memory>

#include "api/Trace.h"
#include "byteorder/BEndTools.h"
#include "byteorder/EmfNormalisers.h"
#include "emf/Emf2SVG.h"
#include "geometry/RgnPathUtil.h"

namespace {

enum ClipMode : uint32_t { kRgnAnd = 1, kRgnOr = 2, kRgnXor = 3 };

// The rectangles of the region data that starts `offset` bytes into the record, whose header
// has been normalised; copied out (they need not be aligned) and normalised.
std::vector<tagRECT> RegionRects(const unsigned char* record, unsigned int size, size_t offset,
                                 const _RGNDATAHEADER& header) {
    const uint64_t first = (uint64_t)offset + header.dwSize;
    const int32_t declared = (int32_t)header.nCount;
    if (declared <= 0 || first > size) return {};
    const uint32_t n = records::FitCount((uint32_t)declared, (size_t)first, sizeof(tagRECT), size);
    std::vector<tagRECT> rects(n);
    if (n > 0) std::memcpy(rects.data(), record + first, n * sizeof(tagRECT));
    for (tagRECT& r : rects) InitRECT(r);
    return rects;
}

}  // namespace

std::vector<tagRECT> Emf2SvgConverter::MappedRegion(unsigned char* record, unsigned int size,
                                                    size_t offset) {
    _RGNDATA& data = *reinterpret_cast<_RGNDATA*>(record + offset);
    Init_RGNDATA(data);
    std::vector<tagRECT> rects = RegionRects(record, size, offset, data.rdh);
    for (tagRECT& r : rects)
        r = tagRECT{MapX(r.left, 1), MapY(r.top, 1), MapX(r.right, 1), MapY(r.bottom, 1)};
    return rects;
}

int Emf2SvgConverter::OnFillRgn(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRFILLRGN& r = *reinterpret_cast<tagEMRFILLRGN*>(record);
    InitEMRFILLRGN(r);
    const std::vector<tagRECT> rects = MappedRegion(record, size, offsetof(tagEMRFILLRGN, RgnData));
    m_writer.FillRgn((unsigned int)rects.size(), rects.data(), r.ihBrush);
    TRACE_RETURN(1);
}

// The stroke sizes are passed on unmapped.
int Emf2SvgConverter::OnFrameRgn(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMRFRAMERGN& r = *reinterpret_cast<tagEMRFRAMERGN*>(record);
    InitEMRFRAMERGN(r);
    const std::vector<tagRECT> rects =
        MappedRegion(record, size, offsetof(tagEMRFRAMERGN, RgnData));
    m_writer.FrameRgn((unsigned int)rects.size(), rects.data(), r.ihBrush,
                      (unsigned int)r.szlStroke.cx, (unsigned int)r.szlStroke.cy);
    TRACE_RETURN(1);
}

// AND, OR and XOR combine the record's region into the accumulated one; every other mode
// (RGN_DIFF, RGN_COPY, ...) leaves it as it is. Either way the accumulated region becomes the
// clip. A record without region data changes nothing.
//
// Every record writes the whole accumulated region, so records that repeat a large one could
// make a document of the square of the file's size, and crossing rectangles combine into
// regions of the square of their number. Combining and writing are therefore paid from a
// budget of rectangles that grows with the file (m_clipBudget): a record that combines pays
// the rectangles it reads and the count of its combination (CombinationCount, which the
// region it makes and writes never exceeds); one that combines nothing pays the rectangles
// it writes. The combination is counted before it is made and given up once the count passes
// what the budget has left or kMaxRegionRects: the record then pays what was counted (all
// that was left) and is skipped like one without region data, as is a record that cannot pay
// for its writing or whose regions alone hold more rectangles than it could pay for.
int Emf2SvgConverter::OnExtSetClipRgn(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    tagEMREXTSELECTCLIPRGN& r = *reinterpret_cast<tagEMREXTSELECTCLIPRGN*>(record);
    InitEMREXTSELECTCLIPRGN(r);
    if (r.cbRgnData == 0) TRACE_RETURN(1);
    Init_RGNDATA(r.RgnData);
    const bool combine = r.iMode == kRgnAnd || r.iMode == kRgnOr || r.iMode == kRgnXor;
    uint64_t cost = (uint64_t)m_boundsRegion.rectCount();
    QRegion region;
    if (combine) {
        const std::vector<tagRECT> rects =
            RegionRects(record, size, offsetof(tagEMREXTSELECTCLIPRGN, RgnData), r.RgnData.rdh);
        bool tooComplex = false;
        region = CreateQRegionFromRects((int)rects.size(), rects.data(), &tooComplex);
        if (tooComplex) TRACE_RETURN(1);
        const uint64_t left = m_clipBudget - std::min<uint64_t>(rects.size(), m_clipBudget);
        const uint64_t cap = std::min(kMaxRegionRects, left);
        // The count takes every rectangle of the two at least once: a pair past the cap on
        // that alone is skipped without counting.
        if (cost + (uint64_t)region.rectCount() > cap) TRACE_RETURN(1);
        const uint64_t count = CombinationCount(m_boundsRegion, region, cap);
        cost = rects.size() + count;
        if (count > cap) {
            // Given up on the way: the counting spent what was left.
            m_clipBudget -= std::min(cost, m_clipBudget);
            TRACE_RETURN(1);
        }
    }
    if (cost > m_clipBudget) TRACE_RETURN(1);
    m_clipBudget -= cost;
    if (r.iMode == kRgnAnd) m_boundsRegion &= region;
    if (r.iMode == kRgnOr) m_boundsRegion |= region;
    if (r.iMode == kRgnXor) m_boundsRegion ^= region;
    tagRECT* clip = nullptr;
    const int count = GetRects(m_boundsRegion, &clip);
    const std::unique_ptr<tagRECT[]> owned(clip);
    m_writer.SetExtClipRgn((unsigned int)count, clip);
    TRACE_RETURN(1);
}

// The mode is read as stored: the writer does not use it.
int Emf2SvgConverter::OnSelectClipPath(unsigned char* record, unsigned int size) {
    if (IsEmptyRecord(record, size)) return 0;
    const tagEMRSELECTCLIPPATH& r = *reinterpret_cast<const tagEMRSELECTCLIPPATH*>(record);
    return m_writer.SelectClipPath(r.iMode) ? 1 : 0;
}

int Emf2SvgConverter::OnIntersectClipRect(unsigned char* record, unsigned int size) {
    return IsEmptyRecord(record, size) ? 0 : 1;
}
