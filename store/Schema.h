// The tables of the store: names, columns and the texts that create them. Every stored file has
// them: not to be changed.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "files/DataFolders.h"
#include "store/Database.h"

namespace tsl {

inline constexpr wchar_t kTablePrefix[] = L"TslIf";
inline constexpr wchar_t kActionLogTable[] = L"DbActionLog";
inline constexpr wchar_t kContentDeleteTable[] = L"ContentDeleteProperty";
inline constexpr wchar_t kReplayTable[] = L"ActionReplay";
inline constexpr wchar_t kRecordIdTable[] = L"ActionRecordId";

struct Column {
    std::wstring_view name;
    std::wstring_view sqlType;
};

// The columns of an action table, in their order. PreLoggedTime is an INTEGER although the two
// other times are REAL; files in the field have it so.
inline constexpr std::array<Column, 13> kActionColumns = {{
    {L"ActionLogId", L"INTEGER"},
    {L"UsedLog", L"INTEGER"},
    {L"AppId", L"INTEGER"},
    {L"AppName", L"TEXT"},
    {L"UserId", L"INTEGER"},
    {L"ActionName", L"TEXT"},
    {L"ActionParameters", L"TEXT"},
    {L"AppLoggedTime", L"REAL"},
    {L"PluginLoggedTime", L"REAL"},
    {L"PreActionName", L"TEXT"},
    {L"PreActionParameters", L"TEXT"},
    {L"PreLoggedTime", L"INTEGER"},
    {L"LogKind", L"INTEGER"},
}};

// The columns of the table in which older stores kept the last record id.
inline constexpr std::array<Column, 2> kRecordIdColumns = {{
    {L"CurrentRecordId", L"INTEGER"},
    {L"ActionLogId", L"INTEGER"},
}};

// Columns that statements name, and the places of columns in a row of all of them.
inline constexpr wchar_t kActionLogIdColumn[] = L"ActionLogId";
inline constexpr wchar_t kUserIdColumn[] = L"UserId";
inline constexpr wchar_t kActionNameColumn[] = L"ActionName";
inline constexpr wchar_t kPluginLoggedTimeColumn[] = L"PluginLoggedTime";
inline constexpr wchar_t kLogKindColumn[] = L"LogKind";
inline constexpr wchar_t kCurrentRecordIdColumn[] = L"CurrentRecordId";
inline constexpr int kActionLogIdIndex = 0;
inline constexpr int kAppIdIndex = 2;
inline constexpr int kUserIdIndex = 4;
inline constexpr int kActionNameIndex = 5;
inline constexpr int kParametersIndex = 6;
inline constexpr int kAppLoggedTimeIndex = 7;
inline constexpr int kPluginLoggedTimeIndex = 8;

enum class TableShape { Action, RecordId };

// "prefix_name", the name of a table in the file.
std::wstring TableName(std::wstring_view prefix, std::wstring_view name);

// The statement that creates an action table where it is missing.
std::wstring CreateActionTableText(std::wstring_view prefix, std::wstring_view name);

// Creates the table where it is missing. S_OK, or the mapped failure of the engine. Faulty
// arguments (no engine, no connection, an empty prefix or name) give E_INVALIDARG for an action
// table and E_POINTER for a record-id table.
HRESULT CreateActionTable(const SqliteApi* engine, const CDatabase& database,
                          std::wstring_view prefix, std::wstring_view name);
HRESULT CreateRecordIdTable(const SqliteApi* engine, const CDatabase& database,
                            std::wstring_view prefix, std::wstring_view name);

} // namespace tsl
