// The names of the actions that are more than recorded. Hosts send them: not to be changed.
#pragma once

namespace tsl {

inline constexpr wchar_t kActionUserLocation[] = L"userLocation";
inline constexpr wchar_t kActionExternalLog[] = L"externalApplicationLog";
inline constexpr wchar_t kActionDeleteItem[] = L"deleteItem";
inline constexpr wchar_t kActionAutoDeleteItem[] = L"autoDeleteItem";
inline constexpr wchar_t kActionSettingReset[] = L"veSettingReset";
inline constexpr wchar_t kActionMoveContent[] = L"viaMoveContent";
inline constexpr wchar_t kActionExternalLink[] = L"showExternalLink";
inline constexpr wchar_t kActionExternalLinkForTv[] = L"showExternalLinkForTv";
inline constexpr wchar_t kActionExternalLinkForMusic[] = L"showExternalLinkForMusic";
inline constexpr wchar_t kActionExternalLinkForSns[] = L"showExternalLinkForSns";
inline constexpr wchar_t kActionPlayItem[] = L"playItem";
inline constexpr wchar_t kActionSkipForward[] = L"skipForwardItem";
inline constexpr wchar_t kActionFavoriteTweet[] = L"registerFavoriteTweet";
inline constexpr wchar_t kActionTweet[] = L"tweet";

} // namespace tsl
