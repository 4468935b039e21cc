// Records actions under the ids that they had in the store they were exported from.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "console/HostSession.h"
#include "console/StoredRecord.h"

namespace tsl {

struct KeepIdsCounts {
    size_t recorded = 0;
    size_t alreadyThere = 0; // with the same content: passed over
    size_t otherContent = 0; // there, but not the same: left alone
    size_t becameOthers = 0; // of those recorded: the record is not the one of the line
    size_t bad = 0;          // refused
};

// Used by one thread, as the session is. Before any record is written, the counter is raised to its
// id, so that an end at any moment leaves no record whose id would be handed out again; running the
// same import once more goes on behind what is there already.
class CKeepIdsImport {
public:
    // tell is given each message for the person, with the place of its line.
    using Tell = std::function<void(const std::string& message)>;
    CKeepIdsImport(CHostSession& session, Tell tell)
        : m_session(session), m_tell(std::move(tell)) {}

    // Takes the action of a line; place ("file:17: ") begins the messages about it. A bad one is
    // told and counted. Throws CFailure when the store fails, with how far it came.
    void Add(const std::string& place, HostAction action);
    // Records what is left. Throws as above.
    void Finish();

    const KeepIdsCounts& Counts() const noexcept { return m_counts; }

private:
    struct Line {
        std::string place;
        UINT32 id;
        HostAction action;
    };

    void RecordPortion();
    // What is not the same about those that are there already; an empty text where all is.
    std::map<UINT32, std::string> CompareThoseThere();
    void PassOver(const Line& line, const std::string& difference);
    // False for one that is bad.
    bool RecordMissing(const Line& line);
    void RecordLastFoundAgain();
    void RecordAs(const Line& line);
    void CompareRecorded(const std::vector<const Line*>& recorded);
    // Why recording it now would lose something that is in the store; nothing when it would not.
    std::optional<std::string> WhatWouldBeLost(const Line& line);
    void Refuse(const std::string& place, const std::string& why);

    CHostSession& m_session;
    const Tell m_tell;
    KeepIdsCounts m_counts;
    std::set<UINT32> m_ids; // of all lines
    std::vector<Line> m_portion;
    std::optional<Line> m_lastFound;
    bool m_anyMissing = false;
};

} // namespace tsl
