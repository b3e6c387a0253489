// EMF decoders of shapes, arcs and pixels.
#include <cstring>

#include "byteorder/EmfNormalisers.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

template <class T>
T& As(unsigned char* record) {
    return *reinterpret_cast<T*>(record);
}

RectF RectOf(const tagRECT& r) {
    return {(double)r.left, (double)r.top, (double)r.right, (double)r.bottom};
}

PointF PointOf(const tagPOINT& p) {
    return {(double)p.x, (double)p.y};
}

}  // namespace

void EmfPlayer::OnBox(unsigned char* r, uint32_t) {
    tagEMRRECTANGLE& b = As<tagEMRRECTANGLE>(r);
    InitEMRRECTANGLE(b);  // the same layout as EMR_ELLIPSE
    if (m_type == emr::ELLIPSE)
        m_dc.Ellipse(RectOf(b.rclBox));
    else
        m_dc.Rectangle(RectOf(b.rclBox));
}

void EmfPlayer::OnRoundRect(unsigned char* r, uint32_t) {
    tagEMRROUNDRECT& b = As<tagEMRROUNDRECT>(r);
    InitEMRROUNDRECT(b);
    m_dc.RoundRect(RectOf(b.rclBox), b.szlCorner.cx, b.szlCorner.cy);
}

void EmfPlayer::OnArc(unsigned char* r, uint32_t) {
    tagEMRARC& a = As<tagEMRARC>(r);
    InitEMRARC(a);
    const RectF box = RectOf(a.rclBox);
    const PointF start = PointOf(a.ptlStart), end = PointOf(a.ptlEnd);
    switch (m_type) {
        case emr::ARC:
            return m_dc.Arc(box, start, end);
        case emr::ARCTO:
            return m_dc.ArcTo(box, start, end);
        case emr::CHORD:
            return m_dc.Chord(box, start, end);
        case emr::PIE:
            return m_dc.Pie(box, start, end);
        default:
            return;
    }
}

void EmfPlayer::OnAngleArc(unsigned char* r, uint32_t) {
    tagEMRANGLEARC a;
    if (!InitEMRANGLEARC(&a, r)) std::memcpy(&a, r, sizeof a);
    m_dc.AngleArc(PointOf(a.ptlCenter), a.nRadius, a.eStartAngle, a.eSweepAngle);
}

void EmfPlayer::OnSetPixel(unsigned char* r, uint32_t) {
    m_dc.SetPixel({(double)SignedField32(r, 8), (double)SignedField32(r, 12)}, Field32(r, 16));
}

}  // namespace faithful
