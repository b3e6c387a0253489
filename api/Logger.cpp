#include "api/Logger.h"

#include <QLocale>

CLogger g_Logger;

CLogger::CLogger() : m_enabled(false) {}

CLogger::~CLogger() {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_enabled && m_file.isOpen()) {
        m_file.write("\n");
        m_file.close();
    }
}

QString CLogger::DefaultFileName(const QDate& date) {
    return QLocale::c().toString(date, QStringLiteral("d'_'MMMM'_'yy")) + QStringLiteral(".txt");
}

void CLogger::setLogging(bool enable, QString fileName) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_file.isOpen()) m_file.close();
    m_enabled = enable;
    if (!enable) return;
    m_file.setFileName(fileName.isEmpty() ? DefaultFileName(QDate::currentDate()) : fileName);
    // A file that cannot be opened is not reported; writes to it are dropped.
    m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
}

void CLogger::LogString(const char* text) {
    if (!m_enabled || !text) return;
    QByteArray line(text);
    line += '\n';
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_enabled && m_file.isOpen()) m_file.write(line);
}
