#include "api/Logger.h"

#include <QLocale>
#include <cstring>

CLogger g_Logger;

CLogger::CLogger() : m_enabled(false) {}

CLogger::~CLogger() {
    if (m_enabled && m_file.isOpen()) {
        m_file.write("\n");
        m_file.close();
    }
}

QString CLogger::DefaultFileName(const QDate& date) {
    return QLocale::c().toString(date, QStringLiteral("d'_'MMMM'_'yy")) + QStringLiteral(".txt");
}

void CLogger::setLogging(bool enable, QString fileName) {
    if (m_file.isOpen()) m_file.close();
    m_enabled = enable;
    if (!enable) return;
    m_file.setFileName(fileName.isEmpty() ? DefaultFileName(QDate::currentDate()) : fileName);
    // A file that cannot be opened is not reported; writes to it are dropped.
    m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text);
}

void CLogger::LogString(const char* text) {
    if (!m_enabled || !text || !m_file.isOpen()) return;
    m_file.write(text, (qint64)std::strlen(text));
    m_file.write("\n");
}

void CLogger::WriteText(const char* text) {
    if (!m_enabled || !text || !m_file.isOpen()) return;
    m_file.write(text, (qint64)std::strlen(text));
}
