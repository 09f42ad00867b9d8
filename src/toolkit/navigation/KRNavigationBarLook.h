#pragma once

class QPainter;
class QRect;

/// Draws the background of a navigation bar: lighter above its middle, with a step there and a thin dark line
/// at its bottom. The same in light and dark surroundings.
void KRDrawNavigationBar(QPainter& painter, const QRect& rect);
