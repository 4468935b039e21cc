// All of the store's records at a moment, and its files to be put back.
#pragma once

#include <iosfwd>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

// A row: its values as SQL literals, but for the moment of writing, which no two runs share. Copies
// share the text: there are thousands of them.
struct RecordRow {
    INT64 id = 0;
    std::shared_ptr<const std::string> values;
    bool operator==(const RecordRow& other) const {
        return id == other.id && *values == *other.values;
    }
};
void PrintTo(const RecordRow& row, std::ostream* stream);

// The rows of each of the three tables in the order of their ids; a table that is not there has
// none.
using StoreContents = std::map<std::string, std::vector<RecordRow>>;

// Finds the store's folder once: that takes longer than what is done with it.
class StoreSnapshot {
public:
    StoreSnapshot();

    // Keeps what the store's files hold now.
    void Take();
    // Puts it back; there are no other files of the store's then.
    void PutBack() const;

    // What the store held then.
    const StoreContents& Contents() const { return m_contents; }

    // What it holds now. A file with the bytes of then holds what it did. Fails the test when a
    // file is damaged or still open, when a journal is left, or when a file's mark of its highest
    // id is below an id.
    StoreContents ContentsNow() const;
    bool CounterIsAsThen() const;

private:
    struct File {
        std::filesystem::path path;
        std::vector<std::string> tables; // first the one that the mark speaks of
        std::filesystem::path journal;
        std::optional<Bytes> bytes; // nothing for a file that was not there
    };

    File m_counter;
    std::vector<File> m_databases;
    StoreContents m_contents;
};

} // namespace tsl::test
