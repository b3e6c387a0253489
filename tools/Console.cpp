#include "Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "CLogSystem.h"

namespace {

std::string Duration(double seconds) {
    const long s = (long)(seconds + 0.5);
    char text[32];
    if (s >= 3600)
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", s / 3600, s / 60 % 60, s % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld", s / 60, s % 60);
    return text;
}

int TerminalWidth() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
    return 80;
}

const char* LevelName(basic_logging::Level level) {
    static const char* const names[] = {"TRACE", "INFO", "WARN", "FATAL", "OFF"};
    return names[std::min((int)level, 4)];
}

}  // namespace

std::string ProgressLine(size_t done, size_t total, double seconds, int width) {
    const bool started = done > 0 && seconds > 0;
    const double rate = started ? done / seconds : 0;
    const std::string left = started ? Duration((total - done) / rate) : std::string("-:--");
    char counts[128];
    std::snprintf(counts, sizeof counts, " %zu/%zu %3d%%  %.1f files/s  %s left", done, total,
                  total ? (int)(100.0 * done / total) : 100, rate, left.c_str());
    const int barWidth = std::max(10, std::min(40, width - (int)std::string(counts).size() - 2));
    const int filled = total ? (int)((double)barWidth * done / total) : barWidth;
    std::string line = "[" + std::string(filled, '#') + std::string(barWidth - filled, '.') + "]";
    line += counts;
    if ((int)line.size() > width) line.resize(std::max(width, 0));
    return line;
}

Console::Console(bool bar)
    : m_bar(bar && isatty(STDERR_FILENO)), m_start(std::chrono::steady_clock::now()) {
    if (!m_bar) return;
    CLogSystem::theRootInstance->setSink(
        [this](basic_logging::Level level, const std::string& line) {
            Message(std::string(LevelName(level)) + " " + line);
        });
}

Console::~Console() {
    Finish();
    if (m_bar) CLogSystem::theRootInstance->setSink(nullptr);
}

void Console::Message(const std::string& line) {
    std::lock_guard<std::mutex> lock(m_mutex);
    EraseLocked();
    std::fprintf(stderr, "%s\n", line.c_str());
    if (m_bar && !m_line.empty()) {
        std::fprintf(stderr, "%s", m_line.c_str());
        m_drawn = true;
    }
    std::fflush(stderr);
}

void Console::Progress(size_t done, size_t total) {
    if (!m_bar) return;
    const double now = Seconds();
    if (done < total && now - m_drawnAt < 0.1) return;  // ten updates a second are plenty
    m_drawnAt = now;
    const std::string line = ProgressLine(done, total, now, TerminalWidth() - 1);
    std::lock_guard<std::mutex> lock(m_mutex);
    std::fprintf(stderr, "\r%s\033[K", line.c_str());
    std::fflush(stderr);
    m_line = line;
    m_drawn = true;
}

void Console::Finish() {
    std::lock_guard<std::mutex> lock(m_mutex);
    EraseLocked();
    m_line.clear();
}

double Console::Seconds() const {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
}

void Console::EraseLocked() {
    if (!m_drawn) return;
    std::fprintf(stderr, "\r\033[K");
    std::fflush(stderr);
    m_drawn = false;
}
