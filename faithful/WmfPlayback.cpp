// The WMF player: headers, device set-up, record walk, decoder table and the document's page.
#include "faithful/WmfPlayback.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>

#include "byteorder/BEndTools.h"
#include "svg/SvgBuffer.h"

namespace faithful {

namespace {

// CSS pixels per inch, and the units per inch of a file that does not say (nor has a
// placeable header to say it in).
const double kPxPerInch = 96;
const double kDefaultUnitsPerInch = 1440;
// The work the region operations may do, beyond four units per byte of the input.
const uint64_t kRegionWork = uint64_t(1) << 22;

uint16_t Word(const unsigned char* p) {
    uint16_t v;
    std::memcpy(&v, p, sizeof v);
    return IsBigEndian() ? LE2BE_Word(v) : v;
}

RectF NormalisedRect(double l, double t, double r, double b) {
    return {std::min(l, r), std::min(t, b), std::max(l, r), std::max(t, b)};
}

bool HasArea(const RectF& r) {
    return r.right > r.left && r.bottom > r.top;
}

}  // namespace

int16_t Param16(const unsigned char* record, size_t index) {
    return (int16_t)Word(record + sizeof(tagWMR) + 2 * index);
}

uint32_t Param32(const unsigned char* record, size_t index) {
    uint32_t v;
    std::memcpy(&v, record + sizeof(tagWMR) + 2 * index, sizeof v);
    return IsBigEndian() ? LE2BE_DWord(v) : v;
}

uint16_t RecordFunction(const unsigned char* record) {
    return Word(record + offsetof(tagWMR, rdFunction));
}

int PlayWmf(const unsigned char* data, uint64_t size, QByteArray& out) {
    try {
        std::unique_ptr<WmfPlayer> player(new WmfPlayer);
        return player->Play(data, size, out);
    } catch (...) {
        return -1;
    }
}

WmfPlayer::WmfPlayer() : m_dc(m_writer) {}

int WmfPlayer::Play(const unsigned char* data, uint64_t size, QByteArray& out) {
    if (!data) return 0;
    // The headers, zero where the input ends first (a header of zeros is refused).
    _PlaceableMetaHeader placeable;
    std::memset(&placeable, 0, sizeof placeable);
    std::memcpy(&placeable, data, (size_t)std::min<uint64_t>(sizeof placeable, size));
    InitPlaceableMetaHeader(placeable);
    const bool isPlaceable = placeable.Key == PLACEABLE_KEY;
    const uint64_t offset = isPlaceable ? sizeof placeable : 0;
    _WindowsMetaHeader header;
    std::memset(&header, 0, sizeof header);
    if (size > offset)
        std::memcpy(&header, data + offset,
                    (size_t)std::min<uint64_t>(sizeof header, size - offset));
    InitWindowsMetaHeader(header);
    if (header.mtHeaderSize != 9 || header.mtNoParameters != 0) return -3;

    // A header that declares more bytes than there are converts what is present.
    const uint64_t end = std::min<uint64_t>((uint64_t)header.mtSize * 2 + offset, size);
    const uint64_t begin = offset + sizeof header;
    m_dc.SetObjectTableSize(header.mtNoObjects);
    SetupDevice(isPlaceable ? &placeable : nullptr, data, begin, end);
    m_writer.SetLimit(OutputBudget(size));
    m_dc.SetRegionBudget(kRegionWork + 4 * size);
    Walk(data, begin, end);
    // The bit blocks that still wait for a partner are drawn at the end of the records.
    DrawWithinLimit(m_writer, [this] { m_dc.FlushBitmaps(); });
    QByteArray svg = Finish();
    out.swap(svg);
    return 2;
}

template <class Visit>
void WmfPlayer::ForEachRecord(const unsigned char* data, uint64_t begin, uint64_t end,
                              Visit visit) {
    uint64_t pos = begin;
    while (records::Fits(pos, sizeof(tagWMR), end)) {
        tagWMR wmr;
        if (!InitWMR(&wmr, data + pos)) std::memcpy(&wmr, data + pos, sizeof wmr);
        const uint64_t bytes = (uint64_t)wmr.rdSize * 2;
        if (bytes < sizeof(tagWMR) || bytes > UINT32_MAX || !records::Fits(pos, bytes, end)) break;
        if (wmr.rdFunction == meta::EOF_ || !visit(pos, (uint32_t)bytes, wmr.rdFunction)) break;
        pos += bytes;
    }
}

void WmfPlayer::SetupDevice(const _PlaceableMetaHeader* placeable, const unsigned char* data,
                            uint64_t begin, uint64_t end) {
    double unitsPerInch = kDefaultUnitsPerInch;
    PointF org, ext;
    bool found = false;
    if (placeable) {
        const tagRECT16& b = placeable->BoundingBox;
        const RectF box = NormalisedRect(b.left, b.top, b.right, b.bottom);
        if (placeable->Inch) unitsPerInch = placeable->Inch;
        org = {box.left, box.top};
        ext = {box.right - box.left, box.bottom - box.top};
        found = HasArea(box);
    }
    if (!found) {
        // The window the records set: the first origin and the first extent with an area.
        bool haveOrg = false, haveExt = false;
        ForEachRecord(data, begin, end, [&](uint64_t pos, uint32_t bytes, uint16_t function) {
            if (function != meta::SETWINDOWORG && function != meta::SETWINDOWEXT) return true;
            unsigned char r[sizeof(tagWMR) + 4] = {};
            std::memcpy(r, data + pos, std::min<size_t>(bytes, sizeof r));
            const PointF v{(double)Param16(r, 1), (double)Param16(r, 0)};
            if (function == meta::SETWINDOWORG && !haveOrg) {
                org = v;
                haveOrg = true;
            } else if (function == meta::SETWINDOWEXT && !haveExt && v.x != 0 && v.y != 0) {
                ext = v;
                haveExt = true;
            }
            return !(haveOrg && haveExt);
        });
        found = haveExt;
    }
    if (!found) {
        // No window: the records draw in device units (MM_TEXT) on a page around the drawing.
        m_pageFromDrawing = true;
        return;
    }
    // The output rectangle in CSS pixels; the device is a 96-per-inch screen.
    const PointF px{std::fabs(ext.x) / unitsPerInch * kPxPerInch,
                    std::fabs(ext.y) / unitsPerInch * kPxPerInch};
    m_dc.SetReferenceDevice(px.x, px.y, px.x / kPxPerInch * 25.4, px.y / kPxPerInch * 25.4);
    m_dc.SetMapMode(gdi::MM_ANISOTROPIC);
    m_dc.SetWindowOrg(org.x, org.y);
    m_dc.SetWindowExt(ext.x, ext.y);
    m_dc.SetViewportOrg(0, 0);
    m_dc.SetViewportExt(px.x, px.y);
    m_page = {0, 0, px.x, px.y};
    m_widthPx = px.x;
    m_heightPx = px.y;
}

void WmfPlayer::Walk(const unsigned char* data, uint64_t begin, uint64_t end) {
    ForEachRecord(data, begin, end, [&](uint64_t pos, uint32_t bytes, uint16_t function) {
        const Entry* entry = EntryFor(function);
        if (!entry) return true;
        unsigned char* copy = m_copy.Fill(data + pos, bytes, entry->fixed);
        const DeviceSvg::Mark mark = m_writer.GetMark();
        try {
            (this->*(entry->decode))(copy, bytes);
        } catch (const OutputLimitReached&) {
            // The record that passed the output budget is undone and ends the drawing.
            m_writer.Rewind(mark);
            return false;
        }
        return true;
    });
}

QByteArray WmfPlayer::Finish() {
    if (m_pageFromDrawing) {
        RectF drawn;
        if (!m_writer.DrawnBounds(drawn) || !HasArea(drawn)) drawn = {0, 0, 1, 1};
        m_page = drawn;
        m_widthPx = drawn.right - drawn.left;
        m_heightPx = drawn.bottom - drawn.top;
    }
    return m_writer.Finish(m_widthPx, m_heightPx, m_page);
}

const WmfPlayer::Entry* WmfPlayer::EntryFor(uint16_t function) {
    using P = WmfPlayer;
    // Fixed sizes in bytes: the 6-byte prefix and the 16-bit parameters the decoder reads.
    const auto words = [](size_t n) { return sizeof(tagWMR) + 2 * n; };
    static const struct {
        uint16_t function;
        Decoder decode;
        size_t fixed;
    } kTable[] = {
        {meta::SAVEDC, &P::OnSaveDC, words(0)},
        {meta::CREATEPALETTE, &P::OnCreateOther, words(0)},
        {meta::CREATEBRUSH, &P::OnCreateOther, words(0)},
        {meta::SETBKMODE, &P::OnSetMode, words(1)},
        {meta::SETMAPMODE, &P::OnSetMapMode, words(1)},
        {meta::SETROP2, &P::OnSetMode, words(1)},
        {meta::SETPOLYFILLMODE, &P::OnSetMode, words(1)},
        {meta::SETSTRETCHBLTMODE, &P::OnSetMode, words(1)},
        {meta::RESTOREDC, &P::OnRestoreDC, words(1)},
        {meta::SELECTOBJECT, &P::OnSelectObject, words(1)},
        {meta::SETTEXTALIGN, &P::OnSetMode, words(1)},
        {meta::DIBCREATEPATTERNBRUSH, &P::OnDibCreatePatternBrush, words(2)},
        {meta::DELETEOBJECT, &P::OnDeleteObject, words(1)},
        {meta::CREATEPATTERNBRUSH, &P::OnCreatePatternBrush, words(7)},
        {meta::SETBKCOLOR, &P::OnSetColor, words(2)},
        {meta::SETTEXTCOLOR, &P::OnSetColor, words(2)},
        {meta::SETWINDOWORG, &P::OnWindowOrViewport, words(2)},
        {meta::SETWINDOWEXT, &P::OnWindowOrViewport, words(2)},
        {meta::SETVIEWPORTORG, &P::OnWindowOrViewport, words(2)},
        {meta::SETVIEWPORTEXT, &P::OnWindowOrViewport, words(2)},
        {meta::OFFSETWINDOWORG, &P::OnWindowOrViewport, words(2)},
        {meta::OFFSETVIEWPORTORG, &P::OnWindowOrViewport, words(2)},
        {meta::LINETO, &P::OnLineTo, words(2)},
        {meta::MOVETO, &P::OnMoveTo, words(2)},
        {meta::CREATEPENINDIRECT, &P::OnCreatePen, sizeof(tagWMRCREATEPEN)},
        {meta::CREATEFONTINDIRECT, &P::OnCreateFont, sizeof(tagWMREXTCREATEFONTINDIRECT)},
        {meta::CREATEBRUSHINDIRECT, &P::OnCreateBrush, sizeof(tagWMRCREATEBRUSHINDIRECT)},
        {meta::CREATEBITMAPINDIRECT, &P::OnCreateOther, words(0)},
        {meta::POLYGON, &P::OnPoly, words(1)},
        {meta::POLYLINE, &P::OnPoly, words(1)},
        {meta::SCALEWINDOWEXT, &P::OnScaleExt, words(4)},
        {meta::SCALEVIEWPORTEXT, &P::OnScaleExt, words(4)},
        {meta::ELLIPSE, &P::OnBox, words(4)},
        {meta::RECTANGLE, &P::OnBox, words(4)},
        {meta::SETPIXEL, &P::OnSetPixel, words(4)},
        {meta::POLYPOLYGON, &P::OnPolyPolygon, words(1)},
        {meta::ROUNDRECT, &P::OnRoundRect, words(6)},
        {meta::PATBLT, &P::OnPatBlt, words(6)},
        {meta::CREATEBITMAP, &P::OnCreateOther, words(0)},
        {meta::CREATEREGION, &P::OnCreateRegion, words(8)},
        {meta::ARC, &P::OnArc, words(8)},
        {meta::PIE, &P::OnArc, words(8)},
        {meta::CHORD, &P::OnArc, words(8)},
        {meta::BITBLT, &P::OnBitBlt, words(11)},
        {meta::DIBBITBLT, &P::OnBitBlt, words(11)},
        {meta::STRETCHBLT, &P::OnBitBlt, words(11)},
        {meta::DIBSTRETCHBLT, &P::OnBitBlt, words(11)},
        {meta::SETDIBTODEV, &P::OnStretchDib, words(9)},
        {meta::STRETCHDIB, &P::OnStretchDib, words(11)},
        {meta::INVERTREGION, &P::OnDrawRegion, words(1)},
        {meta::PAINTREGION, &P::OnDrawRegion, words(1)},
        {meta::SELECTCLIPREGION, &P::OnSelectClipRegion, words(1)},
        {meta::OFFSETCLIPRGN, &P::OnOffsetClipRgn, words(2)},
        {meta::FILLREGION, &P::OnDrawRegion, words(2)},
        {meta::EXCLUDECLIPRECT, &P::OnClipRect, words(4)},
        {meta::INTERSECTCLIPRECT, &P::OnClipRect, words(4)},
        {meta::FRAMEREGION, &P::OnDrawRegion, words(4)},
        {meta::TEXTOUT, &P::OnTextOut, words(1)},
        {meta::EXTTEXTOUT, &P::OnExtTextOut, words(4)},
    };
    static const std::array<Entry, 0x1000> table = [] {
        std::array<Entry, 0x1000> entries{};
        for (const auto& e : kTable) entries[e.function] = Entry{e.decode, e.fixed};
        return entries;
    }();
    if (function >= table.size() || !table[function].decode) return nullptr;
    return &table[function];
}

}  // namespace faithful
