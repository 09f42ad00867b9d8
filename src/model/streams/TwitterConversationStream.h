#pragma once

#include "model/streams/TwitterAccountStream.h"

#include <QSet>

/// The chain of statuses that a status answers, followed one by one up to its start. A step that fails shows
/// as an error row at the bottom. Main thread, but for gotNext(), which is called where the answer comes.
class TwitterConversationStream final : public TwitterAccountStream {
public:
    using TwitterAccountStream::TwitterAccountStream;

    [[nodiscard]] TwitterStatusPtr baseStatus() const { return m_baseStatus.lock(); }
    /// The status the chain ends with; set once, after the account. Starts following.
    void setBaseStatus(const TwitterStatusPtr& status);
    /// Looks for the status that the oldest one answers.
    void getNext();
    /// The chain is followed by itself; there are no pages to ask for.
    void loadNewer() override { }
    void loadOlder() override { }

private:
    void gotNext(KRResult<TwitterStatusPtr> response);
    void handleStatus(const TwitterStatusPtr& status);
    void _stopAtError(const KRError& error);
    [[nodiscard]] std::shared_ptr<TwitterConversationStream> _self();

    // The uniquing tables keep every status alive.
    std::weak_ptr<TwitterStatus> m_baseStatus;
    bool m_hasBaseStatus = false;
    QSet<QString> m_askedFor;
};
