#pragma once

#include "transport/KRServerCertificate.h"

#include <QWidget>

class QLabel;
class QPushButton;

/// A certificate as a person compares it: what it is about, its fingerprint in short groups, and a button for
/// what can be done about it. Main thread.
class PelinorCertificateView : public QWidget {
    Q_OBJECT

public:
    explicit PelinorCertificateView(QWidget* parent);
    ~PelinorCertificateView() override;

    void showCertificate(const KRServerCertificate& certificate,
        const QString& explanation,
        const QString& buttonText);
    /// One that was refused, with an offer to trust it. False when the error is about something else; nothing
    /// changes then.
    bool showRefusedCertificate(const KRError& error);
    [[nodiscard]] const KRServerCertificate& certificate() const { return m_certificate; }

Q_SIGNALS:
    void buttonPressed();

private:
    QLabel* m_explanation = nullptr;
    QLabel* m_fingerprint = nullptr;
    QPushButton* m_button = nullptr;
    KRServerCertificate m_certificate;
};
