// Regions as rectangle lists: their outline, and conversions to and from QRegion.
//
// A region arrives in a metafile as rectangles (left, top, right, bottom; right and bottom
// exclusive). ConvertRgnDataToPath traces its outline: the four edges of every rectangle, with
// the parts of collinear edges that two rectangles share cancelled, horizontal edges first.
// CreateQRegionFromRects and GetRects carry a rectangle list into a QRegion and back, for the
// clip-region combinations.
#ifndef SVGMODULE_RGNPATHUTIL_H
#define SVGMODULE_RGNPATHUTIL_H

#include <QRect>
#include <QRegion>
#include <cstdint>
#include <list>

#include "MetafileStructs.h"

// An axis-aligned segment from (x1, y1) to (x2, y2).
class CLine {
  public:
    CLine() = default;
    CLine(int32_t ax1, int32_t ay1, int32_t ax2, int32_t ay2)
        : x1(ax1), y1(ay1), x2(ax2), y2(ay2) {}
    virtual ~CLine() = default;
    CLine(const CLine&) = default;
    CLine& operator=(const CLine&) = default;

    // Exchanges y1 and y2 when y1 > y2; x1 and x2 stay where they are.
    virtual void ArrangeInOrder();

    int32_t x1 = 0;
    int32_t y1 = 0;
    int32_t x2 = 0;
    int32_t y2 = 0;
};

// A horizontal segment (y1 == y2); ordering makes x1 <= x2.
class CHLine : public CLine {
  public:
    using CLine::CLine;
    void ArrangeInOrder() override;
};

// A vertical segment (x1 == x2); ordering makes y1 <= y2.
class CVLine : public CLine {
  public:
    using CLine::CLine;
    void ArrangeInOrder() override;
};

// The top (bottom false) or bottom edge of a rectangle, from its smaller to its larger x.
CHLine GetHLine(const tagRECT* r, bool bottom);
// The left (right false) or right edge of a rectangle, from its smaller to its larger y.
CVLine GetVLine(const tagRECT* r, bool right);

// For two collinear segments that overlap by more than an end point, appends to `list` the
// parts covered by exactly one of them and returns how many (0 for equal segments); returns
// -1, appending nothing, for segments on different lines, apart, or touching end to end.
int HSplitIfOverlap(CHLine& a, CHLine& b, std::list<CHLine>& list);
int VSplitIfOverlap(CVLine& a, CVLine& b, std::list<CVLine>& list);

// Appends the outline of `count` rectangles to `out`: the horizontal segments, then the
// vertical ones, each list in the order the cancelling pass leaves it. Returns 1.
int ConvertRgnDataToPath(int count, const tagRECT* rects, std::list<CLine>& out);

// The rectangle as a QRect, empty when it has no area. Its coordinates are kept, except that
// -2^31 becomes -(2^31 - 1) (the region arithmetic steps one below a left or top edge) and a
// side longer than 2^31 - 1 has its ends cut to +-(2^30 - 1), so that widths and heights stay
// within int.
QRect RectToQRect(const tagRECT& r);
// The most a combination of regions built here may count (CombinationCount): the work of
// making a region of at most that many rectangles (16 MiB of QRect).
const uint64_t kMaxRegionRects = 1 << 20;
// The count of combining two regions (union, intersection or symmetric difference), as the
// combination goes: the bands of the result lie between consecutive band edges of the two,
// and in each the combination takes the rectangles of both regions' bands there. Every
// rectangle of the two is counted at least once, and the result never has more rectangles
// than the count (rectangles crossing each other can make a region of the square of their
// number). Counting stops once the count passes `cap`; the value returned is then above it.
uint64_t CombinationCount(const QRegion& a, const QRegion& b, uint64_t cap);
// The union of `count` rectangles (none for a count of 0 or less). When the count of a step
// of the union passes kMaxRegionRects, the result is empty and `tooComplex` (when given) is
// set.
QRegion CreateQRegionFromRects(int count, const tagRECT* rects, bool* tooComplex = nullptr);
// The region's rectangles, in its y-then-x band order, in a new array owned by the caller
// (array delete); returns their number.
int GetRects(const QRegion& region, tagRECT** rects);

#endif
