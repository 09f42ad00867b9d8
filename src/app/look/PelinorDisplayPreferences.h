#pragma once

class KRUserDefaults;

/// How the user wants posts to look. The values are those the preferences keep; an absent one is 0.
struct PelinorDisplayPreferences {
    enum DisplayName : int {
        DisplayFullName = 0,
        DisplayUserName = 1,
    };

    /// An index of KRPointSizeForStatusCellFontSizePreference().
    int statusCellFontSize = 0;
    int displayName = DisplayFullName;
    bool dimPreviouslySelectedTweets = false;

    static PelinorDisplayPreferences fromDefaults(const KRUserDefaults& defaults);
};

/// The display preferences have changed. Posted on the main thread.
struct PelinorDisplayPreferencesDidChangeNotification {
    static constexpr char name[] = "PelinorDisplayPreferencesDidChangeNotification";
};
