#include "tests/support/StartedProgram.h"

#include <stdexcept>

namespace tsl::test {

StartedProgram StartProgram(const std::filesystem::path& program, const std::wstring& arguments,
                            const STARTUPINFOW* startup, DWORD creationFlags) {
    STARTUPINFOW given{};
    given.cb = sizeof given;
    if (startup) given = *startup;
    const bool hasStreams = (given.dwFlags & STARTF_USESTDHANDLES) != 0;
    DWORD error = ERROR_SUCCESS;
    for (int attempt = 0; attempt < 2; ++attempt) {
        std::wstring command = L"\"" + program.wstring() + L"\" " + arguments;
        PROCESS_INFORMATION started{};
        if (CreateProcessW(program.c_str(), command.data(), nullptr, nullptr,
                           /*inheritHandles=*/hasStreams, creationFlags, nullptr, nullptr, &given,
                           &started)) {
            const CHandle thread(started.hThread);
            return {CHandle(started.hProcess), started.dwProcessId};
        }
        error = GetLastError();
    }
    throw std::runtime_error(program.filename().string() + " cannot be started, error " +
                             std::to_string(error));
}

} // namespace tsl::test
