// The tables of the store, as the component makes them. The texts are stored with the tables.
#pragma once

#include <string>

namespace tsl::bench {

inline constexpr wchar_t kActionLogTable[] = L"TslIf_DbActionLog";
inline constexpr wchar_t kKeptTable[] = L"TslIf_ContentDeleteProperty";
inline constexpr wchar_t kReplayTable[] = L"TslIf_ActionReplay";

inline std::wstring CreateText(const std::wstring& table) {
    return L"CREATE TABLE IF NOT EXISTS " + table +
           L" (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId "
           L"INTEGER,ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime "
           L"REAL,PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind "
           L"INTEGER)";
}

} // namespace tsl::bench
