#pragma once

#include "foundation/KRError.h"

#include <QString>

/// What the window tells in a sheet, and what can be chosen there. All of it is plain text.
struct PelinorSheet {
    enum class Choice {
        /// Goes back to the text.
        None,
        PostWithTwitlonger,
        ShowTimeline,
        Discard,
    };

    QString message = {};
    QString informativeText = {};
    bool isCritical = false;
    /// Goes back to the text, as Escape does.
    QString cancelButton = {};
    /// A second button, where there is a choice.
    QString choiceButton = {};
    Choice choice = Choice::None;
    /// Whether it is the choice that Enter takes.
    bool isChoiceDefault = false;

    /// Without an error when the service answered with nothing.
    [[nodiscard]] static PelinorSheet uploadFailed(const KRError* error);
    [[nodiscard]] static PelinorSheet messageTooLong(qsizetype longest);
    [[nodiscard]] static PelinorSheet longPostFailed();
    [[nodiscard]] static PelinorSheet postFailed(const KRError& error);
    [[nodiscard]] static PelinorSheet messageFailed(const KRError& error);
    [[nodiscard]] static PelinorSheet accountRemoved(const QString& name);
    /// The service may have it, or not; without an error nothing more is known.
    [[nodiscard]] static PelinorSheet postMayHaveGoneOut(const KRError* error);
    [[nodiscard]] static PelinorSheet messageMayHaveGoneOut(const KRError* error);
    [[nodiscard]] static PelinorSheet askToDiscard();
};

/// Whether a post that ended so may be at the service all the same: what was sent got no answer, or none that
/// tells.
[[nodiscard]] bool PelinorMayHaveGoneOut(const KRError& error);
