// Random actions, and the parameter text that is expected of each, computed on its own.
#pragma once

#include <random>
#include <string>

#include "tests/support/Containers.h"

namespace tsl::test {

struct RandomAction {
    ContainerBuilder container;
    UINT32 id = 0;
    UINT32 user = 0;
    INT32 app = 0;
    DATE time = 0.0;
    std::wstring name;
    std::wstring parameters;
};

class RandomActions {
public:
    explicit RandomActions(std::uint32_t seed) : m_random(seed) {}

    RandomAction Make(UINT32 id);
    // A number from 0 to limit - 1.
    std::uint32_t Below(std::uint32_t limit) {
        return std::uniform_int_distribution<std::uint32_t>(0, limit - 1)(m_random);
    }
    UINT64 Bits() { return UINT64{m_random()} << 32 | m_random(); }

private:
    std::wstring Text(size_t longest);
    std::vector<std::wstring> Texts(RandomAction& action, UINT64 key);
    // Puts no values, one, or an array of them under the key; gives them back as texts.
    template <class T, class MakeValue, class Format>
    std::vector<std::wstring> Numbers(RandomAction& action, UINT64 key, MakeValue makeValue,
                                      Format format);

    std::mt19937 m_random;
};

} // namespace tsl::test
