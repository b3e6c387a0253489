#include "api/Trace.h"

#include <string>

namespace svgtrace {

namespace {
std::string Prefix(const char* file, int line) {
    std::string prefix = file;
    prefix += '\t';
    prefix += std::to_string(line);
    prefix += '\t';
    return prefix;
}
}  // namespace

void TraceLine(const char* file, int line, const char* what, const char* func) {
    auto& s = CLogSystem::theRootInstance->trace;
    s << Prefix(file, line) << what << func << basic_logging::Logger::end;
}

void WarnLine(const char* file, int line, const char* message) {
    auto& s = CLogSystem::theRootInstance->warning;
    s << Prefix(file, line) << message << basic_logging::Logger::end;
}

void FatalLine(const char* file, int line, const char* message) {
    auto& s = CLogSystem::theRootInstance->fatal;
    s << Prefix(file, line) << message << basic_logging::Logger::end;
}

void InfoLine(const char* file, int line, const char* message) {
    auto& s = CLogSystem::theRootInstance->info;
    s << Prefix(file, line) << message << basic_logging::Logger::end;
}

}  // namespace svgtrace
