#pragma once

#include "core/Twitter.h"

#include <QWidget>

#include <optional>

class QComboBox;
class QLabel;
class PelinorCertificateView;

/// A field for the server to sign in to: takes what people type, proposes the servers that were used before,
/// finds out what is there once the field is left, and says what it found. Where nobody known vouches for the
/// server's certificate the user sees it and may trust it; what comes of that is the account's, and forgotten
/// without one. Main thread.
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
    /// Shows the certificate that was refused, with an offer to trust it. False when the error is about
    /// something else.
    bool offerToTrust(const KRError& error);
    [[nodiscard]] bool isFinding() const { return m_isFinding; }

Q_SIGNALS:
    /// The search is over, whether something was found or not.
    void finished(bool isFound);

private:
    void _textDidChange();
    void _siteResponse(const KRResult<TwitterSite>& response, int search);
    void _say(const QString& text);
    [[nodiscard]] std::optional<TwitterAccountContext> _knownContext() const;
    void _trustCertificate();
    void _forgetTrust();

    Twitter& m_twitter;
    QComboBox* m_comboBox = nullptr;
    QLabel* m_answer = nullptr;
    PelinorCertificateView* m_certificateView = nullptr;
    // The servers that trust was given to here.
    QStringList m_trustedServers;
    std::optional<TwitterSite> m_site;
    bool m_isFinding = false;
    // The number of the last search: an earlier one may end later.
    int m_search = 0;
};
