#include "app/people/PelinorUserHeaderView.h"

#include "app/look/PelinorCellColors.h"
#include "app/look/PelinorProfileImage.h"
#include "app/people/PelinorUserDetails.h"
#include "text/KRActiveTextRanges.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/KRActiveTextView.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace {

constexpr int NameSize = 14;
constexpr int TextSize = 11;
constexpr int PictureSide = 72;
// What a name may take of the time for measuring it.
constexpr qsizetype LongestLine = 500;

QString count(const std::optional<qint32>& number, const QString& what)
{
    return number ? u"%1 %2"_s.arg(QLocale().toString(*number), what) : QString();
}

} // namespace

// One line of what comes from the network: the end that finds no room is left out, not the window widened.
class PelinorUserHeaderView::Line final : public QLabel {
public:
    Line(const QString& name, int size, QWidget* parent)
        : QLabel(parent)
    {
        setObjectName(name);
        setTextFormat(Qt::PlainText);
        setTextInteractionFlags(Qt::TextSelectableByMouse);
        setFont(KRMessageFont(size));
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        // Beside the picture in whatever direction the words run.
        setAlignment((parent->isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute
            | Qt::AlignVCenter);
    }
    void setLine(const QString& text)
    {
        m_line = text.simplified().left(LongestLine);
        setToolTip(m_line.toHtmlEscaped());
        setAccessibleName(m_line);
        setMinimumHeight(fontMetrics().lineSpacing());
        _elide();
    }

protected:
    void resizeEvent(QResizeEvent* event) override
    {
        QLabel::resizeEvent(event);
        _elide();
    }

private:
    void _elide() { setText(fontMetrics().elidedText(m_line, Qt::ElideRight, width())); }

    QString m_line;
};

class PelinorUserHeaderView::Picture final : public QWidget {
public:
    explicit Picture(QWidget* parent)
        : QWidget(parent)
    {
        setFixedSize(PictureSide, PictureSide);
    }
    void setImage(const TwitterProfileImagePtr& image)
    {
        m_image = image;
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        PelinorProfileImage::draw(painter, rect(), m_image, PelinorCellColors::forPalette(palette()));
    }

private:
    TwitterProfileImagePtr m_image;
};

PelinorUserHeaderView::PelinorUserHeaderView(QWidget* parent)
    : QWidget(parent)
    , m_picture(new Picture(this))
    , m_fullName(new Line(u"fullName"_s, NameSize, this))
    , m_username(new Line(u"username"_s, TextSize, this))
    , m_counts(new Line(u"counts"_s, TextSize, this))
    , m_bio(new KRActiveTextView(this))
    , m_homePage(new QPushButton(this))
    , m_state(new Line(u"state"_s, TextSize, this))
    , m_retryButton(new QPushButton(tr("Try Again"), this))
    , m_followButton(new QPushButton(this))
    , m_mentionButton(new QPushButton(tr("Mention"), this))
    , m_messageButton(new QPushButton(tr("Message"), this))
{
    QFont bold = m_fullName->font();
    bold.setWeight(QFont::DemiBold);
    m_fullName->setFont(bold);
    m_bio->setObjectName(u"bio"_s);
    m_homePage->setObjectName(u"homePage"_s);
    m_homePage->setFlat(true);
    m_homePage->setCursor(Qt::PointingHandCursor);
    m_retryButton->setObjectName(u"retryButton"_s);
    m_followButton->setObjectName(u"followButton"_s);
    m_mentionButton->setObjectName(u"mentionButton"_s);
    m_messageButton->setObjectName(u"messageButton"_s);
    connect(m_followButton, &QPushButton::clicked, this, &PelinorUserHeaderView::followClicked);
    connect(m_retryButton, &QPushButton::clicked, this, &PelinorUserHeaderView::retryClicked);
    connect(m_mentionButton, &QPushButton::clicked, this, &PelinorUserHeaderView::mentionClicked);
    connect(m_messageButton, &QPushButton::clicked, this, &PelinorUserHeaderView::directMessageClicked);
    connect(m_homePage, &QPushButton::clicked, this, &PelinorUserHeaderView::homePageClicked);

    auto* const names = new QVBoxLayout;
    names->setSpacing(2);
    names->addWidget(m_fullName);
    names->addWidget(m_username);
    names->addWidget(m_counts);
    names->addStretch();
    auto* const top = new QHBoxLayout;
    top->setSpacing(12);
    top->addWidget(m_picture, 0, Qt::AlignTop);
    top->addLayout(names, 1);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(m_retryButton);
    buttons->addWidget(m_followButton);
    buttons->addWidget(m_mentionButton);
    buttons->addWidget(m_messageButton);
    buttons->addWidget(m_state, 1);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 12, 14, 12);
    layout->addLayout(top);
    layout->addWidget(m_bio);
    layout->addWidget(m_homePage, 0, Qt::AlignLeading);
    layout->addLayout(buttons);
    _updateColors();
}

