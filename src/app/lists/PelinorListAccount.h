#pragma once

#include "model/streams/TwitterStream.h"

#include <memory>

/// What a list asks of the account it belongs to. Main thread.
class PelinorListAccount {
public:
    PelinorListAccount() = default;
    PelinorListAccount(const PelinorListAccount&) = delete;
    PelinorListAccount& operator=(const PelinorListAccount&) = delete;
    virtual ~PelinorListAccount() = default;

    [[nodiscard]] virtual QString username() const = 0;
    /// Whose posts are "mine".
    [[nodiscard]] virtual bool isAuthorOfStatus(const TwitterStatus& status) const = 0;
    [[nodiscard]] virtual std::shared_ptr<TwitterStream> timelineStream() = 0;
    /// The user has seen the newest posts of the timeline.
    virtual void noteFreshTweets() = 0;
};
