// EMF decoder of EMR_GRADIENTFILL: vertices with 16-bit colour channels, then rectangles or
// triangles naming them by index.
#include <algorithm>
#include <cstring>

#include "byteorder/BEndTools.h"
#include "faithful/EmfPlayback.h"

namespace faithful {

namespace {

// The record's fields: bounds (8), vertex count (24), object count (28), mode (32); the
// vertices start at 36, the objects right after the declared vertices.
const size_t kVerticesOffset = 36;
const size_t kVertexSize = 16;  // x, y (32-bit), red, green, blue, alpha (16-bit)
enum : uint32_t { GRADIENT_FILL_RECT_H = 0, GRADIENT_FILL_RECT_V = 1, GRADIENT_FILL_TRIANGLE = 2 };

struct Vertex {
    PointF p;
    Rgb colour;
};

// The high byte of the 16-bit little-endian field at `offset`.
uint32_t HighByte16(const unsigned char* record, size_t offset) {
    uint16_t v;
    std::memcpy(&v, record + offset, sizeof v);
    return (IsBigEndian() ? LE2BE_Word(v) : v) >> 8;
}

// A vertex: its point, and its colour from the high byte of each 16-bit channel.
Vertex VertexAt(const unsigned char* r, uint32_t index) {
    const size_t at = kVerticesOffset + kVertexSize * (size_t)index;
    return {{(double)SignedField32(r, at), (double)SignedField32(r, at + 4)},
            HighByte16(r, at + 8) << 16 | HighByte16(r, at + 10) << 8 | HighByte16(r, at + 12)};
}

}  // namespace

void EmfPlayer::OnGradientFill(unsigned char* r, uint32_t size) {
    const uint32_t declared = Field32(r, 24), mode = Field32(r, 32);
    if (mode > GRADIENT_FILL_TRIANGLE) return;
    // Vertices past the record are cut; objects start after the declared ones, so a vertex
    // count that runs past the record leaves no object to draw.
    const uint32_t vertices = records::FitCount(declared, kVerticesOffset, kVertexSize, size);
    const uint64_t objects = kVerticesOffset + kVertexSize * (uint64_t)declared;
    if (vertices != declared || objects > size) return;
    const size_t objectSize = mode == GRADIENT_FILL_TRIANGLE ? 12 : 8;
    const uint32_t count = records::FitCount(Field32(r, 28), objects, objectSize, size);
    // Triangles may be cut into pieces: no more in all than a quarter of the record's bytes.
    const size_t pieces = size / 4 / std::max<uint32_t>(count, 1);
    for (uint32_t i = 0; i < count; ++i) {
        const size_t at = objects + objectSize * (size_t)i;
        uint32_t index[3];
        bool inside = true;
        for (size_t k = 0; k < objectSize / 4; ++k) {
            index[k] = Field32(r, at + 4 * k);
            inside = inside && index[k] < vertices;
        }
        if (!inside) continue;  // an index past the vertices: the object is skipped
        if (mode != GRADIENT_FILL_TRIANGLE) {
            const Vertex a = VertexAt(r, index[0]), b = VertexAt(r, index[1]);
            m_dc.GradientRect(a.p, a.colour, b.p, b.colour, mode == GRADIENT_FILL_RECT_V);
            continue;
        }
        PointF p[3];
        Rgb c[3];
        for (int k = 0; k < 3; ++k) {
            const Vertex v = VertexAt(r, index[k]);
            p[k] = v.p;
            c[k] = v.colour;
        }
        m_dc.GradientTriangle(p, c, pieces);
    }
}

}  // namespace faithful
