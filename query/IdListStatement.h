// The statement that fetches records by a list of ids.
#pragma once

#include <string>

namespace tsl {

// "SELECT * ... IN(?,?,...)" with one placeholder per id. REQUIRES: count is at least 1.
std::wstring IdListStatement(const std::wstring& table, size_t count);

} // namespace tsl
