// Who the tests run as, asked of the system without the code under test, and where his id is kept.
#pragma once

#include <windows.h>

#include <sddl.h>

#include <filesystem>
#include <stdexcept>
#include <string>

#include "base/Handle.h"
#include "base/LocalMemory.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

inline std::filesystem::path UserIdListFolder() {
    return StoreFolder().parent_path() / L"UID";
}
inline std::filesystem::path UserIdListPath() {
    return UserIdListFolder() / L"UserIdList.dat";
}

// Makes the folder and a file with this text.
inline void PrepareUserIdList(const Bytes& bytes) {
    std::filesystem::create_directories(UserIdListFolder());
    WriteBytes(UserIdListPath(), bytes);
}

// The security identifier of the process's user in string form. Throws std::runtime_error.
inline std::wstring TokenSid() {
    HANDLE opened = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &opened);
    const CHandle token(opened);
    alignas(TOKEN_USER) char buffer[512];
    DWORD size = sizeof buffer;
    wchar_t* text = nullptr;
    if (!GetTokenInformation(token.Get(), TokenUser, buffer, size, &size) ||
        !ConvertSidToStringSidW(reinterpret_cast<TOKEN_USER*>(buffer)->User.Sid, &text)) {
        throw std::runtime_error("the process has no user");
    }
    const LocalMemory<wchar_t> owned(text);
    return text;
}

} // namespace tsl::test
