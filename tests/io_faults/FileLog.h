// What of one file is on the disk for certain, and what was changed since its last sync and may be
// lost when the power goes.
#pragma once

#include <random>
#include <vector>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

// What of the changes since the last sync a power cut leaves.
enum class Survival { None, All, SomeWrites, SomeSectors };

class FileLog {
public:
    explicit FileLog(Bytes durable) : m_durable(std::move(durable)) {}

    void Write(size_t offset, const void* data, size_t size);
    void Truncate(size_t size);
    void Sync();

    // The file after a power cut: some of the changes, in any order.
    Bytes AfterCut(Survival survival, std::mt19937& random) const;

private:
    struct Change {
        bool isTruncation;
        size_t offset; // for a truncation the size that is left
        Bytes bytes;
    };

    static void Make(const Change& change, Bytes& file);
    std::vector<Change> Sectors() const;

    Bytes m_durable;
    std::vector<Change> m_changes;
};

} // namespace tsl::test
