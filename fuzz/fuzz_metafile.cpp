// libFuzzer entry: any byte string through both interpreters, the contract's format-detecting
// converter and the faithful one.
//
// Two adjustments keep the fuzzer's executions meaningful and repeatable:
// - An EMF whose header byte count differs from the input's length is refused before any
//   record is read, so nearly every mutation that grows or shrinks an EMF (and every seed cut
//   short by -max_len) would stop there. The harness writes the input's length into the
//   header's nBytes of its copy. A reproducer found this way converts the same with the
//   command line once its nBytes is set to its length (scripts/fuzz_campaign.sh does that).
//   The faithful interpreter, which draws such a file as far as both sizes go, also gets the
//   input as it came.
// - The pending bitmap mask outlives a conversion; it is emptied before each input so that
//   one input's result never depends on the input before it.
#include <QByteArray>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "CLogSystem.h"
#include "faithful/Faithful.h"
#include "svg/DibDecoder.h"
#include "svgmodule.h"

namespace {

const size_t kEmfHeaderBytes = 88;
const size_t kSignatureOffset = 40;
const size_t kBytesOffset = 48;

bool IsEmf(const uint8_t* data, size_t size) {
    return size >= kEmfHeaderBytes && std::memcmp(data + kSignatureOffset, " EMF", 4) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    CLogSystem::theRootInstance->setLevel("OFF");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QByteArray in(reinterpret_cast<const char*>(data), (int)size);
    if (IsEmf(data, size)) {
        const uint32_t n = (uint32_t)size;
        const unsigned char le[4] = {(unsigned char)n, (unsigned char)(n >> 8),
                                     (unsigned char)(n >> 16), (unsigned char)(n >> 24)};
        std::memcpy(in.data() + kBytesOffset, le, 4);
    }
    dib::PendingMask() = QImage();
    QByteArray out;
    const int status = ConvertMetaFileToSVG(in, out);
    if (status < -3 || status > 2) __builtin_trap();
    QByteArray faithfulOut;
    const int faithfulStatus = faithful::Convert(
        reinterpret_cast<const unsigned char*>(in.constData()), (uint64_t)in.size(), faithfulOut);
    if (faithfulStatus < -3 || faithfulStatus > 2) __builtin_trap();
    // The faithful interpreter draws an EMF whose byte count disagrees with its length as far
    // as both go: the input as it came takes that path.
    if (IsEmf(data, size) && std::memcmp(data + kBytesOffset, in.constData() + kBytesOffset, 4)) {
        QByteArray asItCame;
        const int s = faithful::Convert(data, (uint64_t)size, asItCame);
        if (s < -3 || s > 2) __builtin_trap();
    }
    return 0;
}
