#include "upkeep/recovery/SqlRows.h"

#include <sqlite3.h>

#include <algorithm>
#include <limits>
#include <optional>

#include "console/Failure.h"

namespace tsl {

namespace {

constexpr int kFirstColumn = 1; // behind the row id
constexpr INT64 kLowest = std::numeric_limits<INT64>::min();
constexpr INT64 kHighest = std::numeric_limits<INT64>::max();

class CTableReader {
public:
    CTableReader(const CConnection& damaged, const std::string& table, const RowReader& onRow)
        : m_damaged(damaged), m_table(table), m_onRow(onRow) {}

    void Read() {
        if (!IsReadable() || ReadUp(kLowest, kHighest)) return;
        const INT64 lower = m_last.value_or(kLowest);
        m_last.reset();
        if (ReadDown(lower)) return;
        if (const INT64 upper = m_last.value_or(kHighest); upper > lower) ReadBetween(lower, upper);
    }

private:
    // What the statement does; false when the engine cannot. A lock is told.
    template <class Action>
    bool Try(Action action) {
        try {
            action();
            return true;
        } catch (const CSqliteError& error) {
            if (error.Result() != SQLITE_BUSY && error.Result() != SQLITE_LOCKED) return false;
            throw CFailure(ExitCode::Locked, std::string("cannot read the rows: ") + error.what());
        }
    }

    bool IsReadable() {
        bool isTable = false;
        Try([&] {
            CQuery kind(m_damaged, "SELECT type FROM sqlite_schema WHERE name = ?");
            kind.Bind(m_table);
            isTable = kind.Step() && kind.Text(0) == "table";
            const CQuery rows(m_damaged, "SELECT rowid, * FROM " + m_table);
            isTable = isTable &&
                      rows.ColumnCount() == kFirstColumn + static_cast<int>(kActionColumns.size());
        });
        return isTable;
    }

    bool ReadUp(INT64 above, INT64 below) {
        return ReadOn("rowid > ? AND rowid < ? ORDER BY rowid ASC", above, below, /*sign=*/1);
    }
    bool ReadDown(INT64 above) {
        return ReadOn("rowid > ? AND rowid <= ? ORDER BY rowid DESC", above, kHighest, /*sign=*/-1);
    }

    // Hands on rows until their end, or as long as they are wanted; false when something is damaged
    // before it. Row ids that do not follow each other are damage too.
    bool ReadOn(const std::string& which, INT64 above, INT64 below, int sign) {
        bool isInOrder = true;
        std::optional<CQuery> query;
        bool isRow = false;
        StoredRow row;
        const auto next = [&] {
            isRow = query->Step();
            if (isRow) ReadRow(*query, row);
        };
        if (!Try([&] {
                query.emplace(m_damaged, "SELECT rowid, * FROM " + m_table + " WHERE " + which);
                query->Bind(above).Bind(below);
            }))
            return false;
        for (std::optional<INT64> last; Try(next); last = row.rowId) {
            if (!isRow) return true;
            isInOrder = !last || (sign > 0 ? row.rowId > *last : row.rowId < *last);
            if (!isInOrder || row.rowId <= above) return false;
            m_last = row.rowId;
            if (!m_onRow(row)) return true;
        }
        return false;
    }

    // Seeks on behind each place where the reading broke off.
    void ReadBetween(INT64 lower, INT64 upper) {
        constexpr INT64 kLongestStep = 64;
        constexpr int kMostSeeks = 10'000;
        INT64 place = std::max<INT64>(lower, 0);
        INT64 step = 1;
        for (int seeks = 0; seeks < kMostSeeks && place < upper - 1; ++seeks) {
            m_last.reset();
            if (ReadUp(place, upper)) return;
            step = m_last ? 1 : std::min(step * 2, kLongestStep);
            place = std::max(m_last.value_or(place), place);
            place += std::min(step, upper - place);
        }
    }

    static void ReadRow(const CQuery& query, StoredRow& row) {
        row.rowId = query.Int64(0);
        for (size_t index = 0; index < row.values.size(); ++index)
            row.values[index] = query.Value(kFirstColumn + static_cast<int>(index));
    }

    const CConnection& m_damaged;
    const std::string& m_table;
    const RowReader& m_onRow;
    std::optional<INT64> m_last; // row id handed on last
};

} // namespace

void ReadRowsBySql(const CConnection& damaged, const std::string& table, const RowReader& onRow) {
    CTableReader(damaged, table, onRow).Read();
}

} // namespace tsl
