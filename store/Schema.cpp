#include "store/Schema.h"

#include <span>

#include "base/Hresult.h"
#include "store/SqliteResult.h"

namespace tsl {

namespace {

// Index of the column that a blank precedes in the statement text. Existing files carry the text
// so.
constexpr size_t kColumnAfterBlank = 10;

// Of every table, so that the text grows no more.
constexpr size_t kRoomForCreateText = 400;

std::wstring CreateText(std::wstring_view prefix, std::wstring_view name,
                        std::span<const Column> columns) {
    std::wstring text;
    text.reserve(kRoomForCreateText);
    text.append(L"CREATE TABLE IF NOT EXISTS ").append(TableName(prefix, name)).append(L" (");
    for (size_t index = 0; index < columns.size(); ++index) {
        if (index > 0) text += L',';
        if (index == kColumnAfterBlank) text += L' ';
        text.append(columns[index].name).append(L" ").append(columns[index].sqlType);
    }
    return text += L')';
}

HRESULT CreateTable(const SqliteApi* engine, const CDatabase& database, std::wstring_view prefix,
                    std::wstring_view name, std::span<const Column> columns,
                    HRESULT faultyArguments) {
    if (!engine || !database || prefix.empty() || name.empty()) return faultyArguments;
    // Whoever opens the file does not look at the result, and so must not get an exception either.
    return AtBoundary([&] {
        const int result = ExecuteStatement(database, CreateText(prefix, name, columns));
        return SuccessAsOk(SqliteResultToHresult(result));
    });
}

} // namespace

std::wstring TableName(std::wstring_view prefix, std::wstring_view name) {
    std::wstring table(prefix);
    return table.append(L"_").append(name);
}

std::wstring CreateActionTableText(std::wstring_view prefix, std::wstring_view name) {
    return CreateText(prefix, name, kActionColumns);
}

HRESULT CreateActionTable(const SqliteApi* engine, const CDatabase& database,
                          std::wstring_view prefix, std::wstring_view name) {
    return CreateTable(engine, database, prefix, name, kActionColumns, E_INVALIDARG);
}

HRESULT CreateRecordIdTable(const SqliteApi* engine, const CDatabase& database,
                            std::wstring_view prefix, std::wstring_view name) {
    return CreateTable(engine, database, prefix, name, kRecordIdColumns, E_POINTER);
}

} // namespace tsl
