// Hundreds of damaged databases: none brings the recovery to a fall, each becomes a whole one, and
// nothing is in it that was not in the original.
#include "tests/support/FullForm.h"
#include "tests/upkeep/RecoverFixture.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;

struct Totals {
    size_t files = 0;
    UINT64 saved = 0;
    UINT64 incomplete = 0;
    int others = 0;
};

class RecoverDamaged : public RecoverTest {
protected:
    // Recovers one database, without the other, and looks at what has become of it.
    void RecoverOne(const DamagedFile& file, const fs::path& path, Totals& totals) {
        PutInPlace(file, path);
        const bool isReplay = path.filename() == kReplayFileName;
        const DatabaseReport report =
            Recover({.force = true, .dryRun = false, .onProgress = {}}).databases[isReplay ? 1 : 0];
        ASSERT_EQ(Outcome::Recovered, report.outcome);
        ExpectWhole(path);
        ExpectKept(file, report);
        // A flipped byte spoils one row at most.
        const int flipped = file.how.ends_with("flipped bytes") ? std::stoi(file.how) : 0;
        for (const TableReport& table : report.tables) {
            const RowCounts rows = Rows(path, table.name);
            const int others = CountOfOthers(rows, m_whole[table.name]);
            EXPECT_LE(others, flipped + static_cast<int>(table.rows.incomplete)) << table.name;
            EXPECT_EQ(table.rows.saved, static_cast<UINT64>(Count(rows)));
            totals.saved += table.rows.saved;
            totals.incomplete += table.rows.incomplete;
            totals.others += others;
        }
        ++totals.files;
        RemoveFilesAside();
    }

    // The damaged file lies aside, as it was.
    static void ExpectKept(const DamagedFile& file, const DatabaseReport& report) {
        EXPECT_EQ(std::vector{fs::path(report.keptAs)}, FilesAside());
        if (file.isFolder) {
            EXPECT_TRUE(fs::is_directory(report.keptAs));
        } else {
            EXPECT_EQ(file.bytes, ReadBytes(report.keptAs));
        }
    }

    static int Count(const RowCounts& rows) {
        int count = 0;
        for (const auto& [row, times] : rows)
            count += times;
        return count;
    }

    // All of them, or every so many.
    Totals RecoverAll(const fs::path& path, const Bytes& whole, size_t count, size_t step) {
        Totals totals;
        const std::vector<DamagedFile> damaged = DamagedDatabases(whole, count);
        for (size_t index = 0; index < damaged.size(); index += step) {
            SCOPED_TRACE(std::to_string(index) + ": " + damaged[index].how);
            RecoverOne(damaged[index], path, totals);
        }
        return totals;
    }

    static void Print(const std::string& name, const Totals& totals) {
        Measured(std::to_string(totals.files) + " damaged " + name + ": " +
                 std::to_string(totals.saved) + " rows saved, " +
                 std::to_string(totals.incomplete) + " of them incomplete, " +
                 std::to_string(totals.others) + " not as they were");
    }

    std::map<std::string, RowCounts> m_whole;
};

TEST_F(RecoverDamaged, ActionLogBecomesWhole) {
    for (const char* const table : {"TslIf_DbActionLog", "TslIf_ContentDeleteProperty"})
        m_whole[table] = Rows(Store().actionLog, table);
    fs::remove(Store().replayLog);
    Print("action logs",
          RecoverAll(Store().actionLog, WholeActionLog(), 200, InForm<size_t>(8, 1)));
}

TEST_F(RecoverDamaged, ReplayLogBecomesWhole) {
    m_whole["TslIf_ActionReplay"] = Rows(Store().replayLog, "TslIf_ActionReplay");
    fs::remove(Store().actionLog);
    Print("replay logs", RecoverAll(Store().replayLog, WholeReplayLog(), 50, InForm<size_t>(8, 1)));
}

// Where the file is cut, all rows of the leaves before the cut are saved. Rows are known by their
// text, which stands once in the main table's pages and once in those of the kept records.
TEST_F(RecoverDamaged, CutFileGivesAllRowsOfItsLeaves) {
    fs::remove(Store().replayLog);
    const auto countIn = [](const std::string& bytes, int id) {
        const std::string text = "ullValues={" + std::to_string(id) + "}&";
        int count = 0;
        for (size_t at = bytes.find(text); at != std::string::npos; at = bytes.find(text, at + 1))
            ++count;
        return count;
    };
    const size_t step = InForm<size_t>(20, 1) * 2048;
    for (size_t size = 2048; size < WholeActionLog().size(); size += step) {
        SCOPED_TRACE("cut after " + std::to_string(size) + " bytes");
        const auto end = WholeActionLog().begin() + static_cast<std::ptrdiff_t>(size);
        const Bytes cut(WholeActionLog().begin(), end);
        WriteBytes(Store().actionLog, cut);
        Recover();
        const FileDatabase recovered(Store().actionLog);
        const std::string bytes(cut.begin(), cut.end());
        for (int id = 1; id <= kSampleRecords; ++id) {
            const std::string rows = recovered.Value(
                "SELECT (SELECT count(*) FROM TslIf_DbActionLog WHERE ActionLogId = " +
                std::to_string(id) +
                ") + (SELECT count(*) FROM TslIf_ContentDeleteProperty WHERE ActionLogId = " +
                std::to_string(id) + ")");
            EXPECT_EQ(std::to_string(countIn(bytes, id)), rows) << "id " << id;
        }
        RemoveFilesAside();
    }
}

} // namespace

} // namespace tsl::test