PelinorUserHeaderView::~PelinorUserHeaderView() = default;

void PelinorUserHeaderView::setLinkHandler(std::function<void(const QString&, int)> handler)
{
    m_bio->setClickHandler([handler = std::move(handler)](const QString& text, KRActiveStringType type) {
        handler(text, type);
    });
}

void PelinorUserHeaderView::showDetails(const PelinorUserDetails& details, int fontSizePreference)
{
    const TwitterUserPtr& user = details.user();
    m_picture->setImage(user ? user->profileImage() : nullptr);
    const QString name = user ? user->fullName() : details.username();
    m_fullName->setLine(name);
    QStringList line { u'@' + details.username() };
    if (user && !user->location().isEmpty())
        line.append(user->location());
    if (user && user->isProtected().value_or(false))
        line.append(tr("protected"));
    m_username->setLine(line.join(u" · "_s));
    QStringList counts;
    if (!user) {
        counts.append(details.error() ? details.error()->description : tr("Loading…"));
    } else {
        for (const QString& part : { count(user->numberOfStatuses(), tr("posts")),
                 count(user->numberOfFollowing(), tr("following")),
                 count(user->numberOfFollowers(), tr("followers")) }) {
            if (!part.isEmpty())
                counts.append(part);
        }
    }
    m_counts->setLine(counts.join(u" · "_s));
    m_retryButton->setVisible(details.error().has_value());

    const QString bio = user ? user->bio() : QString();
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    const KRActiveTextRanges ranges(bio);
    m_bio->setAttributedString(AttributedStringForStatus(bio,
                                   ranges,
                                   KRStatusTextSize::Normal,
                                   { fontSizePreference, colors.spans }),
        ranges);
    m_bio->setVisible(!bio.isEmpty());
    const QString address = user ? user->url().toDisplayString() : QString();
    // An address runs from left to right everywhere (LEFT-TO-RIGHT ISOLATE and its end).
    m_homePage->setText(u'\u2066' + fontMetrics().elidedText(address, Qt::ElideMiddle, 320) + u'\u2069');
    m_homePage->setVisible(!address.isEmpty());
    _showFollowing(details);
}

void PelinorUserHeaderView::_showFollowing(const PelinorUserDetails& details)
{
    using Following = PelinorUserDetails::Following;
    const bool isSomebodyElse = details.user() && !details.isMe();
    const Following following = details.following();
    m_followButton->setVisible(isSomebodyElse);
    m_mentionButton->setVisible(isSomebodyElse);
    m_messageButton->setVisible(isSomebodyElse);
    m_followButton->setEnabled(following == Following::Yes || following == Following::No);
    m_followButton->setText(following == Following::Yes ? tr("Unfollow") : tr("Follow"));
    if (details.followError())
        m_state->setLine(details.followError()->description);
    else if (details.isMe())
        m_state->setLine(tr("This is you"));
    else
        m_state->setLine(details.followsMe() ? tr("Follows you") : QString());
}

void PelinorUserHeaderView::_updateColors()
{
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    const auto paint = [](QWidget* widget, QPalette::ColorRole role, const QColor& color) {
        QPalette palette = widget->palette();
        palette.setColor(role, color);
        widget->setPalette(palette);
    };
    paint(m_fullName, QPalette::WindowText, colors.name);
    for (Line* const label : { m_username, m_counts, m_state })
        paint(label, QPalette::WindowText, colors.secondaryText);
    paint(m_homePage, QPalette::ButtonText, colors.selectionMark);
}

void PelinorUserHeaderView::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        _updateColors();
}

void PelinorUserHeaderView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const PelinorCellColors& colors = PelinorCellColors::forPalette(palette());
    painter.fillRect(rect(), colors.background);
    const qreal hairline = 1 / devicePixelRatioF();
    painter.fillRect(QRectF(0, height() - hairline, width(), hairline), colors.separator);
}
