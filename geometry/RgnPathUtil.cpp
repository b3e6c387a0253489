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
// Where the ends of a rectangle's side too long for int are cut.
constexpr int32_t kCutLimit = (1 << 30) - 1;

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

// The positions an edge covers in doubled coordinates: the open range between its ends, or
// the point itself. Two edges split exactly when their spans meet and are not equal.
std::pair<int64_t, int64_t> Span(const Edge& e) {
    if (e.lo == e.hi) return {2 * (int64_t)e.lo, 2 * (int64_t)e.lo};
    return {2 * (int64_t)e.lo + 1, 2 * (int64_t)e.hi - 1};
}

// True when no two edges of a line split: their spans are apart or equal. Rectangles of one
// band of a region give such lines.
bool NoneSplit(const std::vector<Edge>& edges) {
    std::vector<std::pair<int64_t, int64_t>> spans;
    spans.reserve(edges.size());
    for (const Edge& e : edges) spans.push_back(Span(e));
    std::sort(spans.begin(), spans.end());
    for (size_t i = 1; i < spans.size(); ++i)
        if (spans[i] != spans[i - 1] && spans[i].first <= spans[i - 1].second) return false;
    return true;
}

// The cancelling pass over a list of edges. Each edge in list order becomes the cursor and is
// compared with the edges after it; the first one that splits with it (SplitEdges above 0) is
// removed together with the cursor, and their pieces are appended to the list, where they
// become cursors in turn. The result, survivors and order, is that of comparing every pair;
// it is reached as follows.
//
// Only edges on one line split, and pieces stay on the line of their parents, so the pass
// restricted to one line is the pass over that line's edges alone: the lines are run one after
// the other. Where the pieces stand in the whole list follows from their descent: an input
// edge is of generation 0, a piece one generation after the cursor that made it. Every edge of
// a generation is made before the first cursor of that generation has its turn, so the list
// holds the generations one after the other, each in the order of the cursors that made its
// edges, and a cursor's two pieces in the order made.

// An edge of the pass and where it came from: the cursor that made it (kNone for an input
// edge), which of that cursor's pieces it is, and its generation.
struct Item {
    Edge edge;
    uint32_t creator;
    uint32_t generation;
    uint8_t piece;
    uint8_t alive;
};

// The pass over the edges of one line. The line's edges are numbered in list order, pieces
// after the input edges as they are made, so the edges after a cursor are those still waiting
// for their turn. A cursor is compared with them one by one on a short line, through an index
// on a long one. The buffers are kept from one line to the next.
// The most pieces the pass may make: for every edge, and at least.
const size_t kPiecesPerEdge = 2, kPiecesAtLeast = 1 << 16;
struct PieceBudgetExceeded {};

class LineCanceller {
  public:
    // Runs the pass over `line` (indices into `items`, in list order): clears `alive` of the
    // edges removed and appends the pieces made to `items`.
    // Runs the pass over one line; throws PieceBudgetExceeded when the items would pass
    // `maxItems`.
    void Run(std::vector<Item>& items, const std::vector<uint32_t>& line, size_t maxItems);

  private:
    // Equal waiting edges of a long line, in list order, and the span they cover.
    struct Group {
        uint32_t head = kNone;
        uint32_t tail = kNone;
        int lo = 0;
        int hi = 0;
    };

    void Add(uint32_t s);
    void ProcessShort(uint32_t s);
    void ProcessLong(uint32_t s);
    void Replace(uint32_t s, uint32_t j);
    uint32_t GroupOf(const Edge& e);
    // Takes the first edge out of a group; Enter puts the group's new first edge in the tree.
    void TakeFirst(uint32_t group);
    void Enter(uint32_t group);
    // Adds `s` (or, for kNone, nothing) at the nodes that tile [lo, hi] and refreshes the
    // minima on the way back up.
    void Cover(int node, int nlo, int nhi, int lo, int hi, uint32_t s);
    uint32_t Query(int node, int nlo, int nhi, int lo, int hi);
    // The smallest waiting edge held at a node; edges that stopped waiting are dropped.
    uint32_t Top(int node);

    std::vector<Item>* m_items = nullptr;
    std::vector<uint32_t> m_ids;  // edge of the line -> index in m_items
    std::vector<Edge> m_edges;
    std::vector<uint8_t> m_waiting;
    std::vector<uint32_t> m_next;  // next waiting edge of the short line or of the group
    uint32_t m_head = kNone;       // short line: the waiting edges
    uint32_t m_tail = kNone;
    bool m_indexed = false;

