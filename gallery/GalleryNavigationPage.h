#pragma once

#include "toolkit/navigation/KRNavigationController.h"

/// A stack of screens with buttons that push more of them and pop them again.
class GalleryNavigationPage final : public KRNavigationController {
public:
    GalleryNavigationPage();

    /// As deep as asked for, without animation.
    void pushScreens(int count);
    void focusCrumb(int index);
};
