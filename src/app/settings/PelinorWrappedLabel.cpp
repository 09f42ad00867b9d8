#include "app/settings/PelinorWrappedLabel.h"

namespace {

// The lines are counted at this width; there may be fewer at a larger one.
constexpr int LeastWidth = 300;

} // namespace

PelinorWrappedLabel::PelinorWrappedLabel(QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setAlignment(Qt::AlignLeading | Qt::AlignTop);
}

PelinorWrappedLabel::~PelinorWrappedLabel() = default;

QSize PelinorWrappedLabel::sizeHint() const
{
    return minimumSizeHint();
}

QSize PelinorWrappedLabel::minimumSizeHint() const
{
    return { LeastWidth, heightForWidth(LeastWidth) };
}

bool PelinorWrappedLabel::hasHeightForWidth() const
{
    return false;
}
