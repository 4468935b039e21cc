// Spoils texts and bytes, in the ways in which they get spoiled, and in ways in which they do not.
#pragma once

#include <string>
#include <vector>

#include "tests/hostile_input/Chance.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

// Makes spoiled texts out of good ones. Pieces are what is put into them: what has a meaning in the
// format.
class TextSpoiler {
public:
    TextSpoiler(std::vector<std::wstring> samples, std::vector<std::wstring> pieces)
        : m_samples(std::move(samples)), m_pieces(std::move(pieces)) {}

    // A sample, spoiled in up to eight places.
    std::wstring Make(Chance& chance) const;

private:
    void Spoil(std::wstring& text, Chance& chance) const;

    std::vector<std::wstring> m_samples;
    std::vector<std::wstring> m_pieces;
};

// A unit of any kind, lone surrogates and NUL included.
wchar_t AnyUnit(Chance& chance);
std::wstring AnyText(Chance& chance, size_t longest);

// Changes, removes, inserts or repeats bytes in up to this many places.
void SpoilBytes(Bytes& bytes, Chance& chance, size_t places);

} // namespace tsl::test
