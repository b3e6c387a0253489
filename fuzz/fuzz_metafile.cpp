// libFuzzer entry: any byte string through the format-detecting converter.
#include <QByteArray>
#include <cstddef>
#include <cstdint>

#include "CLogSystem.h"
#include "svgmodule.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    CLogSystem::theRootInstance->setLevel("OFF");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray in = QByteArray::fromRawData(reinterpret_cast<const char*>(data), (int)size);
    QByteArray out;
    const int status = ConvertMetaFileToSVG(in, out);
    if (status < -3 || status > 2) __builtin_trap();
    return 0;
}
