// The faithful interpreter's SVG writer: turns device-space drawing operations into an SVG 1.1
// document whose user units are device units.
//
// The document's root carries the presentation defaults of the drawing system (no fill, round
// caps and joins), so each element writes only what differs from them. Consecutive elements
// of one style share a group that carries it. Hatch and image fills become patterns and
// gradient fills linear gradients, each written once and referenced by every fill that
// uses it. Consecutive elements of one clip share a group that clips them, around their
// style groups; each clip is written once as a clipPath (device space) and shared by every
// group that uses it. Nothing is drawn through an empty clip.
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
    // An image: written once into the definitions (by its content), then placed by a use
    // element with its own transform (DeviceSvgImage.cpp).
    void DrawImage(const ImageOp& op) override;
    void SetClip(std::shared_ptr<const Clip> clip) override;
    // Text as an SVG text element (DeviceSvgText.cpp).
    void DrawText(const TextOp& op) override;

    // Where the body stands, to return to when a record's drawing passed the limit.
    struct Mark {
        size_t size = 0;
        bool groupOpen = false;
        QByteArray group;
        int clipGroup = 0;
    };
    Mark GetMark() const { return {m_body.size(), m_groupOpen, m_group, m_clipGroup}; }
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
    void BeginElement(const char* style, size_t length);
    // Adds a drawn element's device-space bounds to DrawnBounds.
    void Extend(const RectF& bounds);
    // The attributes of an element's style, written into `out` (emptied first).
    void StyleOf(const DrawOp& op, SvgBuffer& out);
    // The id of the pattern of a hatch or image fill, written on first use.
    int PatternFor(const Fill& fill);
    // The id of an image fill's pattern: found by the image's identity, or encoded while the
    // encoding budget lasts; -1 once it is spent.
    int ImagePattern(const Fill& fill);
    void AppendPathData(const Path& path);
    // The id of a linear gradient fill's gradient, written on first use.
    int GradientFor(const Fill& fill);
    // Clipping (DeviceSvgClip.cpp). The id of the clip in force, its clipPath written on first
    // use; 0 for none.
    int ClipId();
    // False when the clip lets nothing of `bounds` be drawn.
    bool ClipShows(const RectF& bounds) const;
    void CloseGroups();
    // The id of a text's clipping path, written on first use (DeviceSvgText.cpp).
    int TextClipFor(const Path& clip);
    std::map<QByteArray, int> m_textClips;

    SvgBuffer m_body;
    SvgBuffer m_style;  // the style of the element being written, its room kept between them
    bool m_groupOpen = false;
    QByteArray m_group;  // the open group's style
    std::map<QByteArray, int> m_patterns;
    std::map<QByteArray, int> m_gradients;
    // Image fills by tile, colours (monochrome tiles), origin and pixel size (hundredths); the
    // tiles are kept alive so that no other image takes their address.
    std::map<std::tuple<const QImage*, int64_t, int64_t, int64_t, int64_t>, int> m_imagePatterns;
    std::vector<std::shared_ptr<const QImage>> m_tiles;
    size_t m_imageBudget = 0;  // bytes of tile pixels that may still be encoded
    // The id of an image's definition, written on first use; -1 when it cannot be written
    // (past the encoding budget or the document's limit).
    int ImageFor(const ImageOp& op);
    struct ImageDef {
        int id;
        ImageOp op;  // its content, kept to tell apart images whose hashes are equal
    };
    std::multimap<uint64_t, ImageDef> m_images;  // definitions by a hash of their content
    int m_nextId = 1;
    bool m_xlink = false;
    bool m_drawn = false;
    RectF m_bounds;
    // The clip in force, the id of its clipPath (-1: not looked up yet), and the clip of the
    // open clip group (0: none).
    std::shared_ptr<const Clip> m_clip;
    int m_clipId = 0;
    int m_clipGroup = 0;
    struct ClipDef {
        std::shared_ptr<const Clip> clip;  // kept alive: no other clip takes its address
        int id;
        size_t offset;  // where the body held it
    };
    std::multimap<uint64_t, ClipDef> m_clips;  // by a hash of their rectangles
    // Clips already looked up, by identity while they live, and their ids.
    std::map<const Clip*, std::pair<std::weak_ptr<const Clip>, int>> m_clipIds;
};

// Runs `draw`; when its drawing passes the document's limit, the document returns to where it
// stood before, and nothing of it is kept.
template <class Draw>
void DrawWithinLimit(DeviceSvg& writer, Draw&& draw) {
    const DeviceSvg::Mark mark = writer.GetMark();
    try {
        draw();
    } catch (const OutputLimitReached&) {
        writer.Rewind(mark);
    }
}

}  // namespace faithful

#endif
