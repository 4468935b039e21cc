// tslhost: a small host that drives the component from the command line, through its interface
// only.
#include <windows.h>

#include <shellapi.h>

#include "base/Hresult.h"
#include "base/LocalMemory.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/Hardening.h"
#include "tslhost/commandline/CommandLine.h"

namespace tsl {

namespace {

// Before all other constructors: that of the stack protector has the system load a library already.
[[gnu::constructor(101)]] void HardenFirst() {
    HardenProcess();
}

// Without the program, in UTF-8.
std::vector<std::string> Arguments() {
    int count = 0;
    const LocalMemory<wchar_t*> wide(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int index = 1; index < count; ++index)
        arguments.push_back(ToUtf8(wide.get()[index]));
    return arguments;
}

ExitCode RunAndReport() {
    try {
        return RunCommandLine(Arguments());
    } catch (const CFailure& failure) {
        PrintError(failure.what());
        return failure.Code();
    } catch (const std::invalid_argument& error) {
        PrintError(error.what());
        return ExitCode::Usage;
    } catch (const CHresultError& error) {
        PrintError("failed: " + DescribeResult(error.Result()));
    } catch (const std::exception& error) {
        PrintError(std::string("failed: ") + error.what());
    }
    return ExitCode::Denied;
}

} // namespace

} // namespace tsl

int main() {
    tsl::PrepareOutput();
    return static_cast<int>(tsl::RunAndReport());
}
