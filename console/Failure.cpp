#include "console/Failure.h"

#include <cstdio>
#include <iterator>

#include "base/LocalMemory.h"
#include "console/Text.h"

namespace tsl {

namespace {

struct KnownResult {
    HRESULT result;
    ExitCode exitCode;
    const char* meaning;
};

constexpr HRESULT Code(unsigned long code) {
    return static_cast<HRESULT>(code);
}

// What the component answers, as far as it means more than "denied or I/O".
constexpr KnownResult kKnownResults[] = {
    {E_POINTER, ExitCode::Denied, "the component has no database engine"},
    {E_NOTIMPL, ExitCode::Usage, "the component does not know the command"},
    {Code(0x80041602), ExitCode::Denied, "access to the database is denied"},
    {Code(0x80041604), ExitCode::Locked, "the database is busy"},
    {Code(0x80041605), ExitCode::Locked, "a table is locked"},
    {Code(0x80041607), ExitCode::Denied, "the database is read-only"},
    {Code(0x80041609), ExitCode::Denied, "disk I/O error"},
    {Code(0x8004160A), ExitCode::Damaged, "the database is damaged"},
    {Code(0x8004160C), ExitCode::Denied, "the disk is full"},
    {Code(0x8004160D), ExitCode::Denied, "the database cannot be opened"},
    {Code(0x80041619), ExitCode::Damaged, "the file is no database"},
    {REGDB_E_CLASSNOTREG, ExitCode::Denied, "the class is not registered"},
    {HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS), ExitCode::Denied, "the file cannot be written"},
    {HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION), ExitCode::Locked,
     "another program uses the file"},
    {HRESULT_FROM_WIN32(ERROR_LOCK_VIOLATION), ExitCode::Locked, "another program locks the file"},
};

const KnownResult* Find(HRESULT result) noexcept {
    for (const KnownResult& known : kKnownResults) {
        if (known.result == result) return &known;
    }
    return nullptr;
}

// What the system says about a code; empty when it knows nothing.
std::string SystemMeaning(HRESULT result) {
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        /*source=*/nullptr, static_cast<DWORD>(result), /*languageId=*/0,
        reinterpret_cast<wchar_t*>(&text), 0, /*arguments=*/nullptr);
    const LocalMemory<wchar_t> owned(text);
    std::wstring_view meaning(text ? text : L"", length);
    while (!meaning.empty() && (meaning.back() <= L' ' || meaning.back() == L'.')) {
        meaning.remove_suffix(1);
    }
    return ToUtf8(meaning);
}

ExitCode ExitCodeFor(HRESULT result) noexcept {
    const KnownResult* const known = Find(result);
    return known ? known->exitCode : ExitCode::Denied;
}

} // namespace

CFailure::CFailure(const std::string& operation, const std::wstring& file, HRESULT result)
    : CFailure(ExitCodeFor(result),
               operation + " " + ToUtf8(file) + ": " + DescribeResult(result)) {}

std::string DescribeResult(HRESULT result) {
    char code[16];
    std::snprintf(code, std::size(code), "0x%08lX", static_cast<unsigned long>(result));
    const KnownResult* const known = Find(result);
    const std::string meaning = known ? known->meaning : SystemMeaning(result);
    return meaning.empty() ? code : code + (" (" + meaning + ")");
}

} // namespace tsl
