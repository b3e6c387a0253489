// libsvgmodule: Windows metafiles (EMF, WMF with or without the placeable header) to SVG 1.1.
//
// Status codes returned by the conversion functions:
//    1  EMF converted            2  WMF converted
//    0  nothing converted (empty, too short, unreadable file)
//   -1  an exception ended the conversion
//   -2  the EMF header's byte count differs from the size given (the faithful mode draws
//       such a file from the records within both, with a warning, and returns 1)
//   -3  the WMF header was refused
// `out` receives the SVG document as UTF-8 only when a converter has run; on every refusal it
// keeps what the caller put in it.
//
// Two ways in. The functions at the end of this header take Qt types and convert in the
// contract mode: the output every release keeps byte for byte. svgmodule_convert takes the
// input as a pointer and a length and a versioned options structure, is callable from C and
// from any language that can call C, and offers:
//   - the mode: SVGMODULE_MODE_CONTRACT (the same output as ConvertMetaFileToSVG), or
//     SVGMODULE_MODE_FAITHFUL, which draws what the system that recorded the file would have
//     drawn (EMF+ records are not drawn; see notes);
//   - client repairs, applied to the document after either mode, so that it opens in every SVG
//     client (SVGMODULE_REPAIR_* bits; none by default);
//   - a diagnostic name: while the call runs, every diagnostic line the library writes on its
//     thread starts with that name and ": ", so that lines of conversions running at once on
//     several threads can be told apart.
//   - notes: facts about the file that the status does not tell, such as a drawing made only of
//     EMF+ records (SVGMODULE_NOTE_* bits), for the host to read without parsing diagnostics.
//
// Threads: any number of threads may convert at once, with the record log on or off; calls share
// no drawing state. Each record-log line (a record name, or a whole start or end banner) is
// written whole, exactly once; lines of different threads' conversions interleave only between
// lines. EnableLogging may be called while other threads convert: each line of a conversion
// running meanwhile goes whole to the old file, to the new one, or nowhere. A monochrome bitmap
// left pending as a mask by one call is kept for the next call on the same thread only.
//
// Hostile input: any bytes may be passed. A metafile of N bytes makes at most max(64 N, 4 MiB)
// bytes of SVG (drawing stops before the record that would pass that, and the document is
// closed after what was drawn; the status is unchanged) and holds under 128 N bytes of heap
// plus 32 MiB (room for the floors of the output and clip-region budgets, which a small file
// may reach). The client repairs may lengthen a document by the 43 bytes of the xlink
// declaration and 2 bytes per character they replace; svgmodule_convert holds at most two more
// copies of the document while it repairs it and hands it over.
#ifndef SVGMODULE_H
#define SVGMODULE_H

#include <stddef.h>

#ifdef __cplusplus
#include <QByteArray>
#include <QString>
#endif

#if defined(SVGMODULE_BUILDING)
#define SVGMODULE_EXPORT __attribute__((visibility("default")))
#else
#define SVGMODULE_EXPORT
#endif

// ---- The options API (C) -------------------------------------------------------------------
//
// Example: a complete C program that converts the file named on its command line and writes
// the SVG to standard output (build: cc host.c $(pkg-config --cflags --libs svgmodule)).
//
//     #include <stdio.h>
//     #include <stdlib.h>
//     #include <svgmodule.h>
//
//     int main(int argc, char** argv) {
//         if (argc != 2) return 2;
//         FILE* file = fopen(argv[1], "rb");
//         if (!file || fseek(file, 0, SEEK_END) != 0) return 1;
//         long size = ftell(file);
//         rewind(file);
//         char* data = size > 0 ? malloc((size_t)size) : NULL;
//         if (!data || fread(data, 1, (size_t)size, file) != (size_t)size) return 1;
//         fclose(file);
//
//         svgmodule_options options = SVGMODULE_OPTIONS_INIT;
//         options.mode = SVGMODULE_MODE_CONTRACT;  // or SVGMODULE_MODE_FAITHFUL
//         options.repairs = SVGMODULE_REPAIR_ALL;   // open in every SVG client
//         options.diagnostic_name = argv[1];        // names this file in diagnostic lines
//         char* svg = NULL;
//         size_t length = 0;
//         int status = svgmodule_convert(data, (size_t)size, &options, &svg, &length);
//         free(data);
//         if (status != 1 && status != 2) {
//             fprintf(stderr, "%s: not converted, status %d\n", argv[1], status);
//             return 1;
//         }
//         fwrite(svg, 1, length, stdout);
//         svgmodule_free(svg);
//         return 0;
//     }

