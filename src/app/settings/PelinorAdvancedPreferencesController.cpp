#include "app/settings/PelinorAdvancedPreferencesController.h"

#include "api/TwitterServiceHosts.h"
#include "app/settings/PelinorHotKeyField.h"
#include "foundation/KRUserDefaults.h"
#include "services/KRImageService.h"
#include "services/URLShorteningService.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

using Services = QList<std::pair<QString, int>>;
// An item that leaves the choice open.
constexpr int NoChoice = -1;

QComboBox*
makeServiceBox(KRUserDefaults& defaults, const char* key, const Services& services, QWidget* parent)
{
    auto* const box = new QComboBox(parent);
    box->setObjectName(QLatin1String(key));
    for (const auto& [name, value] : services)
        box->addItem(name, value);
    const int chosen = defaults.contains(key) ? int(defaults.integerForKey(key)) : NoChoice;
    box->setCurrentIndex(std::max(0, box->findData(chosen)));
    QObject::connect(box, &QComboBox::activated, box, [&defaults, box, key] {
        if (box->currentData().toInt() == NoChoice)
            defaults.removeObjectForKey(key);
        else
            defaults.setInteger(key, box->currentData().toInt());
    });
    return box;
}

QLineEdit* makeTextField(KRUserDefaults& defaults, const QString& key, QWidget* parent)
{
    auto* const field = new QLineEdit(defaults.stringForKey(key), parent);
    field->setObjectName(key);
    QObject::connect(field, &QLineEdit::editingFinished, field, [&defaults, field, key] {
        const QString text = field->text().trimmed();
        if (text.isEmpty())
            defaults.removeObjectForKey(key);
        else
            defaults.setString(key, text);
    });
    return field;
}

} // namespace

PelinorAdvancedPreferencesController::PelinorAdvancedPreferencesController(KRUserDefaults& defaults,
    PelinorHotKeys& hotKeys,
    QWidget* parent)
    : QWidget(parent)
    , m_defaults(defaults)
{
    auto* const layout = new QFormLayout(this);
    if (KRHotKeys::areAvailable()) {
        layout->addRow(tr("Key to show or &hide Pelinor:"),
            new PelinorHotKeyField(hotKeys, PelinorHotKeys::ShowHidePelinor, this));
        layout->addRow(tr("Key for a &new tweet:"),
            new PelinorHotKeyField(hotKeys, PelinorHotKeys::NewTweet, this));
    }
    auto* const item = new QCheckBox(tr("Show an &icon in the status area"), this);
    item->setObjectName(u"DisableMenuItem"_s);
    item->setChecked(!defaults.boolForKey("DisableMenuItem"));
    connect(item, &QCheckBox::toggled, this, [this](bool isShown) {
        m_defaults.setInteger("DisableMenuItem", isShown ? 0 : 1);
    });
    layout->addRow(QString(), item);
    layout->addRow(tr("&Shorten links with:"),
        makeServiceBox(defaults,
            URLShorteningServicePreferredServiceDefaultsKey,
            { { u"bit.ly"_s, URLShorteningServiceBitly },
                { u"TinyURL"_s, URLShorteningServiceTinyURL },
                { u"is.gd"_s, URLShorteningServiceIsGd },
                { u"tr.im"_s, URLShorteningServiceTrIm },
                { u"DiggBar"_s, URLShorteningServiceDiggBar } },
            this));
    layout->addRow(tr("&Upload pictures to:"),
        makeServiceBox(defaults,
            ImageServicePreferredServiceDefaultsKey,
            { { tr("The account's site, else yFrog"), NoChoice },
                { tr("The account's site"), KRImageServiceSite },
                { u"yFrog"_s, KRImageServiceYFrog },
                { u"TwitPic"_s, KRImageServiceTwitPic },
                { u"Twitgoo"_s, KRImageServiceTwitgoo },
                { u"Posterous"_s, KRImageServicePosterous },
                { u"img.ly"_s, KRImageServiceImgLy },
                { u"pix.im"_s, KRImageServicePixIm } },
            this));

    const QString group = QLatin1String(TwitterServiceHosts::group) + u'/';
    layout->addRow(tr("&Service's address:"),
        makeTextField(defaults, group + QLatin1String(TwitterServiceHosts::RESTHostKey), this));
    layout->addRow(tr("Address for s&earches:"),
        makeTextField(defaults, group + QLatin1String(TwitterServiceHosts::searchHostKey), this));
    layout->addRow(tr("Address of its &pages:"),
        makeTextField(defaults, group + QLatin1String(TwitterServiceHosts::webHostKey), this));

    QLineEdit* const authority = makeTextField(defaults, u"ExtraCAFile"_s, this);
    auto* const choose = new QPushButton(tr("Choose..."), this);
    connect(choose, &QPushButton::clicked, this, [this, authority] {
        const QString file = QFileDialog::getOpenFileName(this, tr("Certificate authorities to trust"));
        if (file.isEmpty())
            return;
        authority->setText(file);
        m_defaults.setString("ExtraCAFile", file);
    });
    auto* const row = new QHBoxLayout;
    row->addWidget(authority, 1);
    row->addWidget(choose);
    auto* const trust = new QLabel(tr("Also &trust:"), this);
    trust->setBuddy(authority);
    layout->addRow(trust, row);
    auto* const note
        = new QLabel(tr("The icon, addresses and certificates count from the next start."), this);
    layout->addRow(note);
}

PelinorAdvancedPreferencesController::~PelinorAdvancedPreferencesController() = default;
