#include "GalleryTextPage.h"

#include "GalleryLook.h"

#include <QLabel>
#include <QVBoxLayout>

void GalleryTextPage::loadView()
{
    auto view = std::make_unique<QWidget>();
    view->setAutoFillBackground(true);
    auto* const layout = new QVBoxLayout(view.get());
    layout->setContentsMargins(32, 28, 32, 28);
    layout->setSpacing(14);
    const struct {
        QString text;
        QFont font;
    } paragraphs[] = {
        { QStringLiteral("Text"), GalleryLook::font(20, true) },
        { QStringLiteral(
              "The quick brown fox jumps over the lazy dog, and then rests on the beach until the tide "
              "comes in and the fishermen go home."),
            GalleryLook::font(11) },
        { QStringLiteral("الأبجدية العربية تُكتب من اليمين إلى اليسار، وتُعرض هنا كذلك."),
            GalleryLook::font(11) },
        { QStringLiteral("潮が満ちるまで、浜辺でひと休みする。🌊"), GalleryLook::font(11) },
    };
    for (const auto& [text, font] : paragraphs) {
        auto* const label = new QLabel(text);
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        label->setWordWrap(true);
        label->setFont(font);
        layout->addWidget(label);
    }
    layout->addStretch();
    setView(std::move(view));
}
