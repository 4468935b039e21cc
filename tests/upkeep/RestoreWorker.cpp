// restore_worker FOLDER N: a restore whose process ends where it would move a file for the Nth
// time.
#include <windows.h>

#include <shellapi.h>

#include <string>

#include "base/LocalMemory.h"
#include "console/Failure.h"
#include "tests/support/ImportHook.h"
#include "upkeep/backup/Restore.h"

namespace {

decltype(&SetFileInformationByHandle) g_set = nullptr;
int g_movesLeft = 0;

BOOL WINAPI MoveOrEnd(HANDLE file, FILE_INFO_BY_HANDLE_CLASS kind, void* what, DWORD size) {
    constexpr UINT kEndedHere = 77;
    if (kind == FileRenameInfo && --g_movesLeft == 0)
        TerminateProcess(GetCurrentProcess(), kEndedHere);
    return g_set(file, kind, what, size);
}

} // namespace

int main() {
    int count = 0;
    const tsl::LocalMemory<wchar_t*> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
    if (count != 3) return 2;
    g_movesLeft = std::stoi(arguments.get()[2]);
    g_set = &SetFileInformationByHandle;
    const tsl::test::ImportHook hook("SetFileInformationByHandle", MoveOrEnd);
    try {
        tsl::RestoreStore(arguments.get()[1], tsl::MachineStore(),
                          [](const std::string&, UINT64, UINT64) {});
    } catch (const tsl::CFailure& failure) {
        return static_cast<int>(failure.Code());
    }
    return 0;
}
