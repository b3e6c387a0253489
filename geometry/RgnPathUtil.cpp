// Region outlines and the rectangle-list conversions of QRegion.
#define TRACE_FILE "RgnPathUtil"
#include "geometry/RgnPathUtil.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <unordered_map>
#include <utility>
#include <vector>

#include "api/Trace.h"

namespace {

constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();
// Lines with more edges than this are searched through an index rather than edge by edge.
constexpr size_t kIndexedLine = 16;
constexpr int32_t kCoordLimit = (1 << 30) - 1;

// An edge on its line: `line` is the y of a horizontal edge or the x of a vertical one, and
// the edge runs from `lo` to `hi` (lo <= hi) along it.
struct Edge {
    int32_t line;
    int32_t lo;
    int32_t hi;
};

// The split of two edges: -1 when they lie on different lines, apart, or touch end to end;
// otherwise the parts covered by exactly one of them are written to `pieces` (the one between
// the two low ends first) and their number returned, 0 for equal edges.
int SplitEdges(const Edge& a, const Edge& b, Edge pieces[2]) {
    if (a.line != b.line) return -1;
    if (a.hi < b.lo || b.hi < a.lo) return -1;
    if (a.hi == b.lo || b.hi == a.lo) return -1;
    int n = 0;
    if (a.lo != b.lo) pieces[n++] = Edge{a.line, std::min(a.lo, b.lo), std::max(a.lo, b.lo)};
    if (a.hi != b.hi) pieces[n++] = Edge{a.line, std::min(a.hi, b.hi), std::max(a.hi, b.hi)};
    return n;
}

// The cancelling pass over a list of edges. Each edge in list order becomes the cursor and is
// compared with the edges after it; the first one that splits with it (SplitEdges above 0) is
// removed together with the cursor, and their pieces are appended to the list, where they
// become cursors in turn. The list order is the order of creation, so an edge is named by its
// number, and the edges after the cursor are exactly those still waiting for their turn.
//
// Only edges on one line can split, so a cursor is compared with the waiting edges of its own
// line: one by one on a short line, through an index on a long one. The result, survivors and
// order, is that of comparing every pair.
class EdgeCanceller {
  public:
    explicit EdgeCanceller(std::vector<Edge> edges);
    // The surviving edges in list order.
    std::vector<Edge> Run();

  private:
    // Equal waiting edges of a long line, in list order, and the span they cover.
    struct Group {
        uint32_t head = kNone;
        uint32_t tail = kNone;
        int lo = 0;
        int hi = 0;
    };
    // The waiting edges of a long line. Spans are in doubled coordinates: the line's distinct
    // end points are the even positions 0, 2, 4, ... and the gaps between them the odd ones.
    // An edge covers the positions strictly between its ends, a point edge its own position,
    // so two edges split exactly when their spans meet (or are equal, which SplitEdges answers
    // with 0). The tree holds the first edge of each group at the nodes that tile its span;
    // `below` is the smallest waiting edge held at or below a node.
    struct LongLine {
        std::vector<int32_t> ends;
        std::unordered_map<uint64_t, uint32_t> groupOfKey;
        std::vector<Group> groups;
        int leaves = 1;
        std::vector<uint32_t> below;
        std::vector<uint32_t> heapOf;  // node -> index into heaps + 1, 0 for none
        std::vector<std::vector<uint32_t>> heaps;
    };
    struct Line {
        uint32_t head = kNone;  // short lines: the waiting edges, linked through m_next
        uint32_t tail = kNone;
        int longIndex = -1;
    };

