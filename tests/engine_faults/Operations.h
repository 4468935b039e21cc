// Every operation of the interface that uses the engine: what it does, connection by connection,
// and which of these a host hears of when one fails.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "component/host/ITslPluginDb.h"

namespace tsl::test {

// What is done over one connection.
enum class StageKind {
    Write,  // of one record, in a transaction
    Delete, // of the rows with the ids
    Read,   // of the answer
    Count,  // of the records of the replay log; the deletion that follows is left out if it fails
    Fetch,  // of the record that is taken; the deletion follows unless there is no statement
};

// How the operation's result tells of a failure.
enum class Report { Nowhere, Mapped, AsPointer };

struct Stage {
    StageKind kind;
    const char* table;
    std::vector<INT64> ids; // that are written or deleted
    Report report;
};

inline bool IsChange(const Stage& stage) {
    return stage.kind == StageKind::Write || stage.kind == StageKind::Delete;
}

struct Operation {
    const char* name;
    UINT32 logKind;
    std::vector<Stage> stages;
    // The answer is left alone by what gives none.
    std::function<HRESULT(ITslPluginDb2& plugin, VARIANT* answer)> run;
    // The containers of a whole answer.
    size_t answers = 0;
    // Changes the store from which it starts, if set.
    std::function<void()> prepare = {};
    // Whether it starts without files, so that its tables have to be made.
    bool makesTables = false;
    // How often it calls the host's content store.
    size_t contentCalls = 0;
    // Of many calls of a function, the short form makes every nth fail.
    int briefStride = 5;
    // It makes a thousand containers: too many for the short form of the checked build, where each
    // allocation takes pages of its own.
    bool isHeavy = false;
};
struct OperationGroup {
    const char* name;
    std::vector<Operation> operations;
};
void PrintTo(const OperationGroup& group, std::ostream* stream);

// All of this form.
const std::vector<OperationGroup>& OperationGroups();

// Makes the files from which operations start, with tables, records and marks.
void MakeFilledStore();

} // namespace tsl::test
