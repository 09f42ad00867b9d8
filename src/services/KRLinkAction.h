#pragma once

#include <QString>
#include <QUrl>

class TwitterServiceHosts;

/// What a click on an active span, or a link to be opened, comes to. A value; finding it has no effects.
/// Any thread.
struct KRLinkAction {
    enum class Kind {
        Nothing,
        Beep,
        /// The picture at `url`; `text` is the link that led there.
        ShowPicture,
        /// The movie at `url`.
        PlayMovie,
        /// Find out where the short link `text` leads before anything is opened.
        PreviewShortLink,
        /// Give `url` to the desktop.
        Open,
        /// The same, once the user has seen the full address and agreed: its scheme is none of the web's.
        OpenWhenUserAgrees,
        /// `text`, with its "#" or "$".
        Search,
        /// The user of the name `text`.
        ShowUser,
        /// The post of the ID `text`, or the page at `url` if that is not to be had.
        ShowStatus,
        /// A new mail, to the address in `url`.
        Mail,
    };

    Kind kind = Kind::Nothing;
    QString text = {};
    QUrl url = {};

    bool operator==(const KRLinkAction&) const = default;
};

enum class KRShortLinkPreview { Off, On };

/// The user default that turns previews of short links on.
inline constexpr char PreviewShortURLsDefaultsKey[] = "PreviewShortURLs";

/// What a click on a span means. The type is that of KRAdditions::activeStringType(), a user name comes
/// without its "@".
[[nodiscard]] KRLinkAction KRActionForActiveString(const TwitterServiceHosts& hosts,
    const QString& text,
    int type,
    KRShortLinkPreview preview);
/// What opening a web link means: the preview of a short one, if there are any, or the link itself. A null
/// text is nothing.
[[nodiscard]] KRLinkAction
KRActionForURLString(const TwitterServiceHosts& hosts, const QString& urlString, KRShortLinkPreview preview);
/// What opening the link itself means. A text that is no address is percent-escaped (escapes that it has
/// stay); one that does not become a full address even so is nothing.
[[nodiscard]] KRLinkAction KRActionForOpening(const QString& urlString);
