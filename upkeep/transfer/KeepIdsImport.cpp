#include "upkeep/transfer/KeepIdsImport.h"

#include <algorithm>

#include "console/Failure.h"
#include "console/IsoTime.h"
#include "console/RecordOutput.h"
#include "console/RecordSelection.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "files/Paths.h"
#include "upkeep/transfer/RaisedCounter.h"
#include "upkeep/transfer/RecordOwners.h"
#include "upkeep/transfer/RecordTraces.h"
#include "upkeep/transfer/RecordingEffects.h"

namespace tsl {

namespace {

constexpr size_t kPortion = 500;
constexpr size_t kMostTold = 5; // of the records that became others

// The first thing about the record that is not as the line says; empty when all is. What the line
// does not say is not compared. In UTF-8, in which the line was written.
std::string Difference(const HostAction& line, const StoredRecord& record) {
    if (line.name != record.name && ToUtf8(line.name) != ToUtf8(record.name)) return "name";
    if (line.user != record.user) return "user";
    if (line.app != record.app) return "app";
    if (line.time && FormatIsoTime(*line.time) != FormatIsoTime(record.time)) return "time";
    if (line.parameters && ToUtf8(*line.parameters) != ToUtf8(record.parameters)) {
        return "parameters";
    }
    return {};
}

std::string Named(UINT32 id) {
    return "record " + std::to_string(id);
}

std::vector<UINT32> IdsOfOwner(CHostSession& session, const RecordOwner& owner) {
    RecordSelection selection;
    selection.users = {owner.user};
    selection.kind = owner.kind;
    return SelectIds(session, selection);
}

} // namespace

void CKeepIdsImport::Refuse(const std::string& place, const std::string& why) {
    ++m_counts.bad;
    m_tell(place + why);
}

void CKeepIdsImport::Add(const std::string& place, HostAction action) {
    if (!action.id) return Refuse(place, "\"id\" is missing");
    const UINT32 id = *action.id;
    if (id == 0) return Refuse(place, "\"id\" must be an integer from 1 to 4294967295");
    if (const auto why = WhyNotRecorded(action)) return Refuse(place, *why);
    if (!m_ids.insert(id).second) {
        return Refuse(place,
                      "there is another line with the id " + std::to_string(id) + " before it");
    }
    m_portion.push_back({place, id, std::move(action)});
    if (m_portion.size() == kPortion) RecordPortion();
}

void CKeepIdsImport::Finish() {
    if (!m_portion.empty()) RecordPortion();
}

void CKeepIdsImport::RecordPortion() {
    const UINT32 highest = std::ranges::max_element(m_portion, {}, &Line::id)->id;
    // Only the component makes the file.
    if (!FileExists(CounterFilePath())) m_session.NextRecordId();
    RaiseCounterTo(CounterFilePath(), highest);

    const std::map<UINT32, std::string> there = CompareThoseThere();
    std::vector<const Line*> recorded;
    for (const Line& line : m_portion) {
        const auto found = there.find(line.id);
        if (found != there.end()) {
            PassOver(line, found->second);
        } else if (RecordMissing(line)) {
            recorded.push_back(&line);
        }
    }
    CompareRecorded(recorded);
    m_portion.clear();
}

std::map<UINT32, std::string> CKeepIdsImport::CompareThoseThere() {
    std::vector<UINT32> ids;
    ids.reserve(m_portion.size());
    for (const Line& line : m_portion)
        ids.push_back(line.id);
    std::map<UINT32, StoredRecord> records;
    for (StoredRecord& record : FetchRecords(m_session, ids))
        records[record.id] = std::move(record);

    std::map<UINT32, std::string> differences;
    std::map<RecordOwner, std::vector<UINT32>> idsOfOwners;
    for (const Line& line : m_portion) {
        const auto found = records.find(line.id);
        if (found == records.end()) continue;
        std::string& difference = differences[line.id];
        difference = Difference(line.action, found->second);
        if (!difference.empty()) continue;
        // A record does not tell its log kind.
        const RecordOwner owner{line.action.user, line.action.kind};
        const auto [ofOwner, isNew] = idsOfOwners.try_emplace(owner);
        if (isNew) ofOwner->second = IdsOfOwner(m_session, owner);
        if (!std::ranges::binary_search(ofOwner->second, line.id)) difference = "kind";
    }
    return differences;
}

void CKeepIdsImport::PassOver(const Line& line, const std::string& difference) {
    if (!difference.empty()) {
        ++m_counts.otherContent;
        m_tell(line.place + Named(line.id) + " is there with another content (" + difference +
               ") and was left alone");
        return;
    }
    ++m_counts.alreadyThere;
    if (!m_anyMissing) m_lastFound = line;
}

bool CKeepIdsImport::RecordMissing(const Line& line) {
    if (!m_anyMissing) RecordLastFoundAgain();
    m_anyMissing = true;
    if (const auto loss = WhatWouldBeLost(line)) {
        Refuse(line.place, *loss);
        return false;
    }
    RecordAs(line);
    ++m_counts.recorded;
    return true;
}

// Where an import was interrupted, the action log may have a record that did not come into the
// replay log any more.
void CKeepIdsImport::RecordLastFoundAgain() {
    if (!m_lastFound || GainsValues(m_lastFound->action) ||
        IsInReplayLog(ReplayLogPath(), m_lastFound->id) || WhatWouldBeLost(*m_lastFound)) {
        return;
    }
    RecordAs(*m_lastFound);
}

void CKeepIdsImport::RecordAs(const Line& line) {
    try {
        m_session.RecordAs(line.action, line.id);
    } catch (const CFailure& failure) {
        throw CFailure(failure.Code(), line.place + failure.what() + "; " +
                                           std::to_string(m_counts.recorded) +
                                           " actions were recorded before it");
    }
}

std::optional<std::string> CKeepIdsImport::WhatWouldBeLost(const Line& line) {
    const HostAction& action = line.action;
    if (DeletesRecords(action)) {
        std::vector<UINT32> ids = IdsOfOwner(m_session, {action.user, action.kind});
        std::erase(ids, line.id);
        if (!ids.empty()) {
            return "a setting reset would delete " + CountOfRecords(ids.size()) + " of user " +
                   std::to_string(action.user) + " under log kind " + std::to_string(action.kind);
        }
    }
    if (KeepsDeletedItems(action)) {
        const auto kept = ReadKeptParameters(ActionLogPath(), line.id);
        if (kept && kept != action.parameters) {
            return "a record of deleted items is kept under the id " + std::to_string(line.id) +
                   " and would be replaced";
        }
    }
    return std::nullopt;
}

void CKeepIdsImport::CompareRecorded(const std::vector<const Line*>& recorded) {
    std::vector<UINT32> ids;
    ids.reserve(recorded.size());
    for (const Line* const line : recorded)
        ids.push_back(line->id);
    std::map<UINT32, StoredRecord> records;
    for (StoredRecord& record : FetchRecords(m_session, ids))
        records[record.id] = std::move(record);

    for (const Line* const line : recorded) {
        const auto found = records.find(line->id);
        const bool isThere = found != records.end();
        const std::string difference = isThere ? Difference(line->action, found->second) : "";
        if (isThere && difference.empty()) continue;
        if (++m_counts.becameOthers > kMostTold) continue;
        std::string message = line->place + Named(line->id);
        if (!isThere) {
            message += " is not in the action log";
        } else if (GainsValues(line->action)) {
            message += " became another: log kind " + std::to_string(line->action.kind) +
                       " adds values while recording";
        } else {
            message += " became another (" + difference + ")";
        }
        m_tell(message);
    }
}

} // namespace tsl
