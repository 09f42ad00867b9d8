#pragma once

/// Makes tables and their rows known to assistive technology as lists and list items, with the names their
/// views were given. Once for the program; later calls do nothing. Main thread.
void KRInstallTableViewAccessibility();
