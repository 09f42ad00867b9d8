#pragma once

class QRect;
class QWidget;

/// Sets the view's geometry and lets it, and all below it, act on the new size now. A hidden widget otherwise
/// hears of its size when it is shown, and a screen is laid out before that. Negative sizes count as none.
void KRSetViewFrame(QWidget& view, const QRect& frame);
