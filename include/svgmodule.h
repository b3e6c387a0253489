// libsvgmodule: Windows metafiles (EMF, WMF with or without the placeable header) to SVG 1.1.
//
// Status codes returned by the conversion functions:
//    1  EMF converted            2  WMF converted
//    0  nothing converted (empty, too short, unreadable file)
//   -1  an exception ended the conversion
//   -2  the EMF header's byte count differs from the size given
//   -3  the WMF header was refused
// `out` receives the SVG document as UTF-8 only when a converter has run; on every refusal it
// keeps what the caller put in it.
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
// may reach).
#ifndef SVGMODULE_H
#define SVGMODULE_H

#include <QByteArray>
#include <QString>

#if defined(SVGMODULE_BUILDING)
#define SVGMODULE_EXPORT __attribute__((visibility("default")))
#else
#define SVGMODULE_EXPORT
#endif

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

#endif
