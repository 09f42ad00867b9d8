#pragma once

#include "toolkit/navigation/KRViewController.h"

/// Stretchable images at sizes of all kinds, and gradients.
class GalleryImagesPage final : public KRViewController {
public:
    void loadView() override;
};
