// Long tests have a short form, which every run of the tests makes, and a full form, which
// scripts/soak asks for by TSL_TEST_FULL. Both print what they measured.
#pragma once

#include <cstdlib>
#include <iostream>
#include <string_view>

namespace tsl::test {

inline bool IsFullForm() {
    return std::getenv("TSL_TEST_FULL") != nullptr;
}

template <class Amount>
Amount InForm(Amount brief, Amount full) {
    return IsFullForm() ? full : brief;
}

// scripts/soak collects these lines.
inline void Measured(std::string_view figure) {
    std::cout << "MEASURED " << figure << std::endl;
}

} // namespace tsl::test
