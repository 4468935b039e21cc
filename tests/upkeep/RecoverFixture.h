// A sample store that tests damage and recover.
#pragma once

#include <map>

#include "tests/support/FileDatabase.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/recovery/Recovery.h"

namespace tsl::test {

// How often each row is there: all of its values, with their kinds, as one text.
using RowCounts = std::map<std::string, int>;

class RecoverTest : public StoreTest {
protected:
    void SetUp() override;

    const StorePaths& Store() const { return m_store; }
    const Bytes& WholeActionLog() const { return m_actionLog; }
    const Bytes& WholeReplayLog() const { return m_replayLog; }

    RecoverReport Recover(const RecoverOptions& options = {}) const {
        return RecoverStore(m_store, options);
    }

    // The files in the store's folder that are none of its own.
    static std::vector<std::filesystem::path> FilesAside();
    static void RemoveFilesAside();

    // The rows of a table; empty when it has none.
    static RowCounts Rows(const std::filesystem::path& database, const std::string& table);

    // Of the rows of one, how many are not in the other.
    static int CountOfOthers(const RowCounts& rows, const RowCounts& known);

    // The engine finds no fault, and the tables are as the component makes them.
    static void ExpectWhole(const std::filesystem::path& database);

    // Changes the file by statements that the engine lets nobody else see.
    static void Change(const std::filesystem::path& database, const std::string& statements) {
        FileDatabase(database).Query(statements);
    }
    // Writes bytes into the file.
    static void Patch(const std::filesystem::path& file, size_t place, const Bytes& bytes);

private:
    StorePaths m_store;
    Bytes m_actionLog;
    Bytes m_replayLog;
};

} // namespace tsl::test
