// SvgBuffer: the document being written, as UTF-8 bytes in one growing array.
//
// Every piece of output is appended straight into the array: literals and UTF-8 fragments by
// copy, integers through a digit loop, reals in a text stream's default format. Take() hands
// the array over without copying it.
#ifndef SVGMODULE_SVGBUFFER_H
#define SVGMODULE_SVGBUFFER_H

#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

// Thrown by a write that would take a buffer's text past the limit set for it.
struct OutputLimitReached {};

// The most SVG a metafile of `inputBytes` bytes may make: kOutputPerInputByte bytes for each of
// its bytes, and never less than kOutputFloor. Drawing texts alone could make more (a pen's
// dash text is repeated in every element drawn with it, so output could grow with the square
// of the input); the floor lets a small file whose regions or clips legitimately write many
// times its size be written whole.
const uint64_t kOutputPerInputByte = 64;
const uint64_t kOutputFloor = 4 << 20;
size_t OutputBudget(uint64_t inputBytes);

class SvgBuffer {
  public:
    // The largest text a buffer can hold when no lower limit is set.
    static const size_t kNoLimit;

    SvgBuffer() : m_size(0), m_limit(kNoLimit) {}

    // The text may grow to `limit` bytes; a write that would pass it throws
    // OutputLimitReached and leaves the text as it was before that write's bytes.
    void SetLimit(size_t limit) { m_limit = limit < kNoLimit ? limit : kNoLimit; }

    // Appends each part in order: string literals and QByteArrays as bytes, a char
    // as one byte, signed integers as signed decimal, unsigned integers as unsigned decimal,
    // floating values as a default text stream writes them.
    template <class... Parts>
    void Write(const Parts&... parts) {
        (Put(parts), ...);
    }

    void Append(const char* text, size_t length) {
        if (length == 0) return;
        char* p = Room(length);
        std::memcpy(p, text, length);
        m_size += length;
    }
    void Append(const QByteArray& text) { Append(text.constData(), (size_t)text.size()); }
    void Append(char c) {
        *Room(1) = c;
        ++m_size;
    }

    void AppendInt(int64_t value) {
        char* p = Room(20);
        if (value < 0) {
            *p++ = '-';
            ++m_size;
            m_size += Digits(p, 0 - (uint64_t)value);
        } else {
            m_size += Digits(p, (uint64_t)value);
        }
    }
    void AppendUInt(uint64_t value) { m_size += Digits(Room(20), value); }
    // At most six significant digits, the shorter of fixed and exponent notation, no trailing
    // zeros; halves round away from zero.
    void AppendReal(double value);
    // "x,y" of one point.
    void AppendPoint(int x, int y) {
        AppendInt(x);
        Append(',');
        AppendInt(y);
    }

    void Append(const SvgBuffer& other) { Append(other.data(), other.size()); }

    size_t size() const { return m_size; }
    bool isEmpty() const { return m_size == 0; }
    const char* data() const { return m_data.constData(); }
    // Empties the text and keeps the room for the next.
    void Clear() { m_size = 0; }
    // Drops the text after its first `size` bytes.
    void Truncate(size_t size) {
        if (size < m_size) m_size = size;
    }
    // The text written so far, as a copy.
    QByteArray Text() const { return QByteArray(m_data.constData(), (qsizetype)m_size); }
    // Hands the text over and leaves the buffer empty.
    QByteArray Take();

  private:
    template <size_t N>
    void Put(const char (&literal)[N]) {
        Append(literal, N - 1);
    }
    void Put(const QByteArray& text) { Append(text); }
    void Put(char c) { Append(c); }
    template <class T>
    typename std::enable_if<std::is_integral<T>::value>::type Put(T value) {
        if (std::is_signed<T>::value)
            AppendInt((int64_t)value);
        else
            AppendUInt((uint64_t)value);
    }
    void Put(float value) { AppendReal(value); }
    void Put(double value) { AppendReal(value); }

    // Writes the decimal digits of `value` at `p`; returns how many.
    static size_t Digits(char* p, uint64_t value) {
        char digits[20];
        size_t n = 0;
        do {
            digits[n++] = (char)('0' + value % 10);
            value /= 10;
        } while (value);
        for (size_t i = 0; i < n; ++i) p[i] = digits[n - 1 - i];
        return n;
    }

    // Space for `more` bytes after the text; returns where they start.
    char* Room(size_t more) {
        if ((size_t)m_data.size() - m_size < more) Grow(more);
        return m_data.data() + m_size;
    }
    void Grow(size_t more);

    QByteArray m_data;  // its size is the capacity; the text is its first m_size bytes
    size_t m_size;
    size_t m_limit;  // the capacity never exceeds it
};

#endif
