#pragma once

#include "app/lists/PelinorStatusListViewController.h"
#include "model/streams/TwitterConversationStream.h"

/// One post, large, and below it the chain of those it answers. Nothing of the reader's place is kept.
class PelinorStatusDetailsViewController final : public PelinorStatusListViewController {
    Q_OBJECT

public:
    using PelinorStatusListViewController::PelinorStatusListViewController;

    const TwitterStatusPtr& status() const { return m_status; }
    /// Before the view appears.
    void setStatus(TwitterStatusPtr status) { m_status = std::move(status); }

    QString title() const override { return tr("Post"); }
    std::shared_ptr<TwitterStream> stream() override;
    bool shouldAmplifyStatus(const TwitterStatus& status) const override { return status.isEqual(*m_status); }

private:
    TwitterStatusPtr m_status;
    std::shared_ptr<TwitterConversationStream> m_stream;
};
