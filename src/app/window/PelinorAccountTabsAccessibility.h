#pragma once

class PelinorAccountTabsView;

/// Lets assistive technology see the column as a list of tabs, accounts and their tabs alike. Once for the
/// process.
void PelinorInstallAccountTabsAccessibility();

/// Tells that another place is selected, and that the column reads differently now.
void PelinorAnnounceAccountTabSelection(PelinorAccountTabsView& view);
