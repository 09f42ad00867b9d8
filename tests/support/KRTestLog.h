#pragma once

#include "foundation/KRLog.h"

#include <QStringList>

#include <mutex>
#include <vector>

/// Collects the log's lines for as long as it lives.
class KRTestLog {
public:
    KRTestLog()
    {
        KRSetLogSink([this](const QString& line) {
            std::scoped_lock guard(m_lock);
            m_lines.push_back(line);
        });
    }
    KRTestLog(const KRTestLog&) = delete;
    KRTestLog& operator=(const KRTestLog&) = delete;
    ~KRTestLog() { KRSetLogSink({}); }

    QStringList lines() const
    {
        std::scoped_lock guard(m_lock);
        return { m_lines.begin(), m_lines.end() };
    }
    void clear()
    {
        std::scoped_lock guard(m_lock);
        m_lines.clear();
    }
    bool contains(const QString& text) const { return !lines().filter(text).isEmpty(); }

private:
    mutable std::mutex m_lock;
    // Not a list that callers could come to share: one thread would let go of it while another appends.
    std::vector<QString> m_lines;
};
