#pragma once

#include "toolkit/navigation/KRViewController.h"

/// Texts with spans of every kind that can be reached and clicked, in several scripts.
class GalleryTextPage final : public KRViewController {
public:
    void loadView() override;
    /// The one of that number in the first text.
    void focusSpan(int number);
};
