#include <windows.h>

#include <sddl.h>

#include <cstddef>
#include <vector>

#include "base/Handle.h"
#include "base/LocalMemory.h"
#include "files/UserIdList.h"

namespace tsl {

namespace {

CHandle ProcessToken() noexcept {
    HANDLE token = nullptr;
    OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token);
    return CHandle(token);
}

} // namespace

HRESULT CurrentUserSid(std::wstring& sid) {
    const CHandle token = ProcessToken();
    if (!token) return E_INVALIDARG;
    DWORD size = 0;
    GetTokenInformation(token.Get(), TokenUser, /*buffer=*/nullptr, 0, &size);
    std::vector<std::byte> buffer(size);
    if (size < sizeof(TOKEN_USER) ||
        !GetTokenInformation(token.Get(), TokenUser, buffer.data(), size, &size)) {
        return E_INVALIDARG;
    }
    wchar_t* text = nullptr;
    const auto* const user = reinterpret_cast<const TOKEN_USER*>(buffer.data());
    if (!ConvertSidToStringSidW(user->User.Sid, &text)) return E_INVALIDARG;
    const LocalMemory<wchar_t> owned(text);
    sid = text;
    return S_OK;
}

} // namespace tsl
