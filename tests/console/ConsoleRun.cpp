#include "tests/console/ConsoleRun.h"

#include <windows.h>

#include <filesystem>
#include <stdexcept>

#include "tests/support/FullForm.h"
#include "tests/support/StartedProgram.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

const DWORD kTimeoutMilliseconds = InForm(60'000, 600'000);

// Streams go through files: nothing can block, however much is written.
class StreamFile {
public:
    explicit StreamFile(const std::wstring& name, const std::string& content = {})
        : m_path(std::filesystem::temp_directory_path() / name) {
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

// Several consoles of one test can run side by side.
std::wstring UniqueTag() {
    static unsigned serial = 0;
    return std::to_wstring(GetCurrentProcessId()) + L"_" + std::to_wstring(++serial);
}

} // namespace

struct RunningConsole::Streams {
    explicit Streams(const std::string& input)
        : in(L"tslhost_in_" + tag, input), out(L"tslhost_out_" + tag), err(L"tslhost_err_" + tag) {}

    const std::wstring tag = UniqueTag();
    const StreamFile in;
    const StreamFile out;
    const StreamFile err;
};

RunningConsole::RunningConsole(const std::filesystem::path& program, const std::wstring& arguments,
                               const std::string& input, DWORD creationFlags)
    : m_streams(std::make_unique<Streams>(input)) {
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = m_streams->in.Get();
    startup.hStdOutput = m_streams->out.Get();
    startup.hStdError = m_streams->err.Get();

    StartedProgram started = StartProgram(program, arguments, &startup, creationFlags);
    m_process = std::move(started.process);
    m_processId = started.id;
}

RunningConsole::RunningConsole(const std::wstring& arguments, const std::string& input,
                               DWORD creationFlags)
    : RunningConsole(ProgramFolder() / L"tslhost.exe", arguments, input, creationFlags) {}

RunningConsole::~RunningConsole() {
    Kill();
}

void RunningConsole::Kill() {
    TerminateProcess(m_process.Get(), 99);
    WaitForSingleObject(m_process.Get(), kTimeoutMilliseconds);
}

bool RunningConsole::IsRunning() const {
    return WaitForSingleObject(m_process.Get(), 0) == WAIT_TIMEOUT;
}

std::string RunningConsole::Output() const {
    return m_streams->out.Content();
}

ConsoleResult RunningConsole::WaitForEnd() {
    if (WaitForSingleObject(m_process.Get(), kTimeoutMilliseconds) != WAIT_OBJECT_0) {
        Kill();
        throw std::runtime_error("tslhost.exe does not end");
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(m_process.Get(), &exitCode);
    return {static_cast<int>(exitCode), Output(), m_streams->err.Content()};
}

ConsoleResult RunConsole(const std::wstring& arguments, const std::string& input) {
    return RunningConsole(arguments, input).WaitForEnd();
}

ConsoleResult RunConsoleAt(const std::filesystem::path& program, const std::wstring& arguments,
                           const std::string& input) {
    return RunningConsole(program, arguments, input).WaitForEnd();
}

} // namespace tsl::test
