#include "GalleryTextPage.h"

#include "GalleryLook.h"
#include "text/render/KRActiveTextStyle.h"
#include "text/render/KRColorConversion.h"
#include "toolkit/KRActiveTextView.h"

#include <QLabel>
#include <QVBoxLayout>

namespace {

QLabel* label(const QString& text, const QFont& font, const QColor& color)
{
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setFont(font);
    QPalette colors = label->palette();
    colors.setColor(QPalette::WindowText, color);
    label->setPalette(colors);
    return label;
}

KRActiveTextView* textView(const QString& text, KRStatusTextSize size, const GalleryLook& look)
{
    KRActiveTextStyle style;
    style.colors.links = KRColorFromQColor(look.accent);
    style.colors.usernames = style.colors.links;
    style.colors.stockSymbols = style.colors.links;
    style.colors.hashtags = KRColorFromQColor(look.secondaryText);
    auto* const view = new KRActiveTextView;
    const KRActiveTextRanges ranges(text);
    view->setAttributedString(AttributedStringForStatus(text, ranges, size, style), ranges);
    return view;
}

} // namespace

void GalleryTextPage::loadView()
{
    auto view = std::make_unique<QWidget>();
    view->setAutoFillBackground(true);
    const GalleryLook& look = GalleryLook::forPalette(view->palette());
    auto* const layout = new QVBoxLayout(view.get());
    layout->setContentsMargins(32, 24, 32, 24);
    layout->setSpacing(4);
    auto* const clicked
        = label(QStringLiteral("Nothing was clicked yet."), GalleryLook::font(10), look.secondaryText);
    const struct {
        QString title;
        QString text;
        KRStatusTextSize size = KRStatusTextSize::Normal;
    } examples[] = {
        { QStringLiteral("Every kind of span"),
            QStringLiteral("A link, https://example.org/tides?day=9#noon, a bare www.example.org, a tag, "
                           "#harbour, a name, @marion, a symbol, $FISH, and an address, pilot@example.org."),
            KRStatusTextSize::Enlarged },
        { QStringLiteral("Spans that wrap"),
            QStringLiteral(
                "The tide tables of the whole coast are at "
                "https://example.org/coast/north/harbours/tables/of/the/year/and/of/the/next/one/"
                "with/every/hour/of/every/day.html, says @harbour_office_news, who ought to know.") },
        { QStringLiteral("From right to left"),
            QStringLiteral("الأبجدية العربية تُكتب من اليمين إلى اليسار، كما يقول @marion في "
                           "https://example.org/a/ عن #المدّ والجزر.") },
        { QStringLiteral("Both directions"),
            QStringLiteral("The sign reads שלום וברכה in white paint, #תמונה by @noa.") },
        { QStringLiteral("Other scripts"),
            QStringLiteral("潮が満ちるまで、浜辺でひと休みする。🌊 #潮汐 @ken "
                           "👩‍👩‍👧") },
    };
    for (const auto& [title, text, size] : examples) {
        if (layout->count() > 0)
            layout->addSpacing(18);
        layout->addWidget(label(title, GalleryLook::font(10, true), look.text));
        KRActiveTextView* const example = textView(text, size, look);
        example->setClickHandler([clicked](const QString& span, KRActiveStringType type) {
            clicked->setText(QStringLiteral("Clicked “%1”, a span of kind %2.").arg(span).arg(type));
        });
        layout->addWidget(example);
    }
    layout->addSpacing(18);
    layout->addWidget(clicked);
    layout->addStretch();
    setView(std::move(view));
}

void GalleryTextPage::focusSpan(int number)
{
    if (auto* const tracker = view()->findChild<KRActiveTextTracker*>())
        tracker->focusSpan(number);
}
