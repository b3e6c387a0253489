#include "svg/SvgBuffer.h"

#include <limits>

namespace {
// The first allocation; later ones grow by half of what is held.
const size_t kInitialCapacity = 256;
}  // namespace

const size_t SvgBuffer::kNoLimit = (size_t)std::numeric_limits<qsizetype>::max() / 2;

size_t OutputBudget(uint64_t inputBytes) {
    const uint64_t most = SvgBuffer::kNoLimit / kOutputPerInputByte;
    const uint64_t budget =
        inputBytes < most ? inputBytes * kOutputPerInputByte : SvgBuffer::kNoLimit;
    return (size_t)(budget > kOutputFloor ? budget : kOutputFloor);
}

void SvgBuffer::Grow(size_t more) {
    const size_t held = (size_t)m_data.size();
    if (m_size > m_limit || more > m_limit - m_size) throw OutputLimitReached();
    size_t capacity = held < kInitialCapacity ? kInitialCapacity : held + held / 2;
    if (capacity > m_limit) capacity = m_limit;
    if (capacity < m_size + more) capacity = m_size + more;
    // Reserving first makes the capacity exactly what is asked (resize alone may round it up);
    // growing keeps the bytes held, and the new room is written before it is read.
    m_data.reserve((qsizetype)capacity);
    m_data.resize((qsizetype)capacity);
}

void SvgBuffer::AppendReal(double value) {
    // Qt's 'g' formatting of six significant digits is what a default text stream writes.
    Append(QByteArray::number(value, 'g', 6));
}

QByteArray SvgBuffer::Take() {
    m_data.resize((qsizetype)m_size);
    m_data.squeeze();  // shrinks in place: the spare room is not handed to the caller
    m_size = 0;
    QByteArray text;
    text.swap(m_data);
    return text;
}
