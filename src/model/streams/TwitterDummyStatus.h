#pragma once

#include "foundation/KRError.h"
#include "model/records/TwitterStatus.h"

/// A row of a list that is no post. It has no ID and an empty text, and is never made definitive. Main
/// thread.
class TwitterDummyStatus : public TwitterStatus {
public:
    [[nodiscard]] bool isNotADummyStatus() const override { return false; }
};

/// The top of every list.
class TwitterDummyHeaderStatus final : public TwitterDummyStatus { };

/// The bottom of a list that can load more.
class TwitterDummyLoadingStatus final : public TwitterDummyStatus { };

/// The bottom of a list whose old end was reached.
class TwitterDummyEndOfStreamStatus final : public TwitterDummyStatus {
public:
    explicit TwitterDummyEndOfStreamStatus(bool isAfterFailure = false)
        : m_isAfterFailure(isAfterFailure)
    {
    }

    /// It is a page that could not be loaded that ended the list. TwitterStream::loadOlderAgain() asks for it
    /// once more.
    [[nodiscard]] bool isAfterFailure() const { return m_isAfterFailure; }

private:
    bool m_isAfterFailure;
};

/// Between two posts, where more had come than could be loaded. TwitterStream::loadMissing() loads it.
class TwitterDummyMissingStatus final : public TwitterDummyStatus {
public:
    TwitterDummyMissingStatus(QString belowID, bool isLoading)
        : m_belowID(std::move(belowID))
        , m_isLoading(isLoading)
    {
    }

    /// The post right below this row.
    const QString& belowID() const { return m_belowID; }
    /// What is missing is on its way.
    [[nodiscard]] bool isLoading() const { return m_isLoading; }

private:
    QString m_belowID;
    bool m_isLoading;
};

/// A place where loading failed.
class TwitterDummyErrorStatus final : public TwitterDummyStatus {
public:
    explicit TwitterDummyErrorStatus(KRError error)
        : m_error(std::move(error))
    {
    }

    const KRError& error() const { return m_error; }

private:
    KRError m_error;
};