#ifdef __cplusplus
extern "C" {
#endif

// The modes (svgmodule_options.mode).
enum {
    SVGMODULE_MODE_CONTRACT = 0,  // the contract output, as ConvertMetaFileToSVG writes it
    SVGMODULE_MODE_FAITHFUL = 1   // what the recording system would have drawn
};

// The client repairs (svgmodule_options.repairs, bits that may be combined). Each changes the
// document's text in one way and nothing else:
enum {
    // The root svg element declares the xlink namespace (which hatch patterns and images use)
    // when it does not already.
    SVGMODULE_REPAIR_XLINK = 1u << 0,
    // A start tag that carries an attribute more than once keeps only its last occurrence.
    SVGMODULE_REPAIR_REPEATED_ATTRIBUTES = 1u << 1,
    // Characters XML does not allow (C0 controls other than tab, line feed and carriage return;
    // U+FFFE, U+FFFF), which texts of a metafile may carry, become U+FFFD.
    SVGMODULE_REPAIR_FORBIDDEN_CHARACTERS = 1u << 2,
    SVGMODULE_REPAIR_ALL = (1u << 3) - 1
};

// The notes (bits of *svgmodule_options.notes).
enum {
    // The file is an EMF whose drawing is in EMF+ records only: it holds EMF+ records (comment
    // records whose data starts with "EMF+") and its EMF+ header's dual flag is clear, or none
    // of its drawing-system records draws. Neither mode draws EMF+ records: the document holds
    // what the drawing-system records draw, which for such a file is usually nothing. The
    // faithful mode also writes a warning line saying so.
    SVGMODULE_NOTE_EMFPLUS_ONLY = 1u << 0
};

// The options of one conversion. Versioned by its size: a host sets `size` to the size of the
// structure it was built with (SVGMODULE_OPTIONS_INIT does), and fields are only ever added at
// the end, so a host built against an older header keeps working with a newer library, which
// gives the fields the host does not know their defaults. Every default is zero, so a host
// without the macro (another language) zeroes the structure and sets `size`.
typedef struct svgmodule_options {
    size_t size;                  // sizeof(svgmodule_options) as the host was built
    int mode;                     // SVGMODULE_MODE_*; default SVGMODULE_MODE_CONTRACT
    unsigned int repairs;         // SVGMODULE_REPAIR_* bits; default 0: the library's own bytes
    const char* diagnostic_name;  // NUL-terminated, or NULL (the default) for no prefix
    // When not NULL, receives the SVGMODULE_NOTE_* bits that apply to the file, whatever the
    // status: 0 when none does or the options are refused (except for their `size` field, which
    // leaves every other field unread). Default NULL.
    unsigned int* notes;
} svgmodule_options;

// The defaults, as an initializer: svgmodule_options options = SVGMODULE_OPTIONS_INIT;
#define SVGMODULE_OPTIONS_INIT \
    { sizeof(svgmodule_options), SVGMODULE_MODE_CONTRACT, 0u, NULL, NULL }

// Converts the metafile of `size` bytes at `data` (EMF or WMF, detected from its header) as
// `options` says (NULL: the defaults) and returns one of the status codes above. On 1 or 2,
// *svg receives the document (UTF-8, followed by a NUL that `*svg_size` does not count),
// allocated by the library: release it with svgmodule_free. On any other status *svg is NULL
// and *svg_size 0. `svg_size` may be NULL. Returns 0 without converting when `svg` is NULL,
// `data` is NULL or `size` 0, or the options are refused: a `size` field smaller than a size_t
// or over 4096 bytes, a size larger than this library's structure whose extra bytes are not
// all zero (options of a newer library that this one cannot honour), an unknown mode or an
// unknown repair bit. A refusal of the options writes a warning line. Never throws.
SVGMODULE_EXPORT int svgmodule_convert(const void* data, size_t size,
                                       const svgmodule_options* options, char** svg,
                                       size_t* svg_size);

// Releases a document svgmodule_convert returned; NULL is allowed and does nothing.
SVGMODULE_EXPORT void svgmodule_free(char* svg);

#ifdef __cplusplus
}  // extern "C"

// ---- The Qt functions ----------------------------------------------------------------------

// svgmodule_convert for Qt hosts: converts `in` as `options` says (NULL: the defaults). `out`
// receives the document only on 1 or 2 and otherwise keeps what the caller put in it.
SVGMODULE_EXPORT int svgmodule_convert(const QByteArray& in, QByteArray& out,
                                       const svgmodule_options* options);

extern "C" {
// Converts a metafile held in memory; the format is detected from its header.
SVGMODULE_EXPORT int ConvertMetaFileToSVG(const QByteArray& in, QByteArray& out);
// Reads the named file (EMF or WMF) and converts it.
SVGMODULE_EXPORT int WMFToSVG(const QString& fileName, QByteArray& out);
}

// Converts an EMF of `size` bytes; the header's byte count must equal `size`.
SVGMODULE_EXPORT int ConvertEMFToSVG(const char* data, QByteArray& out, unsigned long size);
// Converts a WMF, with or without the placeable header. The header's size field is trusted:
// the caller must supply at least as many bytes as it declares.
SVGMODULE_EXPORT int ConvertWMFToSVG(const char* data, QByteArray& out);
// Switches the record log on or off. An empty name logs to a file named after today's date,
// for example "5_March_10.txt", in the working directory.
SVGMODULE_EXPORT void EnableLogging(bool enable, QString fileName);

// Plain-name signatures for hosts that look the functions up with dlsym.
typedef int (*ConvertMetaFileToSVGFn)(const QByteArray&, QByteArray&);
typedef int (*WMFToSVGFn)(const QString&, QByteArray&);

#endif  // __cplusplus

#endif
