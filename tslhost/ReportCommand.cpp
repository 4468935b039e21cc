// tslhost report
#include <windows.h>

#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

#include "base/Handle.h"
#include "base/Hresult.h"
#include "console/Output.h"
#include "console/StorePlace.h"
#include "console/Text.h"
#include "tslhost/Commands.h"
#include "upkeep/statistics/ReportPage.h"

namespace tsl {

namespace {

// Under another name first, so that nobody sees half a page.
HRESULT WriteWhole(const std::wstring& path, const std::string& text) {
    const std::wstring made = path + L".new";
    CHandle file(CreateFileW(made.c_str(), GENERIC_WRITE, /*shareMode=*/0,
                             /*securityAttributes=*/nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                             /*templateFile=*/nullptr));
    if (!file) return HresultFromLastError();
    const auto size = static_cast<DWORD>(text.size());
    DWORD written = 0;
    HRESULT result = S_OK;
    if (!WriteFile(file.Get(), text.data(), size, &written, /*overlapped=*/nullptr)) {
        result = HresultFromLastError();
    }
    file = CHandle();
    if (SUCCEEDED(result) && !MoveFileExW(made.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) {
        result = HresultFromLastError();
    }
    if (FAILED(result)) DeleteFileW(made.c_str());
    return result;
}

void Report(const std::string& file, bool json) {
    const std::wstring path = FullPath(ToUtf16(file));
    const std::string page = ReportPage(ReadStoreFigures(MachineStore()));
    const HRESULT result = WriteWhole(path, page);
    if (FAILED(result)) throw CFailure("cannot write", path, result);
    if (json) {
        PrintLine(nlohmann::ordered_json({{"file", ToUtf8(path)}, {"bytes", page.size()}}).dump());
    } else {
        PrintLine(ToUtf8(path));
    }
}

} // namespace

void AddReportCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command =
        app.add_subcommand("report", "Write the figures of the store as one HTML page with charts");
    const auto file = std::make_shared<std::string>();
    command->add_option("OUT", *file, "The page; one that is there is replaced")->required();
    command->footer("Example: tslhost report actions.html");
    command->callback([&context, file] { Report(*file, context.json); });
}

} // namespace tsl
