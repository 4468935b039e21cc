// The stores that are measured: one for each size, of which one at a time lies where the component
// looks. They are the program's own to fill and to wipe. Used by one thread.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <filesystem>
#include <vector>

#include "bench/support/Engine.h"

namespace tsl::bench {

// How many records the other two tables have, whatever the size of the action log: the replay log
// is trimmed at 1,000, and kept records are taken soon.
inline constexpr UINT32 kReplayedRecords = 500;
inline constexpr UINT32 kKeptRecords = 100;

// When the component recorded a record of the store, by its id: one a minute.
constexpr DATE TimeOf(UINT32 recordId) {
    return 45'000.0 + recordId / 1'440.0;
}

// How many records two of the tables have.
struct StoreCounts {
    int actionLog = 0;
    int kept = 0;

    bool operator==(const StoreCounts&) const = default;
};

class CStores {
public:
    // Wipes the machine's store. Throws std::runtime_error unless TSL_TEST_STORE_MAY_BE_WIPED=1 is
    // set.
    explicit CStores(const CEngine& engine);
    CStores(const CStores&) = delete;
    CStores& operator=(const CStores&) = delete;
    ~CStores();

    // Puts the store with this many records in the action log in place; the first time, makes it.
    // Their ids are 1 to the size, all of kUser and of log kind 1.
    void Place(UINT32 size);

    // Takes away what was recorded or added since.
    void Restore();

    // Adds records to a table, to be deleted or taken: their ids run from the result on.
    UINT32 AddRecords(int count);
    UINT32 AddKeptRecords(int count);

    // The parameter text of a record in the action log.
    std::wstring ParametersOf(UINT32 recordId) const;

    // Counts them one by one.
    StoreCounts Count() const;

    // An id that was not in use before, and is no multiple of 100: at those the component also
    // looks whether the replay log has grown too long.
    UINT32 NewId();
    // One that is.
    UINT32 NewHundredthId();

private:
    void Make(UINT32 size) const;
    UINT32 Add(const wchar_t* table, int count);
    // Runs a statement in a file. The text in the last row that it yields.
    std::wstring Run(const std::filesystem::path& file, const std::wstring& statement) const;
    std::filesystem::path Shelf(UINT32 size) const;

    const CEngine& m_engine;
    UINT32 m_size = 0;
    UINT32 m_lastId = 0;
};

} // namespace tsl::bench
