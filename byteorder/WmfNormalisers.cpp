// Where the parts of the WMF array records lie.
#include "byteorder/WmfNormalisers.h"

#include <cstring>

#include "byteorder/RecordReader.h"

namespace {
// Reads a 16-bit field of host-order record bytes when it lies inside; 0 otherwise.
uint16_t HostU16(const unsigned char* record, size_t offset, unsigned int size) {
    uint16_t v = 0;
    if (records::Fits(offset, 2, size)) std::memcpy(&v, record + offset, 2);
    return v;
}
}  // namespace

uint32_t WmfPolyLinePoints(const tagWMRPOLYLINE& record, unsigned int size) {
    return records::FitCount(record.NumberOfPoints, kWmfPolyLinePointsOffset, sizeof(tagPOINTS),
                             size);
}

WmfPolyPolygonLayout GetWmfPolyPolygonLayout(const unsigned char* record, unsigned int size) {
    WmfPolyPolygonLayout layout;
    const uint16_t polygons = HostU16(record, offsetof(tagWMRPOLYPOLYLINE, NumberOfPolygons), size);
    layout.counts =
        records::FitCount(polygons, kWmfPolyPolygonCountsOffset, sizeof(uint16_t), size);
    uint64_t declared = 0;
    for (uint32_t i = 0; i < layout.counts; ++i)
        declared +=
            HostU16(record, kWmfPolyPolygonCountsOffset + (size_t)i * sizeof(uint16_t), size);
    layout.pointsOffset = kWmfPolyPolygonCountsOffset + (size_t)polygons * sizeof(uint16_t);
    layout.points = records::FitCount(declared, layout.pointsOffset, sizeof(tagPOINTS), size);
    return layout;
}
