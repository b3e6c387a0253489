#include "CLogSystem.h"

#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace basic_logging {

const LoggerEndline Logger::end = LoggerEndline();

namespace {
const char* const kLevelNames[] = {"TRACE", "INFO", "WARN", "FATAL", "OFF"};

Level LevelFromName(const char* name) {
    if (!name) return Level::Warn;
    std::string upper;
    for (const char* p = name; *p; ++p) upper += (char)std::toupper((unsigned char)*p);
    for (int i = 0; i < 5; ++i)
        if (upper == kLevelNames[i]) return (Level)i;
    return Level::Warn;
}
}  // namespace

void tracelevel::operator()(const std::string& line) const {
    CLogSystem::theRootInstance->publish(level, line);
}
void infolevel::operator()(const std::string& line) const {
    CLogSystem::theRootInstance->publish(level, line);
}
void warnlevel::operator()(const std::string& line) const {
    CLogSystem::theRootInstance->publish(level, line);
}
void fatallevel::operator()(const std::string& line) const {
    CLogSystem::theRootInstance->publish(level, line);
}

}  // namespace basic_logging

using basic_logging::Level;

namespace {
CLogSystem& Root() {
    static CLogSystem root;
    return root;
}
}  // namespace

CLogSystem* CLogSystem::theRootInstance = &Root();

CLogSystem::CLogSystem()
    : m_level((int)basic_logging::LevelFromName(std::getenv("LIBLOGGING_LEVEL"))) {
    // An unset variable leaves the default, WARN.
}

namespace {
// Ready-made level strings: the level is asked at every trace point of a caller.
const std::string kLevelStrings[] = {"TRACE", "INFO", "WARN", "FATAL", "OFF"};
}  // namespace

std::string CLogSystem::getLevel() const {
    return kLevelStrings[__atomic_load_n(&m_level, __ATOMIC_RELAXED)];
}

void CLogSystem::setLevel(const std::string& name) {
    __atomic_store_n(&m_level, (int)basic_logging::LevelFromName(name.c_str()), __ATOMIC_RELAXED);
}

void CLogSystem::setSink(Sink sink) {
    std::lock_guard<std::mutex> lock(m_sinkMutex);
    m_sink = std::move(sink);
}

void CLogSystem::publish(Level lineLevel, const std::string& line) {
    if ((int)lineLevel < (int)level()) return;
    std::lock_guard<std::mutex> lock(m_sinkMutex);
    if (m_sink) {
        m_sink(lineLevel, line);
        return;
    }
    std::string out = basic_logging::kLevelNames[(int)lineLevel];
    out += ' ';
    out += line;
    out += '\n';
    std::fwrite(out.data(), 1, out.size(), stderr);
}
