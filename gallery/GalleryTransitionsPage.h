#pragma once

#include "toolkit/navigation/KRViewControllerSwitcher.h"

/// A stage on which two screens replace each other in every way, slowly or quickly.
class GalleryTransitionsPage final : public KRViewController {
public:
    void loadView() override;

    /// A code of KRTransitionCode.
    void play(int code);

private:
    KRViewControllerSwitcher m_switcher;
    KRViewControllerPtr m_next;
};