    // The index of a long line. Spans are in doubled coordinates: the line's distinct end
    // points are the even positions 0, 2, 4, ... and the gaps between them the odd ones. An
    // edge covers the positions strictly between its ends, a point edge its own position, so
    // two edges split exactly when their spans meet (or are equal, which SplitEdges answers
    // with 0). Equal edges form a group; the tree holds the first waiting edge of each group
    // at the nodes that tile the group's span, and `below` is the smallest waiting edge held
    // at or below a node.
    std::vector<int32_t> m_ends;
    std::unordered_map<uint64_t, uint32_t> m_groupOfKey;
    std::vector<Group> m_groups;
    std::vector<uint32_t> m_groupOf;
    int m_leaves = 1;
    std::vector<uint32_t> m_below;
    std::vector<uint32_t> m_heapOf;  // node -> index into m_heaps + 1, 0 for none
    std::vector<std::vector<uint32_t>> m_heaps;
    size_t m_heapsUsed = 0;
    size_t m_maxItems = 0;
};

void LineCanceller::Run(std::vector<Item>& items, const std::vector<uint32_t>& line,
                        size_t maxItems) {
    m_items = &items;
    m_maxItems = maxItems;
    m_ids = line;
    m_edges.clear();
    for (uint32_t id : line) m_edges.push_back(items[id].edge);
    m_waiting.assign(line.size(), 1);
    m_next.assign(line.size(), kNone);
    m_head = m_tail = kNone;
    m_indexed = line.size() > kIndexedLine;
    if (m_indexed && NoneSplit(m_edges)) return;
    if (m_indexed) {
        m_ends.clear();
        for (const Edge& e : m_edges) {
            m_ends.push_back(e.lo);
            m_ends.push_back(e.hi);
        }
        std::sort(m_ends.begin(), m_ends.end());
        m_ends.erase(std::unique(m_ends.begin(), m_ends.end()), m_ends.end());
        m_leaves = 1;
        while (m_leaves < (int)(2 * m_ends.size() - 1)) m_leaves *= 2;
        m_below.assign(2 * (size_t)m_leaves, kNone);
        m_heapOf.assign(2 * (size_t)m_leaves, 0);
        m_heapsUsed = 0;
        // Clearing costs the buckets a longer line left; a short line starts afresh.
        if (m_groupOfKey.bucket_count() > 4 * line.size() + 64)
            std::unordered_map<uint64_t, uint32_t>().swap(m_groupOfKey);
        m_groupOfKey.clear();
        m_groups.clear();
        m_groupOf.assign(line.size(), kNone);
    }
    for (uint32_t s = 0; s < m_edges.size(); ++s) Add(s);
    for (uint32_t s = 0; s < m_edges.size(); ++s) {
        if (!m_waiting[s]) continue;
        if (m_indexed)
            ProcessLong(s);
        else
            ProcessShort(s);
    }
}

void LineCanceller::Add(uint32_t s) {
    if (!m_indexed) {
        (m_tail == kNone ? m_head : m_next[m_tail]) = s;
        m_tail = s;
        return;
    }
    const uint32_t g = GroupOf(m_edges[s]);
    m_groupOf[s] = g;
    Group& group = m_groups[g];
    if (group.head == kNone) {
        group.head = group.tail = s;
        Cover(1, 0, m_leaves - 1, group.lo, group.hi, s);
    } else {
        m_next[group.tail] = s;
        group.tail = s;
    }
}

// The cursor heads the line's list of waiting edges.
void LineCanceller::ProcessShort(uint32_t s) {
    m_waiting[s] = 0;
    m_head = m_next[s];
    if (m_head == kNone) m_tail = kNone;
    Edge pieces[2];
    for (uint32_t prev = kNone, j = m_head; j != kNone; prev = j, j = m_next[j]) {
        if (SplitEdges(m_edges[s], m_edges[j], pieces) <= 0) continue;
        (prev == kNone ? m_head : m_next[prev]) = m_next[j];
        if (m_tail == j) m_tail = prev;
        m_waiting[j] = 0;
        Replace(s, j);
        return;
    }
}

// The cursor heads its group; the rest of the group (edges equal to it, which it does not
// split with) stays out of the tree while its partner is looked for.
void LineCanceller::ProcessLong(uint32_t s) {
    const uint32_t g = m_groupOf[s];
    TakeFirst(g);
    const uint32_t j = Query(1, 0, m_leaves - 1, m_groups[g].lo, m_groups[g].hi);
    if (j != kNone) {
        const uint32_t h = m_groupOf[j];
        TakeFirst(h);
        Enter(h);
        Replace(s, j);
    }
    Enter(g);
}

