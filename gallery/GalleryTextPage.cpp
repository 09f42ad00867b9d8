#include "GalleryTextPage.h"

#include "GalleryLook.h"
#include "text/render/KRActiveTextStyle.h"
#include "text/render/KRColorConversion.h"
#include "toolkit/KRActiveTextView.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int Margin = 32;
constexpr int WidestText = 640;

QString kindOf(KRActiveStringType type)
{
    switch (type) {
    case KRActiveStringTypeLink:
        return QStringLiteral("link");
    case KRActiveStringTypeHashtag:
        return QStringLiteral("hashtag");
    case KRActiveStringTypeUsername:
        return QStringLiteral("name");
    case KRActiveStringTypeStockSymbol:
        return QStringLiteral("symbol");
    case KRActiveStringTypeEmailAddress:
        return QStringLiteral("mail address");
    case KRActiveStringTypeNone:
        break;
    }
    return QStringLiteral("text");
}

// What each paragraph is there for, and its text.
struct Paragraph {
    const char16_t* title;
    const char16_t* text;
};
constexpr Paragraph paragraphs[] = {
    { u"Every kind of span",
        u"@marion has put the tide tables at http://example.org/tides?month=11, the notes for $HRBR go to "
        u"harbour@example.org, and everything else is under #harbour." },
    { u"Spans across lines, brackets and full stops",
        u"A long one: "
        u"https://en.example.org/a/path/that/goes/on/and/on/until/the/end/of/the/line/and/over/it/"
        u"Lighthouse_(tower), then www.example.net. And (@tomas)." },
    { u"From right to left",
        u"صباح الخير @marion، جدول المد هنا http://example.org/tides وكل شيء آخر تحت #ميناء "
        u"☀️" },
    { u"Both at once", u"המעבורת של @tomas_w יוצאת בשמונה, פרטים: http://example.org/ferry?id=8 #נמל" },
    { u"Without spaces, and beyond the first plane",
        u"今朝の港 http://example.org/朝 はとても静か 🌊👩‍👩‍👧 #朝 @ken" },
    { u"Nothing to press", u"Plain words can be selected all the same." },
};

class TextView final : public QWidget {
public:
    TextView()
        : m_layout(new QVBoxLayout(this))
        , m_pressed(new QLabel(
              QStringLiteral("Press a span, or walk them with Tab; select with the mouse or Shift.")))
    {
        setAutoFillBackground(true);
        m_layout->setContentsMargins(Margin, 28, Margin, 28);
        m_layout->setSpacing(4);
        auto* const heading = new QLabel(QStringLiteral("Text"));
        heading->setFont(GalleryLook::font(20, true));
        m_layout->addWidget(heading);
        m_pressed->setTextFormat(Qt::PlainText);
        m_pressed->setWordWrap(true);
        m_pressed->setFont(GalleryLook::font(10));
        m_layout->addWidget(m_pressed);
        for (const Paragraph& paragraph : paragraphs)
            _add(paragraph);
        m_layout->addStretch();
        _style();
    }

protected:
    void changeEvent(QEvent* event) override
    {
        QWidget::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            _style();
    }

private:
    void _add(const Paragraph& paragraph)
    {
        auto* const title = new QLabel(QString::fromUtf16(paragraph.title));
        title->setFont(GalleryLook::font(9, true));
        title->setContentsMargins(0, 18, 0, 0);
        auto* const view = new KRActiveTextView;
        view->setMaximumWidth(WidestText);
        view->setAccessibleName(title->text());
        view->setClickHandler([this](const QString& text, KRActiveStringType type) {
            m_pressed->setText(QStringLiteral("Pressed the %1 %2").arg(kindOf(type), text));
        });
        m_layout->addWidget(title);
        m_layout->addWidget(view);
        m_titles.append(title);
        m_views.append(view);
    }

    void _style()
    {
        const GalleryLook& look = GalleryLook::forPalette(palette());
        const KRColor accent = KRColorFromQColor(look.accent);
        const KRActiveTextStyle style { 0,
            { accent, KRColorFromQColor(look.secondaryText), accent, accent } };
        for (qsizetype index = 0; index < m_views.size(); ++index) {
            const QString text = QString::fromUtf16(paragraphs[index].text);
            const KRActiveTextRanges ranges(text);
            m_views[index]->setAttributedString(
                AttributedStringForStatus(text, ranges, KRStatusTextSize::Normal, style),
                ranges);
        }
        QPalette secondary = palette();
        secondary.setColor(QPalette::WindowText, look.secondaryText);
        for (QLabel* const title : m_titles)
            title->setPalette(secondary);
    }

    QVBoxLayout* m_layout;
    QLabel* m_pressed;
    QList<QLabel*> m_titles;
    QList<KRActiveTextView*> m_views;
};

} // namespace

void GalleryTextPage::loadView()
{
    setView(std::make_unique<TextView>());
}
