#include "upkeep/recovery/DatabaseCondition.h"

#include <sqlite3.h>

#include <algorithm>

#include "console/Failure.h"
#include "upkeep/TableIds.h"
#include "upkeep/WholeDatabase.h"
#include "upkeep/recovery/PageFile.h"

namespace tsl {

namespace {

// The text that the engine keeps of a statement.
std::string KeptText(std::string statement) {
    constexpr std::string_view kWords = "IF NOT EXISTS ";
    return statement.erase(statement.find(kWords), kWords.size());
}

class CExaminer {
public:
    CExaminer(const std::wstring& path, const DatabaseTables& tables)
        : m_connection(path, Access::ReadOnly), m_tables(tables) {}

    DatabaseCondition Examine() {
        CheckSchema();
        if (!m_condition.damage.empty()) return m_condition;
        CQuery check(m_connection, "PRAGMA integrity_check(1)");
        const std::string found = check.Step() ? check.Text(0).value_or("") : "no answer";
        if (found != "ok") m_condition.damage = found;
        CheckIdsAndMark();
        return m_condition;
    }

private:
    void CheckSchema() {
        bool hasMain = false;
        CQuery objects(m_connection, "SELECT name, sql FROM sqlite_schema");
        while (objects.Step()) {
            const std::string name = objects.Text(0).value_or("");
            const bool isOlder = !name.empty() && name == m_tables.older;
            const bool isKept = !name.empty() && name == m_tables.kept;
            hasMain = hasMain || name == m_tables.main;
            m_condition.isOlderForm = m_condition.isOlderForm || isOlder;
            m_hasKept = m_hasKept || isKept;
            if (!isOlder && !isKept && name != m_tables.main) {
                m_condition.damage = "there is something else in it: " + name;
            } else if (objects.Text(1) !=
                       KeptText(isOlder ? CreateOlderStatement(name) : CreateStatement(name))) {
                m_condition.damage = "the table " + name + " has another shape";
            }
        }
        if (!hasMain) m_condition.damage = "there is no table " + m_tables.main;
    }

    UINT32 HighestIdOf(const std::string& table) {
        const TableIds ids = ReadTableIds(m_connection, table);
        if (!ids.AreWhole())
            m_condition.damage = "there are rows in " + table + " without an id of their own";
        return ids.highest;
    }

    // A mark of 0 is set by the component itself.
    void CheckIdsAndMark() {
        if (!m_condition.damage.empty()) return;
        const UINT32 highest = HighestIdOf(m_tables.main);
        const auto mark = static_cast<UINT32>(m_connection.Number("PRAGMA user_version"));
        if (mark != 0 && mark < highest)
            m_condition.damage = "its header says that there is no id above " +
                                 std::to_string(mark) + ", but there is";
        m_condition.highestId =
            std::max(highest, m_hasKept ? HighestIdOf(m_tables.kept) : UINT32{0});
        // The ids of records that were deleted are not handed out again. No check protects the
        // mark, so it is not believed when it is far off.
        constexpr UINT32 kOddLeap = 10'000;
        if (mark > m_condition.highestId && mark - m_condition.highestId <= kOddLeap)
            m_condition.highestId = mark;
    }

    CConnection m_connection;
    const DatabaseTables& m_tables;
    DatabaseCondition m_condition;
    bool m_hasKept = false;
};

} // namespace

DatabaseCondition ExamineDatabase(const std::wstring& path, const DatabaseTables& tables) {
    const FileHeader header = CPageFile(path).Header();
    if (!header.isDatabase || !(header.isRollback || header.isWal)) return {"it is no database"};
    try {
        return CExaminer(path, tables).Examine();
    } catch (const CSqliteError& error) {
        if (error.Result() == SQLITE_BUSY || error.Result() == SQLITE_LOCKED)
            throw FailureOf("cannot read", path, error);
        return {error.what()};
    }
}

} // namespace tsl
