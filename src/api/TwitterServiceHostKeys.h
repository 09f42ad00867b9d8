#pragma once

/// The keys of the outside services in TwitterServiceHosts. "API" is where requests go, "Link" what the links
/// begin with that people post.
namespace TwitterServiceHostKeys {

// Shortening and expanding links.
inline constexpr char BitlyAPIHost[] = "BitlyAPIHost";
inline constexpr char TinyURLAPIHost[] = "TinyURLAPIHost";
inline constexpr char IsGdAPIHost[] = "IsGdAPIHost";
inline constexpr char TrImAPIHost[] = "TrImAPIHost";
inline constexpr char DiggBarAPIHost[] = "DiggBarAPIHost";
inline constexpr char LongURLAPIHost[] = "LongURLAPIHost";
inline constexpr char ExpansionAPIHost[] = "ExpansionAPIHost";
inline constexpr char BitlyLinkHost[] = "BitlyLinkHost";
inline constexpr char TinyURLLinkHost[] = "TinyURLLinkHost";
inline constexpr char IsGdLinkHost[] = "IsGdLinkHost";
inline constexpr char TrImLinkHost[] = "TrImLinkHost";
// Links that are recognised as short and never made.
inline constexpr char OtherShort1LinkHost[] = "OtherShort1LinkHost";
inline constexpr char OtherShort2LinkHost[] = "OtherShort2LinkHost";
inline constexpr char OtherShort3LinkHost[] = "OtherShort3LinkHost";
inline constexpr char OtherShort4LinkHost[] = "OtherShort4LinkHost";

// Pictures and movies.
inline constexpr char TwitPicAPIHost[] = "TwitPicAPIHost";
inline constexpr char YFrogAPIHost[] = "YFrogAPIHost";
inline constexpr char TwitgooAPIHost[] = "TwitgooAPIHost";
inline constexpr char PosterousAPIHost[] = "PosterousAPIHost";
inline constexpr char ImgLyAPIHost[] = "ImgLyAPIHost";
inline constexpr char PixImAPIHost[] = "PixImAPIHost";
inline constexpr char TwitPicLinkHost[] = "TwitPicLinkHost";
inline constexpr char YFrogLinkHost[] = "YFrogLinkHost";
inline constexpr char YFrogSecondLinkHost[] = "YFrogSecondLinkHost";
inline constexpr char TwitgooLinkHost[] = "TwitgooLinkHost";
inline constexpr char ImgLyLinkHost[] = "ImgLyLinkHost";
inline constexpr char PixImLinkHost[] = "PixImLinkHost";

// Long posts and short wordings.
inline constexpr char TwitlongerAPIHost[] = "TwitlongerAPIHost";
inline constexpr char TweetshrinkAPIHost[] = "TweetshrinkAPIHost";

} // namespace TwitterServiceHostKeys
