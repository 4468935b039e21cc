// Builds a parameter text and compares it together with the result.
#pragma once

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "recording/ParameterText.h"
#include "tests/support/Containers.h"

namespace tsl::test {

struct BuiltText {
    HRESULT result = S_OK;
    std::wstring text;

    bool operator==(const BuiltText&) const = default;
    friend void PrintTo(const BuiltText& built, std::ostream* output) {
        *output << "result 0x" << std::hex << static_cast<unsigned long>(built.result) << std::dec
                << ", text " << ::testing::PrintToString(built.text);
    }
};

// Any log kind that adds nothing.
inline constexpr UINT32 kPlainLogKind = 1;

// An action with nothing but its name.
inline ContainerBuilder NamedAction(std::wstring_view name = L"playItem") {
    return ContainerBuilder().Text(kKeyActionName, name);
}

inline BuiltText Build(ITslParamContainer* container, UINT32 logKind = kPlainLogKind) {
    BuiltText built;
    built.result = BuildActionParameters(container, built.text, logKind);
    return built;
}

inline BuiltText Ok(std::wstring text) {
    return {S_OK, std::move(text)};
}

} // namespace tsl::test
