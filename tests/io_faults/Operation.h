// What a host does to the store, and which changes that makes. Faults are put into each.
#pragma once

#include "component/host/ITslPluginDb.h"
#include "tests/io_faults/StoreState.h"

namespace tsl::test {

struct Operation {
    std::string name;
    std::function<HRESULT()> run;
    // In the order in which they are committed.
    std::vector<Step> steps;
};

// The user whom commands without one mean under log kind 1, and another.
inline constexpr UINT32 kImpliedUser = 1;
inline constexpr UINT32 kOtherUser = 7;

// Notify: an action with parameters that tell its id. Success says that it is in the replay log,
// and no more: the statuses of the writes before that are not reported.
HRESULT Record(ITslPluginDb2& plugin, UINT32 id, const wchar_t* name, UINT32 user,
               size_t extraLetters = 0);
// Whether the record is handed out by its id.
bool IsHandedOut(ITslPluginDb2& plugin, UINT32 id);

// Extra letters that make an action take several pages.
inline constexpr size_t kLongText = 6000;

// An action goes to the action log and to the replay log. A long one takes several pages.
Operation Recording(ITslPluginDb2& plugin, UINT32 id, size_t extraLetters = 0);
// It is also kept to be taken.
Operation RecordingADeleteAction(ITslPluginDb2& plugin, UINT32 id);
// It first deletes the records of its user.
Operation UserReset(ITslPluginDb2& plugin, UINT32 id);
// Its id is a multiple of 100, and the replay log has too many records of its user.
Operation ReplayTrim(ITslPluginDb2& plugin, UINT32 id);

Operation DeletingOne(ITslPluginDb2& plugin, UINT32 id);
Operation DeletingIds(ITslPluginDb2& plugin, UINT32 first, UINT32 last);
Operation DeletingTimes(ITslPluginDb2& plugin);
Operation Taking(ITslPluginDb2& plugin, UINT32 id);

// Queries change nothing. Their answer is the whole one or none.
Operation QueryingTimes(ITslPluginDb2& plugin);
Operation QueryingIds(ITslPluginDb2& plugin);
Operation QueryingAllIds(ITslPluginDb2& plugin);
Operation FetchingRecords(ITslPluginDb2& plugin, std::initializer_list<ULONG> ids);

} // namespace tsl::test