    void Add(uint32_t seq);
    void ProcessCursor(uint32_t s);
    void ProcessShort(Line& line, uint32_t s);
    void ProcessLong(LongLine& l, uint32_t s);
    void Replace(uint32_t s, uint32_t j);
    uint32_t GroupOf(LongLine& l, const Edge& e);
    // Takes the first edge out of a group; Enter puts the group's new first edge in the tree.
    void TakeFirst(LongLine& l, uint32_t group);
    void Enter(LongLine& l, uint32_t group);
    // Adds `seq` (or, for kNone, nothing) at the nodes that tile [lo, hi] and refreshes the
    // minima on the way back up.
    void Cover(LongLine& l, int node, int nlo, int nhi, int lo, int hi, uint32_t seq);
    uint32_t Query(LongLine& l, int node, int nlo, int nhi, int lo, int hi);
    // The smallest waiting edge held at a node; edges that stopped waiting are dropped.
    uint32_t Top(LongLine& l, int node);

    std::vector<Edge> m_edges;
    std::vector<uint8_t> m_waiting;
    std::vector<uint8_t> m_alive;
    std::vector<uint32_t> m_next;  // next waiting edge of the short line or of the group
    std::vector<uint32_t> m_lineOf;
    std::vector<uint32_t> m_groupOf;
    std::vector<Line> m_lines;
    std::vector<LongLine> m_long;
};

EdgeCanceller::EdgeCanceller(std::vector<Edge> edges) : m_edges(std::move(edges)) {
    const size_t n = m_edges.size();
    m_waiting.assign(n, 1);
    m_alive.assign(n, 1);
    m_next.assign(n, kNone);
    m_lineOf.assign(n, 0);
    m_groupOf.assign(n, kNone);
    std::vector<uint32_t> order(n);
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(),
                     [&](uint32_t a, uint32_t b) { return m_edges[a].line < m_edges[b].line; });
    for (size_t first = 0, last = 0; first < n; first = last) {
        while (last < n && m_edges[order[last]].line == m_edges[order[first]].line) ++last;
        Line line;
        if (last - first > kIndexedLine) {
            LongLine l;
            for (size_t k = first; k < last; ++k) {
                l.ends.push_back(m_edges[order[k]].lo);
                l.ends.push_back(m_edges[order[k]].hi);
            }
            std::sort(l.ends.begin(), l.ends.end());
            l.ends.erase(std::unique(l.ends.begin(), l.ends.end()), l.ends.end());
            while (l.leaves < (int)(2 * l.ends.size() - 1)) l.leaves *= 2;
            l.below.assign(2 * (size_t)l.leaves, kNone);
            l.heapOf.assign(2 * (size_t)l.leaves, 0);
            line.longIndex = (int)m_long.size();
            m_long.push_back(std::move(l));
        }
        m_lines.push_back(line);
        for (size_t k = first; k < last; ++k) {
            m_lineOf[order[k]] = (uint32_t)(m_lines.size() - 1);
            Add(order[k]);
        }
    }
}

std::vector<Edge> EdgeCanceller::Run() {
    for (uint32_t s = 0; s < m_edges.size(); ++s)
        if (m_waiting[s]) ProcessCursor(s);
    std::vector<Edge> survivors;
    for (size_t s = 0; s < m_edges.size(); ++s)
        if (m_alive[s]) survivors.push_back(m_edges[s]);
    return survivors;
}

void EdgeCanceller::Add(uint32_t seq) {
    Line& line = m_lines[m_lineOf[seq]];
    if (line.longIndex < 0) {
        (line.tail == kNone ? line.head : m_next[line.tail]) = seq;
        line.tail = seq;
        return;
    }
    LongLine& l = m_long[line.longIndex];
    const uint32_t g = GroupOf(l, m_edges[seq]);
    m_groupOf[seq] = g;
    Group& group = l.groups[g];
    if (group.head == kNone) {
        group.head = group.tail = seq;
        Cover(l, 1, 0, l.leaves - 1, group.lo, group.hi, seq);
    } else {
        m_next[group.tail] = seq;
        group.tail = seq;
    }
}

