// Repeatable chance. Used by one thread.
#pragma once

#include <windows.h>

#include <random>

namespace tsl::test {

class Chance {
public:
    explicit Chance(UINT64 seed) : m_random(seed) {}

    UINT64 Bits() { return m_random(); }
    // A number from 0 to limit - 1; 0 for no limit at all.
    size_t Below(size_t limit) { return limit == 0 ? 0 : static_cast<size_t>(m_random() % limit); }
    bool OneIn(size_t number) { return Below(number) == 0; }

    template <class Choices>
    decltype(auto) Of(Choices& choices) {
        return choices[Below(std::size(choices))];
    }

private:
    std::mt19937_64 m_random;
};

} // namespace tsl::test
