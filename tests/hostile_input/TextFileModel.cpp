#include "tests/hostile_input/TextFileModel.h"

#include <algorithm>
#include <cwctype>

namespace tsl::test {

namespace {

// Both bytes of a unit; an odd last byte is none.
std::wstring UnitsOf(const Bytes& bytes) {
    std::wstring units;
    for (size_t at = 0; at + 1 < bytes.size(); at += 2)
        units += static_cast<wchar_t>(bytes[at] | bytes[at + 1] << 8);
    if (!units.empty() && units.front() == 0xFEFF) units.erase(0, 1);
    return units;
}

bool IsBreak(wchar_t unit) {
    return unit == L'\r' || unit == L'\n';
}

std::wstring Trimmed(const std::wstring& text) {
    size_t start = 0;
    size_t end = text.size();
    while (end > start && std::iswspace(text[end - 1]))
        --end;
    while (start < end && std::iswspace(text[start]))
        ++start;
    return text.substr(start, end - start);
}

std::wstring Padded(std::wstring digits) {
    return std::wstring(digits.size() < 8 ? 8 - digits.size() : 0, L'0') + digits;
}

std::wstring Hexadecimal(UINT64 number) {
    std::wstring digits;
    for (; number != 0; number /= 16)
        digits.insert(digits.begin(), L"0123456789abcdef"[number % 16]);
    return L"0x" + Padded(digits);
}

} // namespace

std::vector<std::wstring> ModelLines(const Bytes& bytes) {
    const std::wstring text = UnitsOf(bytes);
    // A break at the very start is none, and then there is no other.
    if (text.starts_with(L"\r\n")) return {text};
    std::vector<std::wstring> lines;
    std::wstring line;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text.compare(at, 2, L"\r\n") != 0) {
            line += text[at];
            continue;
        }
        lines.push_back(line);
        line.clear();
        while (at + 1 < text.size() && IsBreak(text[at + 1]))
            ++at;
    }
    if (!line.empty()) lines.push_back(line);
    return lines;
}

std::optional<UINT32> ModelCounter(const Bytes& bytes) {
    const std::vector<std::wstring> lines = ModelLines(bytes);
    if (lines.empty()) return std::nullopt;
    return std::wcstoul(Trimmed(lines.back()).c_str(), nullptr, 10);
}

Bytes ModelCounterFile(UINT32 counter) {
    return Utf16FileBytes(Padded(std::to_wstring(counter)) + L"\t\r\n");
}

ModelUser ModelLookUp(const Bytes& bytes, const std::wstring& sid) {
    std::optional<UINT64> found;
    UINT64 highest = 0;
    std::wstring text;
    for (const std::wstring& line : ModelLines(bytes)) {
        const size_t tab = std::min(line.find(L'\t'), line.size());
        const UINT64 id = _wcstoui64(line.substr(0, tab).c_str(), nullptr, 0);
        std::wstring owner = line.substr(std::min(tab + 1, line.size()));
        owner.resize(std::min(owner.find(L'\t'), owner.size()));
        if (_wcsicmp(owner.c_str(), sid.c_str()) == 0) found = id;
        highest = std::max(highest, id);
        text += Hexadecimal(id) + L'\t' + owner + L"\t\r\n";
    }
    if (found) return {*found, bytes};
    const UINT64 id = highest + 1;
    return {id, Utf16FileBytes(text + Hexadecimal(id) + L'\t' + sid + L"\t\r\n")};
}

} // namespace tsl::test
