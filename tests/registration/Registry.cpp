#include "tests/registration/Registry.h"

#include <iomanip>
#include <ostream>
#include <stdexcept>

#include "base/RegistryKey.h"

namespace tsl::test {

namespace {

CRegistryKey OpenForReading(const std::wstring& key) {
    CRegistryKey opened;
    opened.Open(HKEY_LOCAL_MACHINE, key.c_str(), KEY_READ);
    return opened;
}

} // namespace

void PrintTo(const StoredValue& value, std::ostream* out) {
    *out << "type " << value.type << ":" << std::hex << std::setfill('0');
    for (const unsigned char byte : value.bytes)
        *out << ' ' << std::setw(2) << static_cast<int>(byte);
    *out << std::dec;
}

StoredValue TextValue(std::wstring_view text) {
    const std::wstring terminated(text);
    const auto* const first = reinterpret_cast<const unsigned char*>(terminated.c_str());
    return {REG_SZ, {first, first + (terminated.size() + 1) * sizeof(wchar_t)}};
}

StoredValue NumberValue(DWORD number) {
    const auto* const first = reinterpret_cast<const unsigned char*>(&number);
    return {REG_DWORD, {first, first + sizeof number}};
}

bool KeyExists(const std::wstring& key) {
    return OpenForReading(key).Get() != nullptr;
}

StoredValue ReadStored(const std::wstring& key, const std::wstring& value) {
    const CRegistryKey opened = OpenForReading(key);
    StoredValue stored;
    DWORD size = 0;
    if (!opened.Get() || RegQueryValueExW(opened.Get(), value.c_str(), nullptr, &stored.type,
                                          nullptr, &size) != ERROR_SUCCESS) {
        return {};
    }
    stored.bytes.resize(size);
    RegQueryValueExW(opened.Get(), value.c_str(), nullptr, nullptr, stored.bytes.data(), &size);
    return stored;
}

std::vector<std::wstring> KeysBelow(const std::wstring& key) {
    const CRegistryKey opened = OpenForReading(key);
    std::vector<std::wstring> names;
    wchar_t name[256];
    for (DWORD index = 0;; ++index) {
        DWORD length = static_cast<DWORD>(std::size(name));
        if (RegEnumKeyExW(opened.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

std::vector<std::wstring> ValuesOf(const std::wstring& key) {
    const CRegistryKey opened = OpenForReading(key);
    std::vector<std::wstring> names;
    wchar_t name[256];
    for (DWORD index = 0;; ++index) {
        DWORD length = static_cast<DWORD>(std::size(name));
        if (RegEnumValueW(opened.Get(), index, name, &length, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, length);
    }
}

void MakeKey(const std::wstring& key, DWORD options) {
    HKEY made = nullptr;
    if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, key.c_str(), 0, nullptr, options, KEY_READ | KEY_WRITE,
                        nullptr, &made, nullptr) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot make a registry key");
    }
    RegCloseKey(made);
}

void WriteStored(const std::wstring& key, const std::wstring& value, const StoredValue& stored) {
    CRegistryKey opened;
    opened.Open(HKEY_LOCAL_MACHINE, key.c_str(), KEY_READ | KEY_WRITE);
    if (RegSetValueExW(opened.Get(), value.c_str(), 0, stored.type, stored.bytes.data(),
                       static_cast<DWORD>(stored.bytes.size())) != ERROR_SUCCESS) {
        throw std::runtime_error("cannot write a registry value");
    }
}

void RemoveRegistration() {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Corvane Corporation");
    for (const wchar_t* const key : {kClassKey, kAppIdKey, kAppIdFileKey})
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, key);
}

} // namespace tsl::test
