// How the report looks: its style sheet.
#pragma once

namespace tsl {

extern const char kReportStyle[];

} // namespace tsl
