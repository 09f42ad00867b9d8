#pragma once

/// Whether the user of this desktop wishes for more contrast: text in black or white, lines that are seen. For
/// the whole process; main thread.
class PelinorContrast {
public:
    [[nodiscard]] static bool isRaised() { return s_isRaised; }
    static void setRaised(bool isRaised) { s_isRaised = isRaised; }

private:
    static inline bool s_isRaised = false;
};
