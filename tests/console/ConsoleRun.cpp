#include "tests/console/ConsoleRun.h"

#include <windows.h>

#include <filesystem>
#include <stdexcept>

#include "base/Handle.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

constexpr DWORD kTimeoutMilliseconds = 60000;

// Streams go through files: nothing can block, however much is written.
class StreamFile {
public:
    explicit StreamFile(const wchar_t* name, const std::string& content = {})
        : m_path(std::filesystem::temp_directory_path() /
                 (name + std::to_wstring(GetCurrentProcessId()))) {
        WriteBytes(m_path, Bytes(content.begin(), content.end()));
        SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
        m_file = CHandle(CreateFileW(m_path.c_str(), GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, &inheritable,
                                     OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!m_file) throw std::runtime_error("no file for a stream of tslhost");
    }
    StreamFile(const StreamFile&) = delete;
    StreamFile& operator=(const StreamFile&) = delete;
    ~StreamFile() {
        m_file = CHandle();
        std::error_code error;
        std::filesystem::remove(m_path, error);
    }

    HANDLE Get() const { return m_file.Get(); }
    std::string Content() const {
        const Bytes bytes = ReadBytes(m_path);
        return std::string(bytes.begin(), bytes.end());
    }

private:
    std::filesystem::path m_path;
    CHandle m_file;
};

} // namespace

ConsoleResult RunConsole(const std::wstring& arguments, const std::string& input) {
    return RunConsoleAt(ProgramFolder() / L"tslhost.exe", arguments, input);
}

ConsoleResult RunConsoleAt(const std::filesystem::path& program, const std::wstring& arguments,
                           const std::string& input) {
    const StreamFile in(L"tslhost_in_", input);
    const StreamFile out(L"tslhost_out_");
    const StreamFile err(L"tslhost_err_");
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.Get();
    startup.hStdOutput = out.Get();
    startup.hStdError = err.Get();

    std::wstring command = L"\"" + program.wstring() + L"\" " + arguments;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, /*inheritHandles=*/TRUE,
                        0, nullptr, nullptr, &startup, &started)) {
        throw std::runtime_error("tslhost.exe cannot be started");
    }
    const CHandle process(started.hProcess);
    const CHandle thread(started.hThread);
    if (WaitForSingleObject(process.Get(), kTimeoutMilliseconds) != WAIT_OBJECT_0) {
        TerminateProcess(process.Get(), 99);
        throw std::runtime_error("tslhost.exe does not end");
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(process.Get(), &exitCode);
    return {static_cast<int>(exitCode), out.Content(), err.Content()};
}

} // namespace tsl::test
