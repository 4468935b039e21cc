#include "bench/floor/Floor.h"

#include <cwchar>

#include "base/Hresult.h"
#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"

namespace tsl::bench {

namespace {

constexpr DWORD kRoom = 64; // characters; the file has 12 to 14

CHandle OpenCounter(const std::wstring& path, DWORD access) {
    CHandle file(CreateFileW(path.c_str(), access, /*shareMode=*/0, /*securityAttributes=*/nullptr,
                             OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, /*templateFile=*/nullptr));
    if (!file) throw CHresultError(HresultFromLastError());
    return file;
}

// Behind the byte order mark.
UINT32 ReadNumber(const CHandle& file) {
    wchar_t text[kRoom] = L"";
    DWORD read = 0;
    if (!ReadFile(file.Get(), text, (kRoom - 1) * sizeof(wchar_t), &read, nullptr)) {
        throw CHresultError(HresultFromLastError());
    }
    return std::wcstoul(text + 1, nullptr, 10);
}

void WriteNumber(const CHandle& file, UINT32 number) {
    wchar_t text[kRoom];
    const int length =
        swprintf(text, kRoom, L"\xFEFF%08lu\t\r\n", static_cast<unsigned long>(number));
    DWORD written = 0;
    SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    if (!WriteFile(file.Get(), text, static_cast<DWORD>(length) * sizeof(wchar_t), &written,
                   nullptr) ||
        !SetEndOfFile(file.Get())) {
        throw CHresultError(HresultFromLastError());
    }
}

} // namespace

CVariant CFloor::NextId() const {
    const CPreparedWork work = Prepare(kLogId);
    UINT32 id = 0;
    {
        const CHandle file = OpenCounter(m_counterPath, GENERIC_READ | GENERIC_WRITE);
        if (m_preparation) m_preparation->RequireEveryone(m_counterPath);
        id = ReadNumber(file) + 1;
        WriteNumber(file, id);
    }
    CComPtr<ITslParamContainer> answer = MakeContainer(kCommandNextRecordId);
    SetIn(*answer, kKeyRecordId, CVariant::FromUi4(id));
    return CVariant::FromOwnedUnknown(answer.Detach());
}

UINT32 CFloor::ReadCounter() const {
    const CPreparedWork work = Prepare(kLogId);
    return ReadNumber(OpenCounter(m_counterPath, GENERIC_READ));
}

} // namespace tsl::bench
