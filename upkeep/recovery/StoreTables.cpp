#include "upkeep/recovery/StoreTables.h"

#include "console/Text.h"
#include "store/Schema.h"

namespace tsl {

namespace {

std::string NameInFile(const wchar_t* table) {
    return ToUtf8(TableName(kTablePrefix, table));
}

} // namespace

DatabaseTables ActionLogTables() {
    return {NameInFile(kActionLogTable), NameInFile(kContentDeleteTable),
            NameInFile(kRecordIdTable)};
}

DatabaseTables ReplayLogTables() {
    return {NameInFile(kReplayTable), {}, {}};
}

std::string CreateStatement(const std::string& table) {
    constexpr size_t kPrefixLength = std::size(kTablePrefix); // with the underscore behind it
    return ToUtf8(CreateActionTableText(kTablePrefix, ToUtf16(table.substr(kPrefixLength))));
}

std::string CreateOlderStatement(const std::string& table) {
    std::string text = "CREATE TABLE IF NOT EXISTS " + table + " (";
    for (const Column& column : kRecordIdColumns) {
        if (!text.ends_with('(')) text += ',';
        text += ToUtf8(column.name) + ' ' + ToUtf8(column.sqlType);
    }
    return text + ')';
}

} // namespace tsl