void EdgeCanceller::ProcessCursor(uint32_t s) {
    Line& line = m_lines[m_lineOf[s]];
    if (line.longIndex < 0)
        ProcessShort(line, s);
    else
        ProcessLong(m_long[line.longIndex], s);
}

// The cursor heads its line's list of waiting edges.
void EdgeCanceller::ProcessShort(Line& line, uint32_t s) {
    m_waiting[s] = 0;
    line.head = m_next[s];
    if (line.head == kNone) line.tail = kNone;
    Edge pieces[2];
    for (uint32_t prev = kNone, j = line.head; j != kNone; prev = j, j = m_next[j]) {
        if (SplitEdges(m_edges[s], m_edges[j], pieces) <= 0) continue;
        (prev == kNone ? line.head : m_next[prev]) = m_next[j];
        if (line.tail == j) line.tail = prev;
        m_waiting[j] = 0;
        Replace(s, j);
        return;
    }
}

// The cursor heads its group; the rest of the group (edges equal to it, which it does not
// split with) stays out of the tree while its partner is looked for.
void EdgeCanceller::ProcessLong(LongLine& l, uint32_t s) {
    const uint32_t g = m_groupOf[s];
    TakeFirst(l, g);
    const uint32_t j = Query(l, 1, 0, l.leaves - 1, l.groups[g].lo, l.groups[g].hi);
    if (j != kNone) {
        const uint32_t h = m_groupOf[j];
        TakeFirst(l, h);
        Enter(l, h);
        Replace(s, j);
    }
    Enter(l, g);
}

// Removes the cursor and its partner and appends their pieces.
void EdgeCanceller::Replace(uint32_t s, uint32_t j) {
    Edge pieces[2];
    const int n = SplitEdges(m_edges[s], m_edges[j], pieces);
    m_alive[s] = m_alive[j] = 0;
    for (int k = 0; k < n; ++k) {
        const uint32_t seq = (uint32_t)m_edges.size();
        m_edges.push_back(pieces[k]);
        m_waiting.push_back(1);
        m_alive.push_back(1);
        m_next.push_back(kNone);
        m_lineOf.push_back(m_lineOf[s]);
        m_groupOf.push_back(kNone);
        Add(seq);
    }
}

uint32_t EdgeCanceller::GroupOf(LongLine& l, const Edge& e) {
    const auto rank = [&](int32_t v) {
        return (int)(std::lower_bound(l.ends.begin(), l.ends.end(), v) - l.ends.begin());
    };
    const int a = rank(e.lo), b = rank(e.hi);
    const uint64_t key = ((uint64_t)(uint32_t)a << 32) | (uint32_t)b;
    const auto found = l.groupOfKey.emplace(key, (uint32_t)l.groups.size());
    if (found.second) {
        Group group;
        group.lo = a < b ? 2 * a + 1 : 2 * a;
        group.hi = a < b ? 2 * b - 1 : 2 * a;
        l.groups.push_back(group);
    }
    return found.first->second;
}

void EdgeCanceller::TakeFirst(LongLine& l, uint32_t g) {
    Group& group = l.groups[g];
    const uint32_t first = group.head;
    m_waiting[first] = 0;
    group.head = m_next[first];
    if (group.head == kNone) group.tail = kNone;
    Cover(l, 1, 0, l.leaves - 1, group.lo, group.hi, kNone);
}

void EdgeCanceller::Enter(LongLine& l, uint32_t g) {
    const Group& group = l.groups[g];
    if (group.head != kNone) Cover(l, 1, 0, l.leaves - 1, group.lo, group.hi, group.head);
}

