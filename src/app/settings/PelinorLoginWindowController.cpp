#include "app/settings/PelinorLoginWindowController.h"

#include "app/look/PelinorAlert.h"
#include "app/look/PelinorImages.h"
#include "app/settings/PelinorServerField.h"
#include "platform/workspace/KRWorkspace.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/transitions/KRWindowAppearance.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

using namespace Qt::StringLiterals;

namespace {

constexpr int AppearanceSteps = 40;
constexpr int IconSide = 48;
constexpr int HeadingSize = 16;
constexpr int Margin = 24;
constexpr int FieldWidth = 240;

} // namespace

PelinorLoginWindowController::PelinorLoginWindowController(Twitter& twitter, KRWorkspace& workspace)
    : m_twitter(twitter)
    , m_workspace(workspace)
    , m_window(std::make_unique<QDialog>())
{
    _loadWindow();
}

PelinorLoginWindowController::~PelinorLoginWindowController() = default;

void PelinorLoginWindowController::_loadWindow()
{
    m_window->setObjectName(u"loginWindow"_s);
    m_window->setWindowTitle(tr("Login"));
    auto* const heading = new QLabel(tr("Welcome to Pelinor"), m_window.get());
    QFont font = KRMessageFont(HeadingSize);
    font.setWeight(QFont::DemiBold);
    heading->setFont(font);
    m_serverField = new PelinorServerField(m_twitter, m_window.get());
    m_usernameField = new QLineEdit(m_window.get());
    m_usernameField->setObjectName(u"usernameField"_s);
    m_usernameField->setMinimumWidth(FieldWidth);
    m_passwordField = new QLineEdit(m_window.get());
    m_passwordField->setObjectName(u"passwordField"_s);
    m_passwordField->setEchoMode(QLineEdit::Password);
    m_progress = new QLabel(m_window.get());
    m_progress->setObjectName(u"progress"_s);

    auto* const buttons
        = new QDialogButtonBox(QDialogButtonBox::Cancel | QDialogButtonBox::Help, m_window.get());
    m_loginButton = buttons->addButton(tr("Login"), QDialogButtonBox::AcceptRole);
    m_loginButton->setObjectName(u"loginButton"_s);
    m_loginButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &PelinorLoginWindowController::login);
    connect(buttons, &QDialogButtonBox::helpRequested, this, &PelinorLoginWindowController::help);
    connect(m_window.get(), &QDialog::rejected, this, &PelinorLoginWindowController::cancel);
    connect(buttons, &QDialogButtonBox::rejected, m_window.get(), &QDialog::reject);

    auto* const layout = new QFormLayout(m_window.get());
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    auto* const picture = new QLabel(m_window.get());
    picture->setPixmap(PelinorImages::icon(u"Pelinor"_s, Qt::black).pixmap(IconSide, IconSide));
    auto* const top = new QHBoxLayout;
    top->setContentsMargins(0, 0, 0, Margin / 2);
    top->addWidget(picture);
    top->addWidget(heading, 1);
    layout->addRow(top);
    layout->addRow(tr("&Server:"), m_serverField);
    layout->addRow(tr("&User name:"), m_usernameField);
    layout->addRow(tr("&Password:"), m_passwordField);
    layout->addRow(m_progress);
    layout->addRow(buttons);
}

void PelinorLoginWindowController::showWindow()
{
    m_window->setWindowModality(Qt::ApplicationModal);
    m_window->adjustSize();
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    KRWindowAppearance::showWindow(*m_window, { screen.center().x(), screen.top() }, AppearanceSteps);
    if (m_twitter.servers().isEmpty())
        m_serverField->setFocus();
    else
        m_usernameField->setFocus();
}

void PelinorLoginWindowController::login()
{
    if (PelinorCredentialsCheck::isMailAddress(m_usernameField->text())) {
        _showSheet(tr("Please Login with your Twitter username, not your email address."),
            tr("You cannot login with your email address."));
        return;
    }
    if (m_usernameField->text().trimmed().isEmpty()) {
        m_usernameField->setFocus();
        return;
    }
    const std::optional<TwitterAccountContext> site = m_serverField->context();
    if (!site) {
        // What is there is shown before a password goes to it.
        const auto hint = [this](bool isFound) {
            m_progress->setText(isFound ? tr("Press Login again to sign in there.") : QString());
        };
        connect(m_serverField,
            &PelinorServerField::finished,
            m_progress,
            hint,
            Qt::ConnectionType(Qt::SingleShotConnection));
        m_serverField->setFocus();
        m_serverField->find();
        return;
    }
    _setProgress(true);
    m_check.verifyCredentials(m_usernameField->text().trimmed(),
        m_passwordField->text(),
        *site,
        [this](const auto& response) { _didVerifyCredentials(response); });
}

void PelinorLoginWindowController::_didVerifyCredentials(const KRResult<TwitterAccountPtr>& response)
{
    _setProgress(false);
    if (response.isError()) {
        if (!m_serverField->offerToTrust(response.error()))
            _showSheet(tr("Error"), response.error().description);
        return;
    }
    m_window->hide();
    if (m_responseCallback)
        m_responseCallback(response.value());
}

void PelinorLoginWindowController::cancel()
{
    m_check.cancel();
    QCoreApplication::quit();
}

void PelinorLoginWindowController::help()
{
    QMessageBox* const sheet = PelinorMakeAlert(QMessageBox::Information,
        tr("Login to Twitter"),
        tr("Enter your Twitter user name and password to log in with Pelinor. If you have no account yet, "
           "you can make one for free at the service's web site."),
        m_window.get());
    sheet->addButton(QMessageBox::Ok);
    const std::optional<TwitterAccountContext> site = m_serverField->context();
    const QString page = site ? site->hosts.webRoot() : QString();
    QPushButton* const signUp = sheet->addButton(tr("Sign up..."), QMessageBox::ActionRole);
    signUp->setEnabled(!page.isEmpty());
    connect(signUp, &QPushButton::clicked, this, [this, page] {
        m_workspace.openURL(QUrl(page), KRWorkspace::Launch::Normal);
    });
    sheet->open();
}

void PelinorLoginWindowController::_setProgress(bool isRunning)
{
    m_serverField->setEnabled(!isRunning);
    m_usernameField->setEnabled(!isRunning);
    m_passwordField->setEnabled(!isRunning);
    m_loginButton->setEnabled(!isRunning);
    m_progress->setText(isRunning ? tr("Logging in…") : QString());
    if (!isRunning) {
        m_passwordField->setFocus();
        m_passwordField->selectAll();
    }
}

void PelinorLoginWindowController::_showSheet(const QString& title, const QString& text)
{
    PelinorShowAlert(QMessageBox::Critical, title, text, m_window.get());
}
