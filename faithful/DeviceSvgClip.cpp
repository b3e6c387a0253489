// The faithful writer's clipping: the clip groups and their clipPath definitions.
#include <algorithm>

#include "faithful/DeviceSvg.h"
#include "faithful/Region.h"

namespace faithful {

namespace {

uint64_t HashOf(const QRegion& region) {
    uint64_t h = 1469598103934665603ull;
    const auto mix = [&h](int v) { h = (h ^ (uint32_t)v) * 1099511628211ull; };
    for (const QRect& r : region) {
        mix(r.x());
        mix(r.y());
        mix(r.width());
        mix(r.height());
    }
    return h;
}

}  // namespace

void DeviceSvg::SetClip(std::shared_ptr<const Clip> clip) {
    m_clip = std::move(clip);
    m_clipId = m_clip ? -1 : 0;
}

int DeviceSvg::ClipId() {
    if (m_clipId >= 0) return m_clipId;
    // A clip set again is known by its identity; a new one costs a look-up by content.
    const auto known = m_clipIds.find(m_clip.get());
    if (known != m_clipIds.end() && !known->second.first.expired())
        return m_clipId = known->second.second;
    const QRegion& region = m_clip->region;
    const uint64_t hash = HashOf(region);
    const auto range = m_clips.equal_range(hash);
    for (auto it = range.first; it != range.second; ++it) {
        if (it->second.clip->region != region) continue;
        m_clipIds[m_clip.get()] = std::make_pair(m_clip, it->second.id);
        return m_clipId = it->second.id;
    }
    const int id = m_nextId++;
    const size_t offset = m_body.size();
    if (region.isEmpty()) {
        m_body.Write("<defs><clipPath id=\"c", id, "\"/></defs>\n");
    } else {
        m_body.Write("<defs><clipPath id=\"c", id, "\"><path d=\"");
        AppendPathData(region::PathOf(region));
        m_body.Write("\"/></clipPath></defs>\n");
    }
    m_clips.emplace(hash, ClipDef{m_clip, id, offset});
    m_clipIds[m_clip.get()] = std::make_pair(m_clip, id);
    return m_clipId = id;
}

bool DeviceSvg::ClipShows(const RectF& b) const {
    if (!m_clip) return true;
    const QRect c = m_clip->region.boundingRect();
    if (m_clip->region.isEmpty()) return false;
    return std::max<double>(b.left, c.x()) <=
               std::min<double>(b.right, (double)c.x() + c.width()) &&
           std::max<double>(b.top, c.y()) <= std::min<double>(b.bottom, (double)c.y() + c.height());
}

void DeviceSvg::CloseGroups() {
    if (m_groupOpen) m_body.Write("</g>\n");
    m_groupOpen = false;
    if (m_clipGroup) m_body.Write("</g>\n");
    m_clipGroup = 0;
}

}  // namespace faithful
