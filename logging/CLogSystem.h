// liblogging: a small process-wide logging system.
//
// One root object holds one stream per level (trace, info, warning, fatal). A stream collects
// the items of a line, each followed by one space, and hands the finished line to its level's
// sink when it receives the end marker `basic_logging::Logger::end`. Lines below the current
// level are dropped. The level comes from the environment variable LIBLOGGING_LEVEL at load
// (TRACE, INFO, WARN, FATAL or OFF; default WARN) and can be changed with setLevel. The default
// sink writes each line to standard error; a host or a test may install its own.
#ifndef LIBLOGGING_CLOGSYSTEM_H
#define LIBLOGGING_CLOGSYSTEM_H

#include <functional>
#include <mutex>
#include <string>

namespace basic_logging {

enum class Level { Trace = 0, Info = 1, Warn = 2, Fatal = 3, Off = 4 };

// The end-of-line marker type; its one object is Logger::end.
struct LoggerEndline {};

class Logger {
  public:
    static const LoggerEndline end;
};

// Level sinks: called with one finished line.
struct tracelevel {
    static constexpr Level level = Level::Trace;
    void operator()(const std::string& line) const;
};
struct infolevel {
    static constexpr Level level = Level::Info;
    void operator()(const std::string& line) const;
};
struct warnlevel {
    static constexpr Level level = Level::Warn;
    void operator()(const std::string& line) const;
};
struct fatallevel {
    static constexpr Level level = Level::Fatal;
    void operator()(const std::string& line) const;
};

// A per-level stream. Every item and every end marker is taken under the stream's mutex, one
// at a time, so items of lines written by several threads at once may interleave.
template <class L>
class logstream {
  public:
    logstream& operator<<(const char* item) {
        append(item ? item : "(null)");
        return *this;
    }
    logstream& operator<<(const std::string& item) {
        append(item);
        return *this;
    }
    logstream& operator<<(const LoggerEndline&) {
        std::string line;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            line.swap(m_buffer);
        }
        m_sink(line);
        return *this;
    }
    // Appends the item and one space to the line being built.
    void append(const std::string& item) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_buffer += item;
        m_buffer += ' ';
    }

  private:
    std::mutex m_mutex;
    std::string m_buffer;
    L m_sink;
};

}  // namespace basic_logging

class CLogSystem {
  public:
    using Sink = std::function<void(basic_logging::Level, const std::string&)>;

    // The root object, created when the library is loaded.
    static CLogSystem* theRootInstance;

    // The current level's name: "TRACE", "INFO", "WARN", "FATAL" or "OFF".
    std::string getLevel() const;
    // Sets the level by name (case-insensitive); an unknown name selects WARN.
    void setLevel(const std::string& name);
    // The current level as a number: what a caller compares at every trace point.
    basic_logging::Level level() const {
        return (basic_logging::Level)__atomic_load_n(&m_level, __ATOMIC_RELAXED);
    }

    // Replaces where finished lines go; an empty sink restores standard error.
    void setSink(Sink sink);
    // Passes a finished line of the given level to the sink unless the level is below the
    // current one.
    void publish(basic_logging::Level level, const std::string& line);

    basic_logging::logstream<basic_logging::tracelevel> trace;
    basic_logging::logstream<basic_logging::infolevel> info;
    basic_logging::logstream<basic_logging::warnlevel> warning;
    basic_logging::logstream<basic_logging::fatallevel> fatal;

    CLogSystem();

  private:
    int m_level;  // a basic_logging::Level value, read without a lock
    std::mutex m_sinkMutex;
    Sink m_sink;
};

#endif
