#pragma once

#include "foundation/KRLog.h"

#include <QStringList>

#include <mutex>

/// Collects the log's lines for as long as it lives.
class KRTestLog {
public:
    KRTestLog()
    {
        KRSetLogSink([this](const QString& line) {
            std::scoped_lock guard(m_lock);
            m_lines.append(line);
        });
    }
    KRTestLog(const KRTestLog&) = delete;
    KRTestLog& operator=(const KRTestLog&) = delete;
    ~KRTestLog() { KRSetLogSink({}); }

    QStringList lines() const
    {
        std::scoped_lock guard(m_lock);
        return m_lines;
    }
    bool contains(const QString& text) const { return !lines().filter(text).isEmpty(); }

private:
    mutable std::mutex m_lock;
    QStringList m_lines;
};
