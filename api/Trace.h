// The trace convention and the system-log lines of the library.
//
// Every traced function starts with TRACE_ENTER() and leaves through TRACE_RETURN(value) (or
// TRACE_RETURN() in a void function). Each source file names its trace prefix before it
// includes this header:
//
//     #define TRACE_FILE "Emf2SVG"
//     #include "api/Trace.h"
//
// A trace line reads: prefix, tab, line, tab, then "Enter" or "Exit" and the function's name,
// each item followed by one space. When the log level is not TRACE a trace point costs one
// comparison of the log system's level number.
#ifndef SVGMODULE_TRACE_H
#define SVGMODULE_TRACE_H

#include <QString>
#include <string>

#include "CLogSystem.h"

namespace svgtrace {

// Trace lines are written only at the TRACE level; below it a trace point costs one integer
// comparison.
inline bool TraceEnabled() {
    return CLogSystem::theRootInstance->level() == basic_logging::Level::Trace;
}

// Every line below is handed to the log system whole, in one call, so that lines written on
// several threads at once never mix. While a DiagnosticName lives on a thread, the lines that
// thread writes start with its name and ": ".

// Writes "file\tline\t", what and func as one trace line.
void TraceLine(const char* file, int line, const char* what, const char* func);
void WarnLine(const char* file, int line, const char* message);
void FatalLine(const char* file, int line, const char* message);
void InfoLine(const char* file, int line, const char* message);

// Names the input of the conversion running on this thread in its diagnostic lines while it
// lives (a null or empty name: none); the name must outlive it. Scopes nest: the outer name
// comes back when an inner one ends.
class DiagnosticName {
  public:
    explicit DiagnosticName(const char* name);
    ~DiagnosticName();
    DiagnosticName(const DiagnosticName&) = delete;
    DiagnosticName& operator=(const DiagnosticName&) = delete;

  private:
    const char* m_outer;
};

}  // namespace svgtrace

// QString items of system-log lines are written as 8-bit text.
template <class L>
basic_logging::logstream<L>& operator<<(basic_logging::logstream<L>& s, const QString& item) {
    s.append(item.toLatin1().toStdString());
    return s;
}

#define TRACE_ENTER()                                                     \
    do {                                                                  \
        if (svgtrace::TraceEnabled())                                     \
            svgtrace::TraceLine(TRACE_FILE, __LINE__, "Enter", __func__); \
    } while (0)

#define TRACE_RETURN(...)                                                                          \
    do {                                                                                           \
        if (svgtrace::TraceEnabled()) svgtrace::TraceLine(TRACE_FILE, __LINE__, "Exit", __func__); \
        return __VA_ARGS__;                                                                        \
    } while (0)

#define LOG_WARN(msg) svgtrace::WarnLine(TRACE_FILE, __LINE__, msg)
#define LOG_FATAL(msg) svgtrace::FatalLine(TRACE_FILE, __LINE__, msg)
#define LOG_INFO(msg) svgtrace::InfoLine(TRACE_FILE, __LINE__, msg)

#endif
