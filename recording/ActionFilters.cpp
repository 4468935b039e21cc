#include "recording/ActionFilters.h"

#include <algorithm>
#include <cwchar>

#include "base/Variant.h"
#include "component/host/ParamKeys.h"
#include "recording/ActionNames.h"
#include "store/LogKinds.h"

namespace tsl {

namespace {

struct ExcludedName {
    UINT32 logKind;
    const wchar_t* name;
};

constexpr ExcludedName kExcludedNames[] = {
    {kLogKindOfKeptRecords, kActionExternalLinkForTv},
    {kLogKindOfKeptRecords, kActionExternalLink},
    {kLogKindOfSystemUsers, kActionExternalLinkForMusic},
    {kLogKindOfSystemUsers, kActionExternalLink},
    {kLogKindOfPlaying, kActionPlayItem},
    {kLogKindOfPlaying, kActionSkipForward},
    {kLogKindOfNetworks, kActionExternalLinkForSns},
    {kLogKindOfNetworks, kActionExternalLink},
    {kLogKindOfNetworks, kActionFavoriteTweet},
    {kLogKindOfNetworks, kActionTweet},
};

bool SameName(const std::wstring& name, const wchar_t* known) noexcept {
    return _wcsicmp(name.c_str(), known) == 0;
}

} // namespace

ActionName ReadActionName(ITslParamContainer& container) {
    CVariant value;
    if (container.GetValue(kKeyActionName, value.Address()) != S_OK) return {};
    ActionName name;
    name.changed = TextOf(value.Get()).value_or(std::wstring());
    if (value.Type() == VT_BSTR) name.text = name.changed;
    return name;
}

bool IsDeleteAction(const std::wstring& name) noexcept {
    return SameName(name, kActionDeleteItem) || SameName(name, kActionAutoDeleteItem);
}

bool IsExcludedFromActionLog(const std::wstring& name, UINT32 logKind) noexcept {
    return std::ranges::any_of(kExcludedNames, [&](const ExcludedName& excluded) {
        return excluded.logKind == logKind && SameName(name, excluded.name);
    });
}

bool IsSettingReset(const std::wstring& name) noexcept {
    return SameName(name, kActionSettingReset);
}

bool IsContentMove(const std::wstring& name) noexcept {
    return name == kActionMoveContent;
}

} // namespace tsl
