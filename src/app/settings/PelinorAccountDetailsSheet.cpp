#include "app/settings/PelinorAccountDetailsSheet.h"

#include "app/settings/PelinorAccountCertificatesView.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>

#include <array>

using namespace Qt::StringLiterals;

PelinorAccountDetailsSheet::PelinorAccountDetailsSheet(Twitter& twitter,
    TwitterAccountPtr account,
    QWidget* parent)
    : QDialog(parent)
    , m_account(std::move(account))
{
    setObjectName(u"accountDetailsSheet"_s);
    setWindowTitle(tr("Account Details"));
    setWindowModality(Qt::WindowModal);
    using Options = std::array<TwitterAccountNotificationOption, 3>;
    struct Kind {
        QString name;
        Options options;
    };
    const std::array<Kind, 3> kinds { {
        { tr("Timeline"),
            { TwitterAccountTimelineStatusItem,
                TwitterAccountTimelineDockBadge,
                TwitterAccountTimelineGrowl } },
        { tr("Mentions"),
            { TwitterAccountMentionsStatusItem,
                TwitterAccountMentionsDockBadge,
                TwitterAccountMentionsGrowl } },
        { tr("Direct Messages"),
            { TwitterAccountMessagesStatusItem,
                TwitterAccountMessagesDockBadge,
                TwitterAccountMessagesGrowl } },
    } };
    const std::array<QString, 3> indicators { tr("Status area"), tr("Badge"), tr("Notification") };

    auto* const layout = new QGridLayout(this);
    auto* const heading
        = new QLabel(tr("What is new for %1 shows in:").arg(m_account->qualifiedName()), this);
    heading->setTextFormat(Qt::PlainText);
    layout->addWidget(heading, 0, 0, 1, 4);
    for (int column = 0; column < 3; ++column)
        layout->addWidget(new QLabel(indicators[size_t(column)], this), 1, column + 1, Qt::AlignHCenter);
    for (int row = 0; row < 3; ++row) {
        const Kind& kind = kinds[size_t(row)];
        layout->addWidget(new QLabel(kind.name, this), row + 2, 0);
        for (int column = 0; column < 3; ++column) {
            const auto option = kind.options[size_t(column)];
            auto* const box = new QCheckBox(this);
            box->setAccessibleName(u"%1: %2"_s.arg(kind.name, indicators[size_t(column)]));
            box->setObjectName(u"option%1"_s.arg(int(option)));
            box->setChecked((m_account->notificationOptions() & option) != 0);
            layout->addWidget(box, row + 2, column + 1, Qt::AlignHCenter);
            m_switches.push_back({ option, box });
        }
    }
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &PelinorAccountDetailsSheet::saveAccountDetails);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(new PelinorAccountCertificatesView(twitter, m_account, this), 5, 0, 1, 4);
    layout->addWidget(buttons, 6, 0, 1, 4);
}

PelinorAccountDetailsSheet::~PelinorAccountDetailsSheet() = default;

void PelinorAccountDetailsSheet::saveAccountDetails()
{
    quint32 options = TwitterAccountNotificationOptionsSet;
    for (const Switch& one : m_switches)
        options |= one.box->isChecked() ? quint32(one.option) : 0;
    m_account->setNotificationOptions(options);
    accept();
}
