// A database that says it holds more than it does: what is saved of it stays in proportion.
#include "tests/support/FileDatabase.h"
#include "tests/untrusted_folder/UpkeepFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// A row's cell in a leaf: the size of its record, its number, and what of the record lies there.
struct RowCell {
    size_t place = 0;
    UINT64 size = 0;
    UINT64 row = 0;
    size_t record = 0;
};

UINT64 ReadNumber(const Bytes& file, size_t& place) {
    UINT64 number = 0;
    for (bool goesOn = true; goesOn; ++place) {
        goesOn = (file.at(place) & 0x80) != 0;
        number = number << 7 | (file[place] & 0x7F);
    }
    return number;
}

// Of all pages that say that they are leaves.
std::vector<RowCell> CellsOf(const Bytes& file) {
    constexpr unsigned char kLeaf = 0x0D;
    std::vector<RowCell> cells;
    for (size_t page = kPageSize; page + kPageSize <= file.size(); page += kPageSize) {
        if (file[page] != kLeaf) continue;
        const size_t count = size_t{file[page + 3]} << 8 | file[page + 4];
        for (size_t index = 0; index < count; ++index) {
            const size_t pointer = page + 8 + 2 * index;
            RowCell cell{page + (size_t{file.at(pointer)} << 8 | file.at(pointer + 1))};
            size_t place = cell.place;
            cell.size = ReadNumber(file, place);
            cell.row = ReadNumber(file, place);
            cell.record = place;
            cells.push_back(cell);
        }
    }
    return cells;
}

} // namespace

class UpkeepSize : public UntrustedStore {
protected:
    static constexpr int kRows = 120;
    // Lengths of texts: those of a cell that keeps as much of the record in its page, but for the
    // bytes that the greater number needs for its own size.
    static constexpr int kLong = 2044 * 1957 + 300;
    static constexpr int kShort = 2044 + 304;

    static void AddRow(const FileDatabase& database, int row, int length) {
        const std::string number = std::to_string(row);
        database.Query("INSERT INTO TslIf_DbActionLog (rowid, ActionLogId, UserId, ActionName, "
                       "ActionParameters, LogKind) VALUES (" +
                       number + ", 200 + " + number + ", 7, 'playItem', substr(hex(zeroblob(" +
                       std::to_string(length) + ")), 1, " + std::to_string(length) + "), 1)");
    }

    // All rows but the first say what the first says, in its pages, with ids of their own.
    static int LeadToTheFirst(Bytes& file) {
        const std::vector<RowCell> cells = CellsOf(file);
        RowCell first;
        for (const RowCell& cell : cells) {
            if (cell.row == 1 && cell.size > kLong) first = cell;
        }
        constexpr size_t kUsable = kPageSize;
        constexpr size_t kLeast = (kUsable - 12) * 32 / 255 - 23;
        const size_t local = kLeast + (first.size - kLeast) % (kUsable - 4);
        const Bytes record(file.begin() + static_cast<std::ptrdiff_t>(first.record),
                           file.begin() + static_cast<std::ptrdiff_t>(first.record + local + 4));
        const Bytes size(file.begin() + static_cast<std::ptrdiff_t>(first.place),
                         file.begin() + static_cast<std::ptrdiff_t>(first.record - 1));
        int led = 0;
        for (const RowCell& cell : cells) {
            if (cell.size < kShort || cell.size > kShort + 100) continue;
            Bytes made = size;
            made.push_back(static_cast<unsigned char>(cell.row));
            const size_t start = made.size();
            made.insert(made.end(), record.begin(), record.end());
            const UINT64 id = 200 + cell.row;
            made[start + record[0]] = static_cast<unsigned char>(id >> 8);
            made[start + record[0] + 1] = static_cast<unsigned char>(id);
            std::ranges::copy(made, file.begin() + static_cast<std::ptrdiff_t>(cell.place));
            ++led;
        }
        return led;
    }
};

TEST_F(UpkeepSize, RowsThatShareTheirPagesAreSavedOnce) {
    ASSERT_NO_FATAL_FAILURE(MakeStore());
    {
        const FileDatabase database(Store().actionLog);
        database.Query("DELETE FROM TslIf_DbActionLog");
        database.Query("DELETE FROM TslIf_ContentDeleteProperty");
        database.Query("VACUUM");
        AddRow(database, 1, kLong);
        for (int row = 2; row <= kRows; ++row)
            AddRow(database, row, kShort);
    }
    Bytes file = ReadBytes(Store().actionLog);
    ASSERT_EQ(kRows - 1, LeadToTheFirst(file));
    WriteBytes(Store().actionLog, file);
    EXPECT_EQ(
        std::to_string(kRows),
        FileDatabase(Store().actionLog)
            .Value("SELECT count(*) FROM TslIf_DbActionLog WHERE length(ActionParameters) = " +
                   std::to_string(kLong)))
        << "the engine must be taken in";
    const ULONGLONG start = GetTickCount64();
    const ConsoleResult result = RunConsole(L"recover --force --json");
    EXPECT_LT(GetTickCount64() - start, 5'000u);
    EXPECT_TRUE(result.exitCode == 0 || result.exitCode == 6) << result.errors;
    EXPECT_LT(fs::file_size(Store().actionLog), 2 * file.size()) << result.output;
    EXPECT_EQ("1", FileDatabase(Store().actionLog)
                       .Value("SELECT count(*) FROM TslIf_DbActionLog WHERE "
                              "length(ActionParameters) = " +
                              std::to_string(kLong)));
}

} // namespace tsl::test
