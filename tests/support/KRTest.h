#pragma once

// What nearly every test needs.

#include "foundation/KRNotificationCenter.h"
#include "foundation/KRResult.h"
#include "support/KRManualClock.h"
#include "support/KRTestLog.h"
#include "support/KRTestWait.h"

#include <QDir>
#include <QTemporaryDir>

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

/// The path of a file that is written into the folder.
inline QString
KRTestFile(const QTemporaryDir& folder, const QByteArray& content, const QString& name = u"file"_s)
{
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    return file.fileName();
}

/// What is in a file; nothing when there is none.
inline QByteArray KRTestContent(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Hears what is posted at the default center, about an object or at all.
template <class Notification, class... Arguments>
KRObservation KRTestObserve(const Arguments&... handlerAndObject)
{
    return KRNotificationCenter::defaultCenter().observe<Notification>(handlerAndObject...);
}

/// Counts what is posted, about an object or at all.
template <class Notification>
struct KRTestCounter {
    template <class... Object>
    explicit KRTestCounter(Object*... object)
        : observation(KRTestObserve<Notification>([this](const auto&) { ++count; }, object...))
    {
    }
    mutable std::atomic<int> count = 0;
    KRObservation observation;
};

/// Keeps what a callback brings.
template <class T>
struct KRTestReceiver {
    std::atomic<int> count = 0;
    std::atomic<bool> wasOnMainThread = false;
    std::optional<KRResult<T>> result;
    void took(const KRResult<T>& value)
    {
        result.emplace(value);
        wasOnMainThread = KRRunLoop::isMainThread();
        ++count;
    }
};
