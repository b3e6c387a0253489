// Bounds-checked access to metafile records, shared by the EMF and WMF interpreters.
//
// A record is handed to its handler as a private copy. The handler table names, per record
// type, how many bytes of fixed fields its handler reads; a record shorter than that is
// zero-filled up to it, so the missing fields read as zero. Anything at an offset computed from
// the record (trailing arrays, embedded structures, strings, bitmaps) is read only after
// FitCount or Fits has placed it inside the record's real size.
#ifndef SVGMODULE_RECORDREADER_H
#define SVGMODULE_RECORDREADER_H

#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstring>
#include <vector>

namespace records {

// The fixed-field size assumed for a handler that names none; larger than the largest fixed
// record layout read.
constexpr size_t kRecordPadding = 512;

// How many elements of elemSize bytes, starting at byte `offset`, fit into a record of `size`
// bytes; at most `declared`.
inline uint32_t FitCount(uint64_t declared, size_t offset, size_t elemSize, size_t size) {
    if (offset >= size || elemSize == 0) return 0;
    const uint64_t room = (size - offset) / elemSize;
    return (uint32_t)(declared < room ? declared : room);
}

// True when `length` bytes from `offset` lie inside a buffer of `size` bytes.
inline bool Fits(uint64_t offset, uint64_t length, uint64_t size) {
    return offset <= size && length <= size - offset;
}

// The reusable buffer that holds one record copy at a time. Its room never shrinks and always
// reaches kRecordPadding bytes past the record, so no read of a fixed layout leaves it.
class RecordBuffer {
  public:
    // Copies `size` bytes of `src`; when that is fewer than `fixed`, the bytes up to `fixed`
    // are zero. Returns the copy.
    unsigned char* Fill(const unsigned char* src, size_t size, size_t fixed) {
        if (m_bytes.size() < size + kRecordPadding) m_bytes.resize(size + kRecordPadding);
        if (size) std::memcpy(m_bytes.data(), src, size);
        if (fixed > size)
            std::memset(m_bytes.data() + size, 0, std::min(fixed, size + kRecordPadding) - size);
        return m_bytes.data();
    }

  private:
    std::vector<unsigned char> m_bytes;
};

// A private, zero-padded copy of a record, for handlers that rewrite a record into a buffer of
// their own (normalising copies, mapped point arrays).
class ScratchCopy {
  public:
    ScratchCopy(const unsigned char* src, size_t size) : m_bytes(size + kRecordPadding, 0) {
        if (size) std::memcpy(m_bytes.data(), src, size);
    }
    unsigned char* data() { return m_bytes.data(); }

  private:
    std::vector<unsigned char> m_bytes;
};

}  // namespace records

#endif
