#pragma once

#include "core/Twitter.h"

#include <QWidget>

#include <optional>

class QComboBox;
class QLabel;

/// A field for the server to sign in to: takes what people type, proposes the servers that were used before,
/// finds out what is there once the field is left, and says what it found. Main thread.
class PelinorServerField : public QWidget {
    Q_OBJECT

public:
    /// The root object outlives the field.
    PelinorServerField(Twitter& twitter, QWidget* parent);
    ~PelinorServerField() override;

    QComboBox& comboBox() { return *m_comboBox; }
    /// What accounts of the server are made with; nothing until it has been found.
    [[nodiscard]] std::optional<TwitterAccountContext> context() const;
    /// Looks for what is typed, unless that is known or under way.
    void find();
    [[nodiscard]] bool isFinding() const { return m_isFinding; }

Q_SIGNALS:
    /// The search is over, whether something was found or not.
    void finished(bool isFound);

private:
    void _textDidChange();
    void _siteResponse(const KRResult<TwitterSite>& response, const QString& typed);
    void _say(const QString& text);

    Twitter& m_twitter;
    QComboBox* m_comboBox = nullptr;
    QLabel* m_answer = nullptr;
    std::optional<TwitterSite> m_site;
    bool m_isFinding = false;
};
