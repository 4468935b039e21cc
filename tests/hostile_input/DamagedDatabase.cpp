// Damage to the bytes of a database file.
#include <algorithm>
#include <string_view>

#include "tests/hostile_input/HostileDatabase.h"
#include "tests/hostile_input/Mutation.h"

namespace tsl::test {

namespace {

constexpr size_t kHeaderSize = 100;

// Fields of the header: where they are, how wide they are.
struct Field {
    size_t offset;
    size_t width;
};
constexpr Field kFields[] = {
    {16, 2},                   // page size
    {18, 1},                   // format that writers need
    {19, 1},                   // format that readers need
    {20, 1},                   // unused bytes at the end of each page
    {21, 1}, {22, 1}, {23, 1}, // payload fractions
    {24, 4},                   // change counter
    {28, 4},                   // size in pages
    {32, 4},                   // first free page
    {36, 4},                   // number of free pages
    {40, 4},                   // schema cookie
    {44, 4},                   // schema format
    {48, 4},                   // cache size
    {52, 4},                   // highest root page
    {56, 4},                   // encoding of the texts
    {60, 4},                   // user version
    {64, 4},                   // incremental vacuum
    {68, 4},                   // application
    {92, 4},                   // what the size is valid for
    {96, 4},                   // version of the engine
};
constexpr UINT32 kFieldValues[] = {
    0, 1, 2, 3, 4, 5, 255, 256, 512, 513, 1024, 32768, 65535, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};

void SetField(Bytes& file, Chance& chance) {
    const Field field = chance.Of(kFields);
    const UINT32 value = chance.Of(kFieldValues);
    for (size_t index = 0; index < field.width && field.offset + index < file.size(); ++index)
        file[field.offset + index] =
            static_cast<unsigned char>(value >> 8 * (field.width - 1 - index));
}

// What stands in the schema's texts.
constexpr std::string_view kWords[] = {"TABLE",        "INTEGER", "TslIf_",      "ActionLogId",
                                       "CREATE",       "UserId",  "DbActionLog", "LogKind",
                                       "ActionReplay", "table",   "TEXT"};
constexpr std::string_view kOtherWords[] = {"VIEW ",       "INDEX",    "TRIGGER", "x",
                                            "ActionLogIe", "'",        "(((((",   "\"",
                                            "AS SELECT",   "\xFF\xFE", "userid"};

// Writes another word over one of the schema, byte for byte.
void ReplaceWord(Bytes& file, Chance& chance) {
    const std::string_view word = chance.Of(kWords);
    const auto start = std::search(file.begin(), file.end(), word.begin(), word.end());
    const std::string_view other = chance.Of(kOtherWords);
    const size_t room = static_cast<size_t>(file.end() - start);
    std::copy_n(other.begin(), std::min(other.size(), room), start);
}

void SpoilPage(Bytes& file, Chance& chance) {
    const size_t pages = file.size() / kPageSize;
    const auto page = [&](size_t number) {
        return file.begin() + static_cast<std::ptrdiff_t>(number * kPageSize);
    };
    if (pages < 2) return;
    const size_t first = chance.Below(pages);
    const size_t second = chance.Below(pages);
    switch (chance.Below(4)) {
    case 0:
        std::fill_n(page(first), kPageSize, static_cast<unsigned char>(0));
        break;
    case 1:
        std::copy_n(page(first), kPageSize, page(second));
        break;
    case 2: { // the numbers of cells, their places and further pages stand at the start
        const size_t start = first == 0 ? kHeaderSize : 0;
        for (size_t left = 1 + chance.Below(4); left > 0; --left)
            page(first)[static_cast<std::ptrdiff_t>(start + chance.Below(40))] =
                static_cast<unsigned char>(chance.Bits());
        break;
    }
    default:
        std::swap_ranges(page(first), page(first) + static_cast<std::ptrdiff_t>(kPageSize),
                         page(second));
        break;
    }
}

} // namespace

void DamageDatabase(Bytes& file, Chance& chance) {
    for (size_t left = 1 + chance.Below(3); left > 0 && !file.empty(); --left) {
        switch (chance.Below(8)) {
        case 0:
        case 1:
            SetField(file, chance);
            break;
        case 2:
            ReplaceWord(file, chance);
            break;
        case 3:
        case 4:
            SpoilPage(file, chance);
            break;
        case 5:
            file.resize(chance.OneIn(2) ? chance.Below(file.size())
                                        : chance.Below(file.size() / 512 + 1) * 512);
            break;
        case 6:
            SpoilBytes(file, chance, 4);
            break;
        default: // bits, which leave everything in its place
            for (size_t bits = 1 + chance.Below(30); bits > 0; --bits)
                chance.Of(file) ^= static_cast<unsigned char>(1 << chance.Below(8));
            break;
        }
    }
}

} // namespace tsl::test
