#pragma once

#include "toolkit/navigation/KRViewController.h"

/// Text.
class GalleryTextPage final : public KRViewController {
public:
    void loadView() override;
};
