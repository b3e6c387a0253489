// Small helpers shared by the measuring programs: a CPU-time clock, medians, option parsing.
#ifndef SVGMODULE_BENCH_BENCHUTIL_H
#define SVGMODULE_BENCH_BENCHUTIL_H

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

namespace benchutil {

// CPU time consumed by the calling thread, in nanoseconds. Time the thread spends waiting
// for a core that another process holds is not counted.
inline double ThreadCpuNs() {
    timespec ts;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
    return (double)ts.tv_sec * 1e9 + (double)ts.tv_nsec;
}

// CPU time of one call of `f`, in nanoseconds.
template <typename F>
double TimeNs(F&& f) {
    const double start = ThreadCpuNs();
    f();
    return ThreadCpuNs() - start;
}

// The median; the mean of the two middle values for an even count; 0 when empty.
inline double Median(std::vector<double> v) {
    if (v.empty()) return 0;
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

// Minimal "--name value" options: Take("--rounds", &s) consumes the pair when present.
class Options {
  public:
    Options(int argc, char** argv) : m_args(argv + 1, argv + argc) {}
    bool Take(const char* name, std::string* value) {
        for (size_t i = 0; i + 1 < m_args.size(); ++i) {
            if (m_args[i] == name) {
                *value = m_args[i + 1];
                m_args.erase(m_args.begin() + (long)i, m_args.begin() + (long)i + 2);
                return true;
            }
        }
        return false;
    }
    bool TakeInt(const char* name, long* value) {
        std::string s;
        if (!Take(name, &s)) return false;
        char* end = nullptr;
        *value = std::strtol(s.c_str(), &end, 10);
        return !s.empty() && *end == '\0';
    }
    bool TakeFlag(const char* name) {
        auto it = std::find(m_args.begin(), m_args.end(), name);
        if (it == m_args.end()) return false;
        m_args.erase(it);
        return true;
    }
    // Whatever no Take consumed; a caller treats it as a usage error.
    const std::vector<std::string>& Rest() const { return m_args; }

  private:
    std::vector<std::string> m_args;
};

}  // namespace benchutil

#endif
