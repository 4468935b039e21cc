// Base of the tests that copy a store, put it back and make it smaller.
#pragma once

#include <functional>
#include <map>

#include "console/Failure.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreFixture.h"
#include "upkeep/Progress.h"
#include "upkeep/StorePaths.h"

namespace tsl::test {

// How an operation ended, and what it said.
struct Outcome {
    ExitCode code = ExitCode::Fine;
    std::string message;
};
Outcome OutcomeOf(const std::function<void()>& operation);

// Nobody looks at the progress.
void Unheard(const std::string& what, UINT64 done, UINT64 all);

// All files below a folder with their bytes; a folder has none.
using FolderContent = std::map<std::filesystem::path, Bytes>;
FolderContent ContentOf(const std::filesystem::path& folder);

// The rows of a table in their order, all columns but the hidden row number.
std::vector<Row> RowsOf(const std::filesystem::path& database, const std::string& table);

// Leaves the action log in the middle of a change, with the journal that takes it back, as a
// process that ends then does. REQUIRES: a sample store.
void LeaveJournal(const StorePaths& store);

class BackupTest : public StoreTest {
protected:
    void SetUp() override;
    void TearDown() override;

    // The machine's store. MakeSample fills it with the sample.
    const StorePaths& Store() const { return m_store; }
    void MakeSample() const;
    // All that is in its folders.
    static FolderContent StoreContent();

    // A folder that is not there yet, outside of the store's.
    const std::filesystem::path& Folder() const { return m_folder; }
    // Backs the store up into it; expects it to work.
    void BackUp() const;

    // The sample is backed up, and the store then goes on: other records, a lower counter, which
    // that of the backup replaces, another list of users.
    void BackUpAndChange() const;
    // The store holds the sample again.
    void ExpectSample() const;

    // "backup FOLDER"
    std::wstring Typed(const std::wstring& command) const;

private:
    StorePaths m_store;
    std::filesystem::path m_folder;
};

} // namespace tsl::test