void EdgeCanceller::Cover(LongLine& l, int node, int nlo, int nhi, int lo, int hi, uint32_t seq) {
    if (hi < nlo || nhi < lo) return;
    if (lo <= nlo && nhi <= hi) {
        if (seq != kNone) {
            if (l.heapOf[node] == 0) {
                l.heaps.emplace_back();
                l.heapOf[node] = (uint32_t)l.heaps.size();
            }
            std::vector<uint32_t>& heap = l.heaps[l.heapOf[node] - 1];
            heap.push_back(seq);
            std::push_heap(heap.begin(), heap.end(), std::greater<uint32_t>());
        }
    } else {
        const int mid = nlo + (nhi - nlo) / 2;
        Cover(l, 2 * node, nlo, mid, lo, hi, seq);
        Cover(l, 2 * node + 1, mid + 1, nhi, lo, hi, seq);
    }
    uint32_t least = Top(l, node);
    if (nlo != nhi) least = std::min({least, l.below[2 * node], l.below[2 * node + 1]});
    l.below[node] = least;
}

uint32_t EdgeCanceller::Query(LongLine& l, int node, int nlo, int nhi, int lo, int hi) {
    if (hi < nlo || nhi < lo) return kNone;
    if (lo <= nlo && nhi <= hi) return l.below[node];
    const int mid = nlo + (nhi - nlo) / 2;
    return std::min({Top(l, node), Query(l, 2 * node, nlo, mid, lo, hi),
                     Query(l, 2 * node + 1, mid + 1, nhi, lo, hi)});
}

uint32_t EdgeCanceller::Top(LongLine& l, int node) {
    if (l.heapOf[node] == 0) return kNone;
    std::vector<uint32_t>& heap = l.heaps[l.heapOf[node] - 1];
    while (!heap.empty() && !m_waiting[heap.front()]) {
        std::pop_heap(heap.begin(), heap.end(), std::greater<uint32_t>());
        heap.pop_back();
    }
    return heap.empty() ? kNone : heap.front();
}

// True when the rectangles are already in QRegion's own form: y-x sorted bands of equal
// height that do not overlap, the rectangles of a band apart (not even touching), and no band
// directly below one with the same spans. That form is unique to the area covered, so a
// region set from such a list equals the union of its rectangles.
bool InRegionForm(const std::vector<QRect>& boxes) {
    size_t prev = 0;  // first rectangle of the previous band
    for (size_t first = 0, last = 0; first < boxes.size(); prev = first, first = last) {
        for (last = first + 1; last < boxes.size() && boxes[last].top() == boxes[first].top();
             ++last) {
            if (boxes[last].bottom() != boxes[first].bottom() ||
                boxes[last].left() <= boxes[last - 1].right() + 1)
                return false;
        }
        if (first == 0) continue;
        if (boxes[first].top() <= boxes[prev].bottom()) return false;
        if (boxes[first].top() == boxes[prev].bottom() + 1 && last - first == first - prev &&
            std::equal(boxes.begin() + first, boxes.begin() + last, boxes.begin() + prev,
                       [](const QRect& a, const QRect& b) {
                           return a.left() == b.left() && a.right() == b.right();
                       }))
            return false;
    }
    return true;
}

// The union of boxes[lo, hi), halves first: each union costs the sizes of its two sides.
QRegion Unite(const std::vector<QRect>& boxes, size_t lo, size_t hi) {
    if (hi == lo) return QRegion();
    if (hi - lo == 1) return QRegion(boxes[lo]);
    const size_t mid = lo + (hi - lo) / 2;
    return Unite(boxes, lo, mid).united(Unite(boxes, mid, hi));
}

}  // namespace

void CLine::ArrangeInOrder() {
    if (y1 > y2) std::swap(y1, y2);
}

void CHLine::ArrangeInOrder() {
    if (x1 > x2) std::swap(x1, x2);
}

void CVLine::ArrangeInOrder() {
    if (y1 > y2) std::swap(y1, y2);
}

CHLine GetHLine(const tagRECT* r, bool bottom) {
    TRACE_ENTER();
    const int32_t y = bottom ? r->bottom : r->top;
    TRACE_RETURN(CHLine(std::min(r->left, r->right), y, std::max(r->left, r->right), y));
}

