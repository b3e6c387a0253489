// CLogger: the record log, a plain text file naming the records a conversion had no handler
// for, between a start and an end banner. Off until EnableLogging(true, ...).
//
// Conversions on several threads may write to it at once: every write takes the log's lock, so
// each line (a record name with its line feed, or a banner) reaches the file whole.
#ifndef SVGMODULE_LOGGER_H
#define SVGMODULE_LOGGER_H

#include <QDate>
#include <QFile>
#include <QString>
#include <atomic>
#include <mutex>

#include "svgmodule.h"

class CLogger {
  public:
    CLogger();
    ~CLogger();
    CLogger(const CLogger&) = delete;
    CLogger& operator=(const CLogger&) = delete;

    // Closes the current file; when `enable` is set, opens `fileName` (or the dated default
    // name) for appending.
    void setLogging(bool enable, QString fileName);
    // Writes `text` and a line feed when the log is on.
    void LogString(const char* text);
    // Writes `text` as it is when the log is on (the converters' banners).
    void WriteText(const char* text);

    // The default file name for a date: day without leading zero, full English month name,
    // two-digit year, ".txt" (5 March 2010 gives "5_March_10.txt").
    static QString DefaultFileName(const QDate& date);

    std::atomic<bool> m_enabled;
    QFile m_file;

  private:
    // Writes `length` bytes of `text`, then a line feed when `newline` is set, under the lock.
    void Write(const char* text, size_t length, bool newline);

    std::mutex m_mutex;
};

extern SVGMODULE_EXPORT CLogger g_Logger;

#endif
