// CLogger: the record log, a plain text file naming the records a conversion had no handler
// for, between a start and an end banner. Off until EnableLogging(true, ...).
//
// Conversions on several threads may write to it at once: every write takes the log's lock and
// is one piece of text ending in a line feed (a record name, or a whole banner), so no other
// thread's line lands inside it. Switching the log takes the same lock; a conversion running
// meanwhile writes each of its lines whole to the old file, to the new one, or nowhere.
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
    // Writes `text` and a line feed, as one write, when the log is on.
    void LogString(const char* text);

    // The default file name for a date: day without leading zero, full English month name,
    // two-digit year, ".txt" (5 March 2010 gives "5_March_10.txt").
    static QString DefaultFileName(const QDate& date);

    std::atomic<bool> m_enabled;
    QFile m_file;

  private:
    std::mutex m_mutex;
};

extern SVGMODULE_EXPORT CLogger g_Logger;

#endif
