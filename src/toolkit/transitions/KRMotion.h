#pragma once

/// Whether screens move when one replaces another. Two have a say: the program, with a flag of its own, and
/// the desktop, whose users may wish for reduced motion. Where there is no motion everything else about a
/// switch stays as it is. For the whole process; main thread.
class KRMotion {
public:
    [[nodiscard]] static bool isEnabled() { return s_isEnabledByProgram && !s_isReducedByDesktop; }

    static void setEnabledByProgram(bool isEnabled) { s_isEnabledByProgram = isEnabled; }
    static void setReducedByDesktop(bool isReduced) { s_isReducedByDesktop = isReduced; }

private:
    static inline bool s_isEnabledByProgram = true;
    static inline bool s_isReducedByDesktop = false;
};
