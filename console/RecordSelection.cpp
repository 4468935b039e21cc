#include "console/RecordSelection.h"

#include <algorithm>
#include <iterator>

#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "console/IsoTime.h"
#include "console/Text.h"

namespace tsl {

namespace {

constexpr UINT32 kFirstId = 1;
constexpr UINT32 kLastId = 0xFFFFFFFF;
constexpr UINT32 kOrdinaryKind = 1;

std::vector<UINT32> AskForIds(CHostSession& session, ITslParamContainer& arguments) {
    std::vector<UINT32> ids;
    for (const auto& container : session.Query(kCommandQueryIds, arguments)) {
        CVariant id;
        container->GetValue(kKeyRecordId, id.Address());
        if (id.Type() == VT_UI4) ids.push_back(id.Get().ulVal);
    }
    std::ranges::sort(ids);
    return ids;
}

// The ids of a kind. The component raises its counter when it is asked for ids beyond it, so it is
// asked from the first id on; looking must not change anything.
std::vector<UINT32> IdsOfKind(CHostSession& session, const RecordSelection& selection,
                              UINT32 user) {
    session.SetLogKind(selection.kind.value_or(kOrdinaryKind));
    RecordSelection fromFirst = selection;
    fromFirst.first = kFirstId;
    std::vector<UINT32> ids = AskForIds(session, *IdRangeArguments(fromFirst, user));
    std::erase_if(ids, [&](UINT32 id) { return id < selection.first.value_or(kFirstId); });
    return ids;
}

std::vector<UINT32> IdsOfTimes(CHostSession& session, const RecordSelection& selection,
                               UINT32 user) {
    return AskForIds(session, *TimeRangeArguments(selection, user));
}

std::vector<UINT32> IdsOfUser(CHostSession& session, const RecordSelection& selection,
                              UINT32 user) {
    const bool byKind = selection.HasIds() || selection.kind;
    if (!byKind) return IdsOfTimes(session, selection, user);
    std::vector<UINT32> ofKind = IdsOfKind(session, selection, user);
    if (!selection.HasTimes()) return ofKind;
    // The component filters by times or by ids and kind, not by both.
    const std::vector<UINT32> ofTimes = IdsOfTimes(session, selection, user);
    std::vector<UINT32> both;
    std::ranges::set_intersection(ofKind, ofTimes, std::back_inserter(both));
    return both;
}

} // namespace

bool RecordFilter::Matches(const StoredRecord& record) const {
    return (name.empty() || ToUtf8(record.name) == name) && (!app || record.app == *app);
}

CComPtr<CTslParamContainer> TimeRangeArguments(const RecordSelection& selection, UINT32 user) {
    CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
    SetValue(*arguments, kKeyUserId, CVariant::FromUi4(user));
    if (!selection.since.empty()) {
        SetValue(*arguments, kKeyStartTime, CVariant::FromDate(ParseIsoTime(selection.since)));
    }
    if (!selection.until.empty()) {
        SetValue(*arguments, kKeyEndTime, CVariant::FromDate(ParseIsoTime(selection.until)));
    }
    return arguments;
}

CComPtr<CTslParamContainer> IdRangeArguments(const RecordSelection& selection, UINT32 user) {
    CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
    SetValue(*arguments, kKeyUserId, CVariant::FromUi4(user));
    SetValue(*arguments, kKeyFirstRecordId, CVariant::FromUi4(selection.first.value_or(kFirstId)));
    SetValue(*arguments, kKeyLastRecordId, CVariant::FromUi4(selection.last.value_or(kLastId)));
    return arguments;
}

std::vector<UINT32> SelectIds(CHostSession& session, const RecordSelection& selection) {
    if (selection.first.value_or(kFirstId) > selection.last.value_or(kLastId)) {
        throw CFailure(ExitCode::Usage, "--first is above --last");
    }
    std::vector<UINT32> ids;
    for (const UINT32 user : selection.users) {
        std::ranges::copy(IdsOfUser(session, selection, user), std::back_inserter(ids));
    }
    std::ranges::sort(ids);
    return ids;
}

} // namespace tsl
