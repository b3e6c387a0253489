#include "api/Trace.h"

#include <string>

namespace svgtrace {

namespace {

thread_local const char* t_name = nullptr;

// The line as the log system's streams would build it (each item followed by one space),
// after the diagnostic name.
void Publish(basic_logging::Level level, const char* file, int line, const char* first,
             const char* second = nullptr) {
    if ((int)level < (int)CLogSystem::theRootInstance->level()) return;
    std::string text;
    if (t_name) {
        text += t_name;
        text += ": ";
    }
    text += file;
    text += '\t';
    text += std::to_string(line);
    text += "\t ";
    text += first ? first : "(null)";
    text += ' ';
    if (second) {
        text += second;
        text += ' ';
    }
    CLogSystem::theRootInstance->publish(level, text);
}

}  // namespace

void TraceLine(const char* file, int line, const char* what, const char* func) {
    Publish(basic_logging::Level::Trace, file, line, what, func);
}

void WarnLine(const char* file, int line, const char* message) {
    Publish(basic_logging::Level::Warn, file, line, message);
}

void FatalLine(const char* file, int line, const char* message) {
    Publish(basic_logging::Level::Fatal, file, line, message);
}

void InfoLine(const char* file, int line, const char* message) {
    Publish(basic_logging::Level::Info, file, line, message);
}

DiagnosticName::DiagnosticName(const char* name) : m_outer(t_name) {
    t_name = name && *name ? name : nullptr;
}

DiagnosticName::~DiagnosticName() {
    t_name = m_outer;
}

}  // namespace svgtrace
