// The faithful interpreter's SVG writer: turns device-space drawing operations into an SVG 1.1
// document whose user units are device units.
//
// The document's root carries the presentation defaults of the drawing system (no fill, round
// caps and joins), so each element writes only what differs from them. Consecutive elements
// of one style share a group that carries it. Hatch and image fills become patterns, each
// written once and referenced by every fill that uses it.
#ifndef SVGMODULE_FAITHFUL_DEVICESVG_H
#define SVGMODULE_FAITHFUL_DEVICESVG_H

#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <tuple>
#include <vector>

#include "faithful/DrawOps.h"
#include "svg/SvgBuffer.h"

namespace faithful {

// Appends `v` rounded to a hundredth with the fewest characters: no trailing zeros, no
// leading zero before the point, no "-0". Values past +-1e13 are cut to it; a value that is
// not finite is written as 0.
void AppendNumber(SvgBuffer& out, double v);

class DeviceSvg : public DrawSink {
  public:
    DeviceSvg();
    // The document may grow to `limit` bytes; a drawing that would pass it throws
    // OutputLimitReached (see Rewind).
    void SetLimit(size_t limit);

    void Draw(const DrawOp& op) override;
    // Text as an SVG text element (DeviceSvgText.cpp).
    void DrawText(const TextOp& op) override;

    // Where the body stands, to return to when a record's drawing passed the limit.
    struct Mark {
        size_t size = 0;
        bool groupOpen = false;
        QByteArray group;
    };
    Mark GetMark() const { return {m_body.size(), m_groupOpen, m_group}; }
    void Rewind(const Mark& mark);

    // The bounds of everything drawn (device units); false when nothing was.
    bool DrawnBounds(RectF& out) const;

    // The finished document: its size in CSS pixels and the device-space rectangle that
    // fills it.
    QByteArray Finish(double widthPx, double heightPx, const RectF& viewBox);

  private:
    // Every element is written through BeginElement: it opens a group with the attributes
    // `style` (a space before each), or stays in the open group when it has the same.
    void BeginElement(const QByteArray& style);
    // Adds a drawn element's device-space bounds to DrawnBounds.
    void Extend(const RectF& bounds);
    // The attributes of an element's style.
    QByteArray StyleOf(const DrawOp& op);
    // The id of the pattern of a hatch or image fill, written on first use.
    int PatternFor(const Fill& fill);
    // The id of an image fill's pattern: found by the image's identity, or encoded while the
    // encoding budget lasts; -1 once it is spent.
    int ImagePattern(const Fill& fill);
    void AppendPathData(const Path& path);
    // The id of a text's clipping path, written on first use (DeviceSvgText.cpp).
    int TextClipFor(const Path& clip);
    std::map<QByteArray, int> m_textClips;

    SvgBuffer m_body;
    bool m_groupOpen = false;
    QByteArray m_group;  // the open group's style
    std::map<QByteArray, int> m_patterns;
    // Image fills by tile, colours (monochrome tiles), origin and pixel size (hundredths); the
    // tiles are kept alive so that no other image takes their address.
    std::map<std::tuple<const QImage*, int64_t, int64_t, int64_t, int64_t>, int> m_imagePatterns;
    std::vector<std::shared_ptr<const QImage>> m_tiles;
    size_t m_imageBudget = 0;  // bytes of tile pixels that may still be encoded
    int m_nextId = 1;
    bool m_xlink = false;
    bool m_drawn = false;
    RectF m_bounds;
};

}  // namespace faithful

#endif
