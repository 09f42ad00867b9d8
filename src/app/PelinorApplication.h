#pragma once

#include "toolkit/KRApplication.h"

/// The program's application object. Main thread.
class PelinorApplication final : public KRApplication {
    Q_OBJECT

public:
    PelinorApplication(int& argc, char** argv);
    ~PelinorApplication() override;
};
