#pragma once

#include "services/TwitterServiceContext.h"

#include <QWidget>

#include <functional>
#include <memory>

class PelinorLinkShortening;
class QLabel;
class QPlainTextEdit;
class QToolButton;

/// The field at the bottom of a conversation. It grows with what is written, up to a few lines. Enter sends,
/// Shift+Enter begins a line, Ctrl+Shift+L shortens the links. Main thread.
class PelinorAnswerView final : public QWidget {
    Q_OBJECT

public:
    explicit PelinorAnswerView(QWidget* parent = nullptr);
    ~PelinorAnswerView() override;

    [[nodiscard]] QString text() const;
    /// Not told as a change.
    void setText(const QString& text);
    /// At the caret, as if it were typed.
    void insertText(const QString& text);
    /// What fits, 0 where there is no limit. Longer texts are not sent.
    void setLongestText(qsizetype longest);
    void setPlaceholderText(const QString& text);
    /// What links are shortened with.
    void setServiceContext(std::function<TwitterServiceContext()> context) { m_context = std::move(context); }

    void shortenURLs();

Q_SIGNALS:
    void textChanged();
    void sendRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void _textDidChange();
    void _update();
    void _send();
    [[nodiscard]] bool _isSendable() const;

    QPlainTextEdit* m_editor = nullptr;
    QLabel* m_counter = nullptr;
    QToolButton* m_sendButton = nullptr;
    qsizetype m_longest = 0;
    std::function<TwitterServiceContext()> m_context;
    std::shared_ptr<PelinorLinkShortening> m_shortening;
};
