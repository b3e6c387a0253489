// The characters of a text record, as the writer receives them: 16-bit UTF-16 code units in
// host order, or 8-bit characters taken as ISO 8859-1. The units are read byte-wise, so they
// may start at any offset of a record.
#ifndef SVGMODULE_TEXTRUN_H
#define SVGMODULE_TEXTRUN_H

#include <cstddef>
#include <cstdint>

class SvgBuffer;

struct TextRun {
    const unsigned char* data = nullptr;
    size_t count = 0;  // code units or bytes
    bool wide = false;

    // The code unit (or character) at `i`.
    uint16_t at(size_t i) const;
    // The run up to its first zero character (8-bit runs end there; 16-bit runs keep theirs).
    TextRun UpToZero() const;
};

// Appends the run as UTF-8 with "&", "<" and ">" escaped as the writer's XML escaping does.
// A surrogate without its partner becomes "?", as QString::toUtf8 writes it; every other unit,
// control characters included, is kept.
void AppendXmlText(SvgBuffer& out, const TextRun& text);

// True when the run is empty or white space only (the white space QString::trimmed removes).
bool IsBlankText(const TextRun& text);

#endif
