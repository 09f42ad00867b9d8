#include "app/window/PelinorNoAccountView.h"

#include "app/look/PelinorWindowColors.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int Margin = 24;
constexpr int Spacing = 12;

} // namespace

PelinorNoAccountView::PelinorNoAccountView()
{
    setObjectName(u"noAccountView"_s);
    auto* const text = new QLabel(tr("Nobody is signed in."), this);
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    auto* const button = new QPushButton(tr("Add Account..."), this);
    button->setObjectName(u"addAccountButton"_s);
    button->setAutoDefault(true);
    connect(button, &QPushButton::clicked, this, &PelinorNoAccountView::addAccountClicked);
    setFocusProxy(button);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(Margin, Margin, Margin, Margin);
    layout->setSpacing(Spacing);
    layout->addStretch();
    layout->addWidget(text);
    layout->addWidget(button, 0, Qt::AlignHCenter);
    layout->addStretch();
}

void PelinorNoAccountView::paintEvent(QPaintEvent* /*event*/)
{
    QPainter(this).fillRect(rect(), PelinorWindowColors::forPalette(palette()).screen);
}