CVLine GetVLine(const tagRECT* r, bool right) {
    TRACE_ENTER();
    const int32_t x = right ? r->right : r->left;
    TRACE_RETURN(CVLine(x, std::min(r->top, r->bottom), x, std::max(r->top, r->bottom)));
}

int HSplitIfOverlap(CHLine& a, CHLine& b, std::list<CHLine>& list) {
    TRACE_ENTER();
    Edge pieces[2];
    const int n = SplitEdges(Edge{a.y1, a.x1, a.x2}, Edge{b.y1, b.x1, b.x2}, pieces);
    for (int k = 0; k < n; ++k)
        list.push_back(CHLine(pieces[k].lo, pieces[k].line, pieces[k].hi, pieces[k].line));
    TRACE_RETURN(n);
}

int VSplitIfOverlap(CVLine& a, CVLine& b, std::list<CVLine>& list) {
    TRACE_ENTER();
    Edge pieces[2];
    const int n = SplitEdges(Edge{a.x1, a.y1, a.y2}, Edge{b.x1, b.y1, b.y2}, pieces);
    for (int k = 0; k < n; ++k)
        list.push_back(CVLine(pieces[k].line, pieces[k].lo, pieces[k].line, pieces[k].hi));
    TRACE_RETURN(n);
}

int ConvertRgnDataToPath(int count, const tagRECT* rects, std::list<CLine>& out) {
    TRACE_ENTER();
    std::vector<Edge> horizontal, vertical;
    if (count > 0 && rects) {
        horizontal.reserve(2 * (size_t)count);
        vertical.reserve(2 * (size_t)count);
        for (int i = 0; i < count; ++i) {
            for (bool far : {false, true}) {
                const CVLine v = GetVLine(&rects[i], far);
                vertical.push_back(Edge{v.x1, v.y1, v.y2});
            }
            for (bool far : {false, true}) {
                const CHLine h = GetHLine(&rects[i], far);
                horizontal.push_back(Edge{h.y1, h.x1, h.x2});
            }
        }
    }
    for (const Edge& e : EdgeCanceller(std::move(horizontal)).Run()) {
        CLine line(e.lo, e.line, e.hi, e.line);
        line.ArrangeInOrder();
        out.push_back(line);
    }
    for (const Edge& e : EdgeCanceller(std::move(vertical)).Run()) {
        CLine line(e.line, e.lo, e.line, e.hi);
        line.ArrangeInOrder();
        out.push_back(line);
    }
    TRACE_RETURN(1);
}

QRect RectToQRect(const tagRECT& r) {
    const auto cut = [](int32_t v) { return std::clamp(v, -kCoordLimit, kCoordLimit); };
    const int32_t left = cut(r.left), top = cut(r.top), right = cut(r.right);
    const int32_t bottom = cut(r.bottom);
    if (right <= left || bottom <= top) return QRect();
    return QRect(QPoint(left, top), QPoint(right - 1, bottom - 1));
}

QRegion CreateQRegionFromRects(int count, const tagRECT* rects) {
    std::vector<QRect> boxes;
    if (count > 0 && rects) {
        boxes.reserve((size_t)count);
        for (int i = 0; i < count; ++i) {
            const QRect box = RectToQRect(rects[i]);
            if (!box.isEmpty()) boxes.push_back(box);
        }
    }
    if (!InRegionForm(boxes)) return Unite(boxes, 0, boxes.size());
    QRegion region;
    region.setRects(boxes.data(), (int)boxes.size());
    return region;
}

int GetRects(const QRegion& region, tagRECT** rects) {
    const int n = region.rectCount();
    tagRECT* out = new tagRECT[(size_t)n];
    int i = 0;
    for (const QRect& box : region) {
        if (i == n) break;
        out[i++] = tagRECT{box.left(), box.top(), box.right() + 1, box.bottom() + 1};
    }
    *rects = out;
    return i;
}
