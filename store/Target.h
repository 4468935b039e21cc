// What a command works on: chosen once, where the command comes in, and handed down unchanged. No
// other call, on any thread, can change what an operation reads.
#pragma once

#include "store/Schema.h"

namespace tsl {

struct Target {
    // The names are literals.
    const wchar_t* fileName = kActionLogFileName;
    const wchar_t* tableName = kActionLogTable;
    // The flag that the host passed last to SetRecordingEnabled of the object that was called; 0
    // before that.
    UINT32 logKind = 0;

    // The name of the table in the file.
    std::wstring Table() const { return TableName(kTablePrefix, tableName); }

    // The same file and log kind with another table.
    Target WithTable(const wchar_t* otherTable) const noexcept {
        return {fileName, otherTable, logKind};
    }
};

} // namespace tsl
