#pragma once

/// Makes navigation bars, their crumbs and the screens below them known to assistive technology. Once for the
/// program; later calls do nothing. Main thread.
void KRInstallNavigationAccessibility();