// Removes the cursor and its partner and appends their pieces.
void LineCanceller::Replace(uint32_t s, uint32_t j) {
    std::vector<Item>& items = *m_items;
    Edge pieces[2];
    const int n = SplitEdges(m_edges[s], m_edges[j], pieces);
    if (items.size() + (size_t)n > m_maxItems) throw PieceBudgetExceeded();
    items[m_ids[s]].alive = items[m_ids[j]].alive = 0;
    const uint32_t generation = items[m_ids[s]].generation + 1;
    for (int k = 0; k < n; ++k) {
        const uint32_t piece = (uint32_t)m_edges.size();
        m_ids.push_back((uint32_t)items.size());
        items.push_back(Item{pieces[k], m_ids[s], generation, (uint8_t)k, 1});
        m_edges.push_back(pieces[k]);
        m_waiting.push_back(1);
        m_next.push_back(kNone);
        if (m_indexed) m_groupOf.push_back(kNone);
        Add(piece);
    }
}

uint32_t LineCanceller::GroupOf(const Edge& e) {
    const auto rank = [&](int32_t v) {
        return (int)(std::lower_bound(m_ends.begin(), m_ends.end(), v) - m_ends.begin());
    };
    const int a = rank(e.lo), b = rank(e.hi);
    const uint64_t key = ((uint64_t)(uint32_t)a << 32) | (uint32_t)b;
    const auto found = m_groupOfKey.emplace(key, (uint32_t)m_groups.size());
    if (found.second) {
        Group group;
        group.lo = a < b ? 2 * a + 1 : 2 * a;
        group.hi = a < b ? 2 * b - 1 : 2 * a;
        m_groups.push_back(group);
    }
    return found.first->second;
}

void LineCanceller::TakeFirst(uint32_t g) {
    Group& group = m_groups[g];
    const uint32_t first = group.head;
    m_waiting[first] = 0;
    group.head = m_next[first];
    if (group.head == kNone) group.tail = kNone;
    Cover(1, 0, m_leaves - 1, group.lo, group.hi, kNone);
}

void LineCanceller::Enter(uint32_t g) {
    const Group& group = m_groups[g];
    if (group.head != kNone) Cover(1, 0, m_leaves - 1, group.lo, group.hi, group.head);
}

void LineCanceller::Cover(int node, int nlo, int nhi, int lo, int hi, uint32_t s) {
    if (hi < nlo || nhi < lo) return;
    if (lo <= nlo && nhi <= hi) {
        if (s != kNone) {
            if (m_heapOf[node] == 0) {
                if (m_heapsUsed == m_heaps.size()) m_heaps.emplace_back();
                m_heaps[m_heapsUsed].clear();
                m_heapOf[node] = (uint32_t)++m_heapsUsed;
            }
            std::vector<uint32_t>& heap = m_heaps[m_heapOf[node] - 1];
            heap.push_back(s);
            std::push_heap(heap.begin(), heap.end(), std::greater<uint32_t>());
        }
    } else {
        const int mid = nlo + (nhi - nlo) / 2;
        Cover(2 * node, nlo, mid, lo, hi, s);
        Cover(2 * node + 1, mid + 1, nhi, lo, hi, s);
    }
    uint32_t least = Top(node);
    if (nlo != nhi) least = std::min({least, m_below[2 * node], m_below[2 * node + 1]});
    m_below[node] = least;
}

uint32_t LineCanceller::Query(int node, int nlo, int nhi, int lo, int hi) {
    if (hi < nlo || nhi < lo) return kNone;
    if (lo <= nlo && nhi <= hi) return m_below[node];
    const int mid = nlo + (nhi - nlo) / 2;
    return std::min(
        {Top(node), Query(2 * node, nlo, mid, lo, hi), Query(2 * node + 1, mid + 1, nhi, lo, hi)});
}

uint32_t LineCanceller::Top(int node) {
    if (m_heapOf[node] == 0) return kNone;
    std::vector<uint32_t>& heap = m_heaps[m_heapOf[node] - 1];
    while (!heap.empty() && !m_waiting[heap.front()]) {
        std::pop_heap(heap.begin(), heap.end(), std::greater<uint32_t>());
        heap.pop_back();
    }
    return heap.empty() ? kNone : heap.front();
}

