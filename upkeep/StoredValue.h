// A value as SQLite stores it, of whatever kind it is.
#pragma once

#include <windows.h>

#include <array>
#include <functional>
#include <string>
#include <variant>

#include "store/Schema.h"

namespace tsl {

struct BlobValue {
    std::string bytes;
    bool operator==(const BlobValue&) const = default;
};

// Nothing is NULL; a text is UTF-8, byte for byte as it is stored.
using StoredValue = std::variant<std::monostate, INT64, double, std::string, BlobValue>;

// A row of an action table.
struct StoredRow {
    INT64 rowId = 0;
    std::array<StoredValue, kActionColumns.size()> values;
    bool whole = true; // else some of it could not be read: NULL, or a text that is cut
};

using RowSink = std::function<void(const StoredRow& row)>;

} // namespace tsl
