#pragma once

#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterDirectMessage.h"
#include "text/render/KRActiveTextRenderer.h"
#include "toolkit/KRActiveTextTracker.h"
#include "toolkit/KRTableViewCell.h"

class KRTextHeightCache;

/// A message: who wrote it, its text in a bubble, and when. The account's own are at the right. It draws
/// itself. Main thread.
class PelinorDirectMessageTableViewCell final : public KRTableViewCell {
    Q_OBJECT

public:
    explicit PelinorDirectMessageTableViewCell(KRNotificationCenter& notifications);
    ~PelinorDirectMessageTableViewCell() override;

    static QString identifier();
    static int heightForMessage(const TwitterDirectMessage& message,
        int tableWidth,
        int fontSizePreference,
        KRTextHeightCache& heights);
    static QString accessibleNameForMessage(const TwitterDirectMessage& message);

    void setMessage(const TwitterDirectMessagePtr& message, bool isMine, int fontSizePreference);
    /// Reads the clock again for how long ago the message is.
    void updateDate();
    void setLinkHandler(std::function<void(const QString& text, int type)> handler);

    void selectedStateDidChange() override { update(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    QPoint _textOrigin() const;
    void _layOutText();

    KRNotificationCenter& m_notifications;
    KRObservation m_userObservation;
    TwitterDirectMessagePtr m_message;
    bool m_isMine = false;
    int m_fontSizePreference = 0;
    KRActiveTextRenderer m_text;
    KRActiveTextTracker* m_tracker = nullptr;
};
