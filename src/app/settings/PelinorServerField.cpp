#include "app/settings/PelinorServerField.h"

#include "api/TwitterSiteFinder.h"
#include "app/settings/PelinorCertificateView.h"
#include "app/settings/PelinorWrappedLabel.h"
#include "foundation/KRRunLoop.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int FieldWidth = 260;

} // namespace

PelinorServerField::PelinorServerField(Twitter& twitter, QWidget* parent)
    : QWidget(parent)
    , m_twitter(twitter)
    , m_comboBox(new QComboBox(this))
    , m_answer(new PelinorWrappedLabel(this))
    , m_certificateView(new PelinorCertificateView(this))
{
    m_comboBox->setObjectName(u"serverField"_s);
    m_comboBox->setAccessibleName(tr("Server"));
    m_comboBox->setEditable(true);
    m_comboBox->setInsertPolicy(QComboBox::NoInsert);
    m_comboBox->setMinimumWidth(FieldWidth);
    m_comboBox->addItems(twitter.servers());
    m_comboBox->lineEdit()->setAccessibleName(tr("Server"));
    m_comboBox->lineEdit()->setPlaceholderText(tr("social.example.org"));
    m_answer->setObjectName(u"serverAnswer"_s);
    setFocusProxy(m_comboBox);
    connect(m_comboBox, &QComboBox::currentTextChanged, this, [this] { _textDidChange(); });
    connect(m_comboBox->lineEdit(), &QLineEdit::editingFinished, this, [this] {
        // The press on the button under a refused certificate comes through here first.
        if (m_certificateView->isHidden())
            find();
    });
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_comboBox);
    layout->addWidget(m_answer);
    layout->addWidget(m_certificateView);
    connect(m_certificateView, &PelinorCertificateView::buttonPressed, this, [this] { _trustCertificate(); });
    m_answer->hide();
    m_certificateView->hide();
}

PelinorServerField::~PelinorServerField()
{
    _forgetTrust();
}

std::optional<TwitterAccountContext> PelinorServerField::context() const
{
    if (m_site)
        return m_twitter.accountContextForSite(*m_site);
    const std::optional<TwitterAccountContext> known = _knownContext();
    if (!known || m_trustedServers.isEmpty())
        return known;
    TwitterSite site = known->site.value_or(TwitterSite { known->hosts });
    site.certificates = known->hosts.trustedCertificates();
    return m_twitter.accountContextForSite(site);
}

std::optional<TwitterAccountContext> PelinorServerField::_knownContext() const
{
    // A server that accounts are signed in to needs no search.
    const QString typed = m_comboBox->currentText().trimmed();
    if (!typed.isEmpty() && typed == m_twitter.accountContext().hosts.server())
        return m_twitter.accountContext();
    for (const TwitterAccountPtr& account : m_twitter.accounts()) {
        if (!typed.isEmpty() && typed == account->context().hosts.server())
            return account->context();
    }
    return std::nullopt;
}

void PelinorServerField::_textDidChange()
{
    m_site.reset();
    m_isFinding = false;
    _forgetTrust();
    _say({});
}

bool PelinorServerField::offerToTrust(const KRError& error)
{
    if (!m_certificateView->showRefusedCertificate(error))
        return false;
    _say({});
    m_certificateView->show();
    return true;
}

void PelinorServerField::_trustCertificate()
{
    const KRServerCertificate& certificate = m_certificateView->certificate();
    m_trustedServers.append(certificate.server);
    KRTrustedCertificates::trust(certificate);
    _say(tr("The certificate of %1 is trusted.").arg(certificate.serverName()));
    setFocus();
    find();
}

void PelinorServerField::_forgetTrust()
{
    for (const QString& server : std::as_const(m_trustedServers))
        m_twitter.restoreTrustInServer(server);
    m_trustedServers.clear();
}

void PelinorServerField::_say(const QString& text)
{
    m_answer->setText(text);
    m_answer->setVisible(!text.isEmpty());
    m_certificateView->hide();
}

void PelinorServerField::find()
{
    const QString typed = m_comboBox->currentText();
    if (m_isFinding || context() || typed.trimmed().isEmpty())
        return;
    m_isFinding = true;
    _say(tr("Looking for the service…"));
    TwitterSiteFinder::findSite(typed,
        KRCallback<TwitterSite>::withFunction(
            [field = QPointer(this), search = ++m_search](const KRResult<TwitterSite>& response) {
                KRRunLoop::main().post([field, search, response] {
                    if (field)
                        field->_siteResponse(response, search);
                });
            }));
}

void PelinorServerField::_siteResponse(const KRResult<TwitterSite>& response, int search)
{
    // Something else was typed meanwhile.
    if (!m_isFinding || search != m_search)
        return;
    m_isFinding = false;
    if (response.isError()) {
        if (!offerToTrust(response.error()))
            _say(response.error().description);
    } else {
        m_site = response.value();
        const QString server = m_site->hosts.server();
        _say(m_site->name.isEmpty() ? tr("Found: %1").arg(server)
                                    : tr("Found: %1 (%2)").arg(m_site->name, server));
    }
    Q_EMIT finished(m_site.has_value());
}
