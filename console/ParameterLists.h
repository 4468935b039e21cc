// The value lists inside a stored parameter text, for showing them.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

namespace tsl {

// An object with one array per kind that stands in the text, its texts percent-decoded. A kind
// whose values cannot be read is left out: the raw text tells then. Floating-point values that are
// no numbers of JSON's are texts: "inf", "nan".
nlohmann::ordered_json DecodeParameterLists(const std::wstring& parameters);

} // namespace tsl
