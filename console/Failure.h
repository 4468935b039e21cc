// How the console host ends: its exit codes, and failures that are told in one line.
#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

namespace tsl {

// What a script can tell apart. Documented: not to be changed.
enum class ExitCode {
    Fine = 0,
    NothingFound = 1,
    Usage = 2,
    Locked = 3,
    Damaged = 4,
    Denied = 5,
    PartlyDone = 6,
};

// A failure whose message names the operation, the file and the code.
class CFailure : public std::runtime_error {
public:
    CFailure(ExitCode exitCode, const std::string& message)
        : std::runtime_error(message), m_exitCode(exitCode) {}

    // "operation file: 0x80041604 (the database is busy)", with the exit code that goes with it.
    CFailure(const std::string& operation, const std::wstring& file, HRESULT result);

    ExitCode Code() const noexcept { return m_exitCode; }

private:
    ExitCode m_exitCode;
};

// The code in hexadecimal with what it means.
std::string DescribeResult(HRESULT result);

} // namespace tsl
