// An answer of the component as a text, by which answers are compared.
#pragma once

#include <string>

#include "base/Variant.h"

namespace tsl::test {

// All keys and values of all containers, in their order; empty for an answer without containers.
std::wstring AnswerText(CVariant& answer);

} // namespace tsl::test