// The pass over `edges` (in list order): the surviving edges in list order.
std::vector<Edge> CancelSharedEdges(const std::vector<Edge>& edges) {
    // Overlapping edges split each other; rectangles of a real region touch, and a line of
    // edges that all overlap could make pieces in the square of their number.
    const size_t maxItems = kPiecesPerEdge * edges.size() + kPiecesAtLeast;
    const uint32_t n = (uint32_t)edges.size();
    std::vector<Item> items;
    items.reserve(n);
    for (const Edge& e : edges) items.push_back(Item{e, kNone, 0, 0, 1});
    std::vector<uint32_t> order(n);
    std::iota(order.begin(), order.end(), 0u);
    std::stable_sort(order.begin(), order.end(),
                     [&](uint32_t a, uint32_t b) { return edges[a].line < edges[b].line; });
    LineCanceller canceller;
    std::vector<uint32_t> line;
    for (uint32_t first = 0, last = 0; first < n; first = last) {
        while (last < n && edges[order[last]].line == edges[order[first]].line) ++last;
        line.assign(order.begin() + first, order.begin() + last);
        canceller.Run(items, line, maxItems);
    }

    // Places in the list: the input edges first, then each generation of pieces in the order
    // of the cursors that made them.
    std::vector<uint32_t> place(items.size());
    std::iota(place.begin(), place.begin() + n, 0u);
    std::vector<uint32_t> pieces(items.size() - n);
    std::iota(pieces.begin(), pieces.end(), n);
    std::stable_sort(pieces.begin(), pieces.end(), [&](uint32_t a, uint32_t b) {
        return items[a].generation < items[b].generation;
    });
    uint32_t next = n;
    for (size_t first = 0, last = 0; first < pieces.size(); first = last) {
        while (last < pieces.size() &&
               items[pieces[last]].generation == items[pieces[first]].generation)
            ++last;
        std::sort(pieces.begin() + first, pieces.begin() + last, [&](uint32_t a, uint32_t b) {
            return std::make_pair(place[items[a].creator], items[a].piece) <
                   std::make_pair(place[items[b].creator], items[b].piece);
        });
        for (size_t k = first; k < last; ++k) place[pieces[k]] = next++;
    }
    std::vector<uint32_t> atPlace(items.size());
    for (uint32_t i = 0; i < items.size(); ++i) atPlace[place[i]] = i;
    std::vector<Edge> survivors;
    for (uint32_t i : atPlace)
        if (items[i].alive) survivors.push_back(items[i].edge);
    return survivors;
}

// Horizontal segments lie along x on the line of their y, vertical ones along y.
Edge AlongX(const CLine& l) {
    return Edge{l.y1, l.x1, l.x2};
}
Edge AlongY(const CLine& l) {
    return Edge{l.x1, l.y1, l.y2};
}
template <class L>
L Horizontal(const Edge& e) {
    return L(e.lo, e.line, e.hi, e.line);
}
template <class L>
L Vertical(const Edge& e) {
    return L(e.line, e.lo, e.line, e.hi);
}

