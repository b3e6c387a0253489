// The options API: svgmodule_convert in its C and Qt forms, and svgmodule_free.
#define TRACE_FILE "Convert"
#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "api/SVGTool.h"
#include "api/Trace.h"
#include "faithful/EmfPlusScan.h"
#include "faithful/Faithful.h"
#include "svg/SvgRepair.h"
#include "svgmodule.h"

namespace {

// No options structure is this large: a size above it is taken for garbage.
const size_t kMaxOptionsSize = 4096;

// Copies the field at `offset` of the host's structure of `size` bytes into `field` when the
// structure holds all of it; a field the host does not have keeps its default.
template <class T>
void ReadField(const svgmodule_options* given, size_t size, size_t offset, T* field) {
    if (size >= offset + sizeof(T))
        std::memcpy(field, reinterpret_cast<const char*>(given) + offset, sizeof(T));
}

// Reads the host's options into `options` (the defaults when `given` is null). Returns why
// they are refused, or null.
const char* ReadOptions(const svgmodule_options* given, svgmodule_options* options) {
    *options = svgmodule_options SVGMODULE_OPTIONS_INIT;
    if (!given) return nullptr;
    const size_t size = given->size;
    if (size < sizeof(size_t) || size > kMaxOptionsSize)
        return "options refused: their size field is not a structure's size";
    ReadField(given, size, offsetof(svgmodule_options, mode), &options->mode);
    ReadField(given, size, offsetof(svgmodule_options, repairs), &options->repairs);
    ReadField(given, size, offsetof(svgmodule_options, diagnostic_name), &options->diagnostic_name);
    ReadField(given, size, offsetof(svgmodule_options, notes), &options->notes);
    const char* bytes = reinterpret_cast<const char*>(given);
    if (std::any_of(bytes + std::min(size, sizeof *options), bytes + size,
                    [](char c) { return c != 0; }))
        return "options refused: they set options this library does not know";
    if (options->mode != SVGMODULE_MODE_CONTRACT && options->mode != SVGMODULE_MODE_FAITHFUL)
        return "options refused: unknown mode";
    if (options->repairs & ~(unsigned)SVGMODULE_REPAIR_ALL)
        return "options refused: unknown repair";
    return nullptr;
}

// Converts in the options' mode and repairs the document. `out` receives it on 1 or 2 only.
int Convert(const char* data, uint64_t size, const svgmodule_options* given, QByteArray& out) {
    svgmodule_options options;
    const char* refusal = ReadOptions(given, &options);
    const svgtrace::DiagnosticName name(options.diagnostic_name);
    if (options.notes) *options.notes = 0;
    try {
        TRACE_ENTER();
        if (refusal) {
            LOG_WARN(refusal);
            TRACE_RETURN(0);
        }
        if (!data || size == 0) TRACE_RETURN(0);
        // A drawing in EMF+ records only comes out blank: the host and the faithful mode's
        // diagnostics are told (the contract mode's diagnostics stay as they are).
        const bool faithfulMode = options.mode == SVGMODULE_MODE_FAITHFUL;
        if ((faithfulMode || options.notes) &&
            faithful::DrawnOnlyInEmfPlus(reinterpret_cast<const unsigned char*>(data), size)) {
            if (options.notes) *options.notes |= SVGMODULE_NOTE_EMFPLUS_ONLY;
            if (faithfulMode)
                LOG_WARN("drawn from EMF+ records only: not drawn (EMF+ records are skipped)");
        }
        QByteArray svg;
        const int status =
            options.mode == SVGMODULE_MODE_FAITHFUL
                ? faithful::Convert(reinterpret_cast<const unsigned char*>(data), size, svg)
                : svgtool::ConvertMetafile(data, size, svg);
        if (status != 1 && status != 2) TRACE_RETURN(status);
        if (options.repairs) svg = RepairSvg(svg, options.repairs);
        out.clear();
        out.swap(svg);
        TRACE_RETURN(status);
    } catch (...) {
        LOG_FATAL("An exception ended the conversion");
        TRACE_RETURN(-1);
    }
}

}  // namespace

int svgmodule_convert(const QByteArray& in, QByteArray& out, const svgmodule_options* options) {
    try {
        return Convert(in.constData(), (uint64_t)in.size(), options, out);
    } catch (...) {  // out of memory for the exception's own diagnostic line
        return -1;
    }
}

extern "C" int svgmodule_convert(const void* data, size_t size, const svgmodule_options* options,
                                 char** svg, size_t* svg_size) {
    if (svg) *svg = nullptr;
    if (svg_size) *svg_size = 0;
    if (!svg) return 0;
    try {
        QByteArray document;
        const int status = Convert(static_cast<const char*>(data), size, options, document);
        if (status != 1 && status != 2) return status;
        const size_t length = (size_t)document.size();
        char* copy = static_cast<char*>(std::malloc(length + 1));
        if (!copy) return -1;
        std::memcpy(copy, document.constData(), length);
        copy[length] = '\0';
        *svg = copy;
        if (svg_size) *svg_size = length;
        return status;
    } catch (...) {
        return -1;
    }
}

extern "C" void svgmodule_free(char* svg) {
    std::free(svg);
}
