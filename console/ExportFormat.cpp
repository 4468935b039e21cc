#include "console/ExportFormat.h"

#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <string_view>

#include "console/IsoTime.h"
#include "console/JsonOutput.h"
#include "console/ParameterLists.h"
#include "console/Text.h"

namespace tsl {

namespace {

using OrderedJson = nlohmann::ordered_json;

// In the order of both formats. Files in the field have them: not to be changed.
constexpr const char* kListNames[] = {"ullValues",  "usValues",     "intValues",
                                      "boolValues", "stringValues", "floatValues"};

bool IsPlainNumber(const std::string& text) {
    double number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stopped == end && std::isfinite(number);
}

// What spreadsheets take for the beginning of a formula, also behind blanks and quotation marks,
// and in the full width of East Asian letters.
bool LooksLikeFormula(std::wstring_view text) {
    constexpr wchar_t kPassedOver[] = L" \u00A0\u3000\uFEFF\"'";
    constexpr wchar_t kBegins[] = L"=+-@\t\r\n\uFF1D\uFF0B\uFF0D\uFF20";
    const size_t first = text.find_first_not_of(kPassedOver);
    return first != std::wstring_view::npos &&
           std::wstring_view(kBegins).find(text[first]) != std::wstring_view::npos;
}

std::string Harmless(const std::wstring& text) {
    const std::string line = OneLine(ToUtf8(text));
    return LooksLikeFormula(text) && !IsPlainNumber(line) ? "'" + line : line;
}

std::string CsvCell(std::string text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    for (size_t quote = text.find('"'); quote != std::string::npos;
         quote = text.find('"', quote + 2)) {
        text.insert(quote, 1, '"');
    }
    return '"' + text + '"';
}

} // namespace

std::string ExportJson(const ExportedRecord& exported) {
    const StoredRecord& record = exported.record;
    OrderedJson line = {{"id", record.id},
                        {"time", FormatIsoTime(record.time)},
                        {"user", record.user},
                        {"app", record.app},
                        {"kind", exported.kind},
                        {"name", ToUtf8(record.name)},
                        {"parameters", ToUtf8(record.parameters)}};
    const OrderedJson lists = DecodeParameterLists(record.parameters);
    for (const char* const name : kListNames) {
        if (lists.contains(name)) line[name] = lists[name];
    }
    return ToJsonLine(line);
}

std::string ExportCsvTitles() {
    std::string titles = "id,time,user,app,kind,name,parameters";
    for (const char* const name : kListNames)
        titles.append(",").append(name);
    return titles + "\r\n";
}

std::string ExportCsvLine(const ExportedRecord& exported, CsvTexts texts) {
    const StoredRecord& record = exported.record;
    const auto cell = [&](const std::wstring& text) {
        return CsvCell(texts == CsvTexts::Raw ? ToUtf8(text) : Harmless(text));
    };
    std::string line = std::to_string(record.id) + ',' + FormatIsoTime(record.time) + ',' +
                       std::to_string(record.user) + ',' + std::to_string(record.app) + ',' +
                       std::to_string(exported.kind) + ',' + cell(record.name) + ',' +
                       cell(record.parameters);
    const OrderedJson lists = DecodeParameterLists(record.parameters);
    for (const char* const name : kListNames) {
        line += ',';
        if (lists.contains(name)) line += CsvCell(ToJsonLine(lists[name]));
    }
    return line + "\r\n";
}

} // namespace tsl