// Appends the pieces of splitting `a` and `b` to `list` as segments; returns SplitEdges' result.
template <class L>
int SplitInto(const Edge& a, const Edge& b, std::list<L>& list, L (*segment)(const Edge&)) {
    Edge pieces[2];
    const int n = SplitEdges(a, b, pieces);
    for (int k = 0; k < n; ++k) list.push_back(segment(pieces[k]));
    return n;
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

// A region's bands one after the other: the rectangles of a band share its top and bottom.
class BandWalk {
  public:
    explicit BandWalk(const QRegion& region) : m_at(region.begin()), m_end(region.end()) {
        Measure();
    }
    bool Done() const { return m_at == m_end; }
    int64_t Top() const { return m_at->top(); }
    int64_t Bottom() const { return m_at->bottom(); }  // the band's last row
    uint64_t Width() const { return (uint64_t)(m_bandEnd - m_at); }
    void Next() {
        m_at = m_bandEnd;
        Measure();
    }

  private:
    void Measure() {
        m_bandEnd = m_at;
        while (m_bandEnd != m_end && m_bandEnd->top() == m_at->top()) ++m_bandEnd;
    }

    QRegion::const_iterator m_at;
    QRegion::const_iterator m_end;
    QRegion::const_iterator m_bandEnd = nullptr;
};

// The union of boxes[lo, hi), halves first: each union costs the sizes of its two sides.
QRegion Unite(const std::vector<QRect>& boxes, size_t lo, size_t hi, bool& tooComplex) {
    if (hi == lo || tooComplex) return QRegion();
    if (hi - lo == 1) return QRegion(boxes[lo]);
    const size_t mid = lo + (hi - lo) / 2;
    const QRegion left = Unite(boxes, lo, mid, tooComplex);
    const QRegion right = Unite(boxes, mid, hi, tooComplex);
    tooComplex = tooComplex || CombinationCount(left, right, kMaxRegionRects) > kMaxRegionRects;
    return tooComplex ? QRegion() : left.united(right);
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
    TRACE_RETURN(SplitInto(AlongX(a), AlongX(b), list, Horizontal<CHLine>));
}

int VSplitIfOverlap(CVLine& a, CVLine& b, std::list<CVLine>& list) {
    TRACE_ENTER();
    TRACE_RETURN(SplitInto(AlongY(a), AlongY(b), list, Vertical<CVLine>));
}

int ConvertRgnDataToPath(int count, const tagRECT* rects, std::list<CLine>& out) {
    TRACE_ENTER();
    std::vector<Edge> horizontal, vertical;
    if (count > 0 && rects) {
        horizontal.reserve(2 * (size_t)count);
        vertical.reserve(2 * (size_t)count);
        for (int i = 0; i < count; ++i) {
            for (bool far : {false, true}) vertical.push_back(AlongY(GetVLine(&rects[i], far)));
            for (bool far : {false, true}) horizontal.push_back(AlongX(GetHLine(&rects[i], far)));
        }
    }
    const auto append = [&out](CLine line) {
        line.ArrangeInOrder();
        out.push_back(line);
    };
    try {
        for (const Edge& e : CancelSharedEdges(horizontal)) append(Horizontal<CLine>(e));
        for (const Edge& e : CancelSharedEdges(vertical)) append(Vertical<CLine>(e));
    } catch (const PieceBudgetExceeded&) {
        // Rectangles overlapping far beyond any region's: no outline at all.
        out.clear();
        TRACE_RETURN(0);
    }
    TRACE_RETURN(1);
}

QRect RectToQRect(const tagRECT& r) {
    // One side, from `lo` up to `hi` (excluded): above -2^31, and cut when too long.
    const auto fit = [](int32_t& lo, int32_t& hi) {
        lo = std::max(lo, -std::numeric_limits<int32_t>::max());
        if ((int64_t)hi - lo > std::numeric_limits<int32_t>::max()) {
            lo = std::max(lo, -kCutLimit);
            hi = std::min(hi, kCutLimit);
        }
    };
    int32_t left = r.left, top = r.top, right = r.right, bottom = r.bottom;
    fit(left, right);
    fit(top, bottom);
    if (right <= left || bottom <= top) return QRect();
    return QRect(QPoint(left, top), QPoint(right - 1, bottom - 1));
}

uint64_t CombinationCount(const QRegion& a, const QRegion& b, uint64_t cap) {
    // Each is counted at least once: a pair that passes the cap on that alone is not walked.
    const uint64_t least = (uint64_t)a.rectCount() + (uint64_t)b.rectCount();
    if (least > cap) return least;
    // The rows above `y` are counted. Each step moves `y` to the next band edge of either
    // region, and counts the bands that cover the rows in between.
    uint64_t count = 0;
    BandWalk bands[2] = {BandWalk(a), BandWalk(b)};
    int64_t y = std::numeric_limits<int64_t>::min();
    while (!bands[0].Done() || !bands[1].Done()) {
        int64_t next = std::numeric_limits<int64_t>::max();
        for (const BandWalk& band : bands) {
            if (band.Done()) continue;
            if (band.Top() <= y) {
                count += band.Width();
                next = std::min(next, band.Bottom() + 1);
            } else {
                next = std::min(next, band.Top());
            }
        }
        if (count > cap) return count;
        y = next;
        for (BandWalk& band : bands)
            if (!band.Done() && band.Bottom() < y) band.Next();
    }
    return count;
}

QRegion CreateQRegionFromRects(int count, const tagRECT* rects, bool* tooComplex) {
    std::vector<QRect> boxes;
    if (count > 0 && rects) {
        boxes.reserve((size_t)count);
        for (int i = 0; i < count; ++i) {
            const QRect box = RectToQRect(rects[i]);
            if (!box.isEmpty()) boxes.push_back(box);
        }
    }
    bool complex = false;
    QRegion region;
    if (InRegionForm(boxes))
        region.setRects(boxes.data(), (int)boxes.size());
    else
        region = Unite(boxes, 0, boxes.size(), complex);
    if (tooComplex) *tooComplex = complex;
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
