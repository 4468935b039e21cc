// Stored records as a file of an export has them: as JSON Lines, which import takes, or as CSV.
#pragma once

#include <string>

#include "console/StoredRecord.h"

namespace tsl {

// A record with the log kind, which the component does not hand out with it.
struct ExportedRecord {
    StoredRecord record;
    UINT32 kind = 0;
};

// One object: the record's members, its raw parameter text, and the value lists decoded from that
// text, flat beside them. Without a line end.
std::string ExportJson(const ExportedRecord& exported);

// How texts stand in CSV.
enum class CsvTexts {
    // A text that a spreadsheet would take for a formula begins with an apostrophe, and characters
    // that steer a terminal, line ends too, are blanks.
    Harmless,
    // To the byte.
    Raw,
};

// The line of the column names, and that of a record, with their line ends (CR LF). A text with a
// comma, a quotation mark or a line end stands in quotation marks, those in it doubled; a value
// list is JSON text, and its cell empty where the record has none.
std::string ExportCsvTitles();
std::string ExportCsvLine(const ExportedRecord& exported, CsvTexts texts);

} // namespace tsl
