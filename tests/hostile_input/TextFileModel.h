// How the two text files of the store are read and written, worked out on its own: a counter file
// and a user id list of any bytes have a defined meaning.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

// The lines of a file's bytes.
std::vector<std::wstring> ModelLines(const Bytes& bytes);

// The number in a counter file; nothing when it has no line.
std::optional<UINT32> ModelCounter(const Bytes& bytes);
Bytes ModelCounterFile(UINT32 counter);

// What becomes of a user id list when a user is looked up in it.
struct ModelUser {
    UINT64 id = 0;
    Bytes file; // afterwards
};
ModelUser ModelLookUp(const Bytes& bytes, const std::wstring& sid);

} // namespace tsl::test
