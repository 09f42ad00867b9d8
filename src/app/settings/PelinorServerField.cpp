#include "app/settings/PelinorServerField.h"

#include "api/TwitterSiteFinder.h"
#include "foundation/KRRunLoop.h"

#include <QComboBox>
#include <QLabel>
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
    , m_answer(new QLabel(this))
{
    m_comboBox->setObjectName(u"serverField"_s);
    m_comboBox->setAccessibleName(tr("Server"));
    m_comboBox->setEditable(true);
    m_comboBox->setInsertPolicy(QComboBox::NoInsert);
    m_comboBox->setMinimumWidth(FieldWidth);
    m_comboBox->addItems(twitter.servers());
    m_comboBox->lineEdit()->setPlaceholderText(tr("social.example.org"));
    m_answer->setObjectName(u"serverAnswer"_s);
    // What sites call themselves is up to them.
    m_answer->setTextFormat(Qt::PlainText);
    m_answer->setWordWrap(true);
    setFocusProxy(m_comboBox);
    connect(m_comboBox, &QComboBox::currentTextChanged, this, [this] { _textDidChange(); });
    connect(m_comboBox->lineEdit(), &QLineEdit::editingFinished, this, [this] { find(); });
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_comboBox);
    layout->addWidget(m_answer);
    m_answer->hide();
}

PelinorServerField::~PelinorServerField() = default;

std::optional<TwitterAccountContext> PelinorServerField::context() const
{
    if (m_site)
        return m_twitter.accountContextForSite(*m_site);
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
    _say({});
}

void PelinorServerField::_say(const QString& text)
{
    m_answer->setText(text);
    m_answer->setVisible(!text.isEmpty());
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
            [field = QPointer(this), typed](const KRResult<TwitterSite>& response) {
                KRRunLoop::main().post([field, typed, response] {
                    if (field)
                        field->_siteResponse(response, typed);
                });
            }));
}

void PelinorServerField::_siteResponse(const KRResult<TwitterSite>& response, const QString& typed)
{
    // Something else was typed meanwhile.
    if (!m_isFinding || typed != m_comboBox->currentText())
        return;
    m_isFinding = false;
    if (response.isError()) {
        _say(response.error().description);
    } else {
        m_site = response.value();
        const QString server = m_site->hosts.server();
        _say(m_site->name.isEmpty() ? tr("Found: %1").arg(server)
                                    : tr("Found: %1 (%2)").arg(m_site->name, server));
    }
    Q_EMIT finished(m_site.has_value());
}
