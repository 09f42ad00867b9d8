#pragma once

#include "app/messages/PelinorConversationRows.h"
#include "text/render/KRActiveTextRenderer.h"
#include "toolkit/KRActiveTextTracker.h"
#include "toolkit/KRTableViewCell.h"

class KRTextHeightCache;
class QToolButton;

/// A message in its bubble: the other's with their picture at the side where lines begin, the account's own at
/// the other side. Below one that ends a group stands when it was, below one that has not arrived what became
/// of it. It draws itself. Main thread.
class PelinorDirectMessageTableViewCell final : public KRTableViewCell {
    Q_OBJECT

public:
    explicit PelinorDirectMessageTableViewCell(KRNotificationCenter& notifications);
    ~PelinorDirectMessageTableViewCell() override;

    static QString identifier();
    static int heightForRow(const PelinorConversationRow& row,
        int tableWidth,
        int fontSizePreference,
        KRTextHeightCache& heights);
    static QString accessibleNameForRow(const PelinorConversationRow& row);

    void setContent(const PelinorConversationRow& row, int fontSizePreference);
    void setLinkHandler(std::function<void(const QString& text, int type)> handler);
    /// For a message that has not arrived.
    void setTryAgainHandler(std::function<void()> handler) { m_tryAgain = std::move(handler); }
    void setDiscardHandler(std::function<void()> handler) { m_discard = std::move(handler); }

    bool activate() override;
    QStringList actionNames() const override;
    void performAction(const QString& name) override;
    void selectedStateDidChange() override { update(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Frames;

    [[nodiscard]] bool _hasFailed() const;
    [[nodiscard]] QString _footer() const;
    [[nodiscard]] Frames _frames() const;
    void _layOut();

    KRNotificationCenter& m_notifications;
    KRObservation m_userObservation;
    PelinorConversationRow m_content;
    int m_fontSizePreference = 0;
    KRActiveTextRenderer m_text;
    KRActiveTextTracker* m_tracker = nullptr;
    QToolButton* m_tryAgainButton = nullptr;
    QToolButton* m_discardButton = nullptr;
    std::function<void()> m_tryAgain;
    std::function<void()> m_discard;
};
