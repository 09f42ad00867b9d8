#pragma once

#include "toolkit/navigation/KRViewController.h"

/// Texts with every kind of active span, to press, walk through and select.
class GalleryTextPage final : public KRViewController {
public:
    void loadView() override;
};
