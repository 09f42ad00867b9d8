#include "app/settings/PelinorCertificateView.h"

#include "app/settings/PelinorWrappedLabel.h"
#include "transport/KRHTTPConnection.h"

#include <QFontDatabase>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

PelinorCertificateView::PelinorCertificateView(QWidget* parent)
    : QWidget(parent)
    , m_explanation(new PelinorWrappedLabel(this))
    , m_fingerprint(new QLabel(this))
    , m_button(new QPushButton(this))
{
    m_explanation->setObjectName(u"certificateExplanation"_s);
    m_fingerprint->setObjectName(u"certificateFingerprint"_s);
    m_fingerprint->setTextFormat(Qt::PlainText);
    m_fingerprint->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    m_fingerprint->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    // Digits and their order are the same in every language.
    m_fingerprint->setLayoutDirection(Qt::LeftToRight);
    m_button->setObjectName(u"certificateButton"_s);
    // Enter in another field must not decide this.
    m_button->setAutoDefault(false);
    connect(m_button, &QPushButton::clicked, this, &PelinorCertificateView::buttonPressed);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_explanation);
    layout->addWidget(m_fingerprint);
    layout->addWidget(m_button, 0, Qt::AlignLeft);
}

PelinorCertificateView::~PelinorCertificateView() = default;

void PelinorCertificateView::showCertificate(const KRServerCertificate& certificate,
    const QString& explanation,
    const QString& buttonText)
{
    m_certificate = certificate;
    m_explanation->setText(explanation);
    m_fingerprint->setText(certificate.groupedFingerprint());
    m_fingerprint->setAccessibleName(tr("SHA-256 fingerprint: %1").arg(certificate.fingerprint));
    m_button->setText(buttonText);
}

bool PelinorCertificateView::showRefusedCertificate(const KRError& error)
{
    const std::optional<KRServerCertificate> refused = KRServerCertificate::refusedByError(error);
    if (!refused)
        return false;
    const QString explanation = error.code == KRHTTPConnectionErrorCertificateChanged
        ? tr("The certificate of %1 is not the one that was trusted until now. Either it was renewed, or "
             "somebody else answers in its place. Ask whoever runs the server, and trust the new "
             "certificate only if this is its SHA-256 fingerprint:")
        : tr("Nobody known vouches for the certificate of %1. Ask whoever runs the server, and trust the "
             "certificate only if this is its SHA-256 fingerprint:");
    showCertificate(*refused, explanation.arg(refused->serverName()), tr("Trust This Certificate"));
    return true;
}
