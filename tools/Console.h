// Standard error for the command line: messages, and a progress bar when it is a terminal.
#ifndef SVGMODULE_TOOLS_CONSOLE_H
#define SVGMODULE_TOOLS_CONSOLE_H

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>

// The progress line for `done` of `total` files after `seconds`: a bar, the counts, the rate
// and the time left, at most `width` columns wide.
std::string ProgressLine(size_t done, size_t total, double seconds, int width);

class Console {
  public:
    // With `bar`, a progress bar is drawn when standard error is a terminal, and the library's
    // diagnostic lines are printed above it while this object lives.
    explicit Console(bool bar);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Prints one line (without its line feed) on standard error, above the bar.
    void Message(const std::string& line);
    // Redraws the bar for `done` of `total` files.
    void Progress(size_t done, size_t total);
    // Removes the bar.
    void Finish();
    // Seconds since construction.
    double Seconds() const;

  private:
    void EraseLocked();

    std::mutex m_mutex;
    bool m_bar;
    bool m_drawn = false;
    double m_drawnAt = -1;  // when the bar was last drawn
    std::string m_line;
    std::chrono::steady_clock::time_point m_start;
};

#endif
