// The version that a program or DLL carries.
#pragma once

#include <optional>
#include <string>

namespace tsl {

// "1.0.0.0"; nothing for a file that is none, or has no version.
std::optional<std::string> FileVersionOf(const std::wstring& path);

} // namespace tsl
