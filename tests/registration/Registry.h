// What tests see of the registry and put into it: values as they are stored, and keys below the two
// places that the component registers itself in.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tsl::test {

inline constexpr wchar_t kHostKey[] = L"Software\\Corvane Corporation\\Tessaly";
inline constexpr wchar_t kListKey[] = L"Software\\Corvane Corporation\\Tessaly\\DB Plugins";
inline constexpr wchar_t kEntryKey[] =
    L"Software\\Corvane Corporation\\Tessaly\\DB Plugins\\{485C7D34-8D59-482E-84EC-EDCBE646B69D}";
inline constexpr wchar_t kClassKey[] =
    L"Software\\Classes\\CLSID\\{485C7D34-8D59-482E-84EC-EDCBE646B69D}";
inline constexpr wchar_t kServerKey[] =
    L"Software\\Classes\\CLSID\\{485C7D34-8D59-482E-84EC-EDCBE646B69D}\\InprocServer32";
inline constexpr wchar_t kAppIdKey[] =
    L"Software\\Classes\\AppID\\{1F3BD67A-CA6F-45A4-84E4-76B0C0505349}";
inline constexpr wchar_t kAppIdFileKey[] = L"Software\\Classes\\AppID\\TslIfDbActionLog.DLL";

// A value as it is stored, all its bytes. Type REG_NONE without bytes when there is none.
struct StoredValue {
    DWORD type = REG_NONE;
    std::vector<unsigned char> bytes;

    bool operator==(const StoredValue&) const = default;
};
void PrintTo(const StoredValue& value, std::ostream* out);

StoredValue TextValue(std::wstring_view text); // with its terminating zero
StoredValue NumberValue(DWORD number);

// All keys are below HKEY_LOCAL_MACHINE. An empty value name is the key's default value.
bool KeyExists(const std::wstring& key);
StoredValue ReadStored(const std::wstring& key, const std::wstring& value);
std::vector<std::wstring> KeysBelow(const std::wstring& key);
std::vector<std::wstring> ValuesOf(const std::wstring& key);

// Both throw std::runtime_error. A volatile key takes none below it that is not.
void MakeKey(const std::wstring& key, DWORD options = REG_OPTION_NON_VOLATILE);
void WriteStored(const std::wstring& key, const std::wstring& value, const StoredValue& stored);

// Everything that a registration could have left.
void RemoveRegistration();

} // namespace tsl::test
