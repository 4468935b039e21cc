#include "tests/upkeep/KeepIds.h"

#include <sstream>

#include "tests/support/FileDatabase.h"

namespace tsl::test {

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line + "\n");
    return lines;
}

std::string Join(const std::vector<std::string>& lines, size_t first, size_t last) {
    std::string text;
    for (size_t index = first; index < std::min(last, lines.size()); ++index)
        text += lines[index];
    return text;
}

std::string Exported() {
    return RunConsole(L"export").output;
}

ConsoleResult KeepIds(const std::string& lines) {
    return RunConsole(L"import --keep-ids -", lines);
}

std::string Counts(const ConsoleResult& result) {
    return result.output.substr(0, result.output.rfind(", "));
}

std::string ExportLine(UINT32 id, const std::string& name, unsigned kind, unsigned user) {
    return nlohmann::ordered_json({{"id", id},
                                   {"time", "2026-11-20T08:00:00Z"},
                                   {"user", user},
                                   {"app", 5},
                                   {"kind", kind},
                                   {"name", name},
                                   {"parameters", "ullValues={" + std::to_string(id) + "}"},
                                   {"ullValues", {id}}})
               .dump() +
           "\n";
}

void EmptyTheStore() {
    std::filesystem::remove_all(StoreFolder());
}

std::string IdsIn(const std::filesystem::path& database, const std::string& table) {
    return FileDatabase(database).Value(
        "SELECT coalesce(group_concat(id), '') FROM (SELECT ActionLogId AS id FROM " + table +
        " ORDER BY 1)");
}

} // namespace tsl::test
