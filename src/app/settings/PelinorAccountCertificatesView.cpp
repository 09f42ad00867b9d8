#include "app/settings/PelinorAccountCertificatesView.h"

#include "app/settings/PelinorCertificateView.h"
#include "app/settings/PelinorWrappedLabel.h"
#include "foundation/KRRunLoop.h"
#include "transport/KRHTTPRequest.h"

#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

PelinorAccountCertificatesView::PelinorAccountCertificatesView(Twitter& twitter,
    TwitterAccountPtr account,
    QWidget* parent)
    : QWidget(parent)
    , m_twitter(twitter)
    , m_account(std::move(account))
    , m_list(new QVBoxLayout)
    , m_answer(new PelinorWrappedLabel(this))
    , m_checkButton(new QPushButton(tr("Check Certificate"), this))
{
    m_answer->setObjectName(u"certificateAnswer"_s);
    m_checkButton->setObjectName(u"checkCertificateButton"_s);
    m_checkButton->setAutoDefault(false);
    connect(m_checkButton, &QPushButton::clicked, this, &PelinorAccountCertificatesView::check);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addLayout(m_list);
    layout->addWidget(m_answer);
    layout->addWidget(m_checkButton, 0, Qt::AlignLeft);
    _reloadData();
}

PelinorAccountCertificatesView::~PelinorAccountCertificatesView() = default;

PelinorCertificateView& PelinorAccountCertificatesView::_addView()
{
    m_views.push_back(new PelinorCertificateView(this));
    m_list->addWidget(m_views.back());
    return *m_views.back();
}

void PelinorAccountCertificatesView::_say(const QString& text)
{
    m_answer->setText(text);
    m_answer->setVisible(!text.isEmpty());
}

void PelinorAccountCertificatesView::_reloadData()
{
    // It may be the button of one of them that was pressed.
    for (PelinorCertificateView* const view : m_views) {
        view->hide();
        view->deleteLater();
    }
    m_views.clear();
    const QList<KRServerCertificate> certificates = m_account->certificates();
    for (const KRServerCertificate& certificate : certificates) {
        PelinorCertificateView& view = _addView();
        view.showCertificate(certificate,
            tr("You trust this certificate of %1, although nobody known vouches for it. Its SHA-256 "
               "fingerprint:")
                .arg(certificate.serverName()),
            tr("Stop Trusting"));
        connect(&view, &PelinorCertificateView::buttonPressed, this, [this, certificate] {
            m_twitter.stopTrustingCertificateOfServer(certificate.server);
            _reloadData();
        });
    }
    _say(certificates.isEmpty()
            ? tr("The server's certificate has to be one that somebody known vouches for.")
            : QString());
}

void PelinorAccountCertificatesView::check()
{
    const KRResult<QUrl> url = m_account->context().hosts.RESTURLForPath(u"statusnet/config.xml"_s);
    if (url.isError()) {
        _say(url.error().description);
        return;
    }
    m_checkButton->setEnabled(false);
    _reloadData();
    _say(tr("Asking the server…"));
    KRHTTPRequest::GET(url.value(),
        KRCallback<KRHTTPRequest&>::withFunction([view = QPointer(this)](KRHTTPRequest& request) {
            KRRunLoop::main().post([view, error = request.error()] {
                if (view)
                    view->_didCheck(error);
            });
        }));
}

void PelinorAccountCertificatesView::_didCheck(const std::optional<KRError>& error)
{
    m_checkButton->setEnabled(true);
    // Whoever answers with an HTTP error was let in.
    if (!error || error->domain != QStringView(KRHTTPConnectionErrorDomain)) {
        _say(tr("The server shows a certificate that is accepted."));
        return;
    }
    _say(error->description);
    const std::optional<KRServerCertificate> refused = KRServerCertificate::refusedByError(*error);
    // A redirect may lead to a server that the account has nothing to do with.
    if (!refused || !m_account->context().hosts.protectedServers().contains(refused->server))
        return;
    m_answer->hide();
    PelinorCertificateView& view = _addView();
    static_cast<void>(view.showRefusedCertificate(*error));
    connect(&view, &PelinorCertificateView::buttonPressed, this, [this, certificate = view.certificate()] {
        m_twitter.trustCertificate(certificate);
        _reloadData();
        m_account->refresh();
    });
}
