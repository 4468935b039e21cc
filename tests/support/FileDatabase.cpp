#include "tests/support/FileDatabase.h"

#include <sqlite3.h>

#include <stdexcept>

namespace tsl::test {

FileDatabase::FileDatabase(const std::filesystem::path& path, bool create) {
    const std::u8string utf8 = path.u8string();
    const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
    if (sqlite3_open_v2(reinterpret_cast<const char*>(utf8.c_str()), &m_database, flags,
                        // as the system has it, also where the process guards its engine
                        "win32") != SQLITE_OK) {
        const std::string message = sqlite3_errmsg(m_database);
        sqlite3_close(m_database);
        throw std::runtime_error(message);
    }
}

FileDatabase::~FileDatabase() {
    sqlite3_close(m_database);
}

std::vector<Row> FileDatabase::Query(const std::string& sql) const {
    std::vector<Row> rows;
    const auto collect = [](void* context, int count, char** values, char**) {
        Row row;
        for (int index = 0; index < count; ++index) {
            row.push_back(values[index] ? Cell(values[index]) : std::nullopt);
        }
        static_cast<std::vector<Row>*>(context)->push_back(std::move(row));
        return 0;
    };
    if (sqlite3_exec(m_database, sql.c_str(), collect, &rows, nullptr) != SQLITE_OK) {
        throw std::runtime_error(sql + ": " + sqlite3_errmsg(m_database));
    }
    return rows;
}

std::string FileDatabase::Value(const std::string& sql) const {
    const std::vector<Row> rows = Query(sql);
    if (rows.size() != 1 || rows[0].size() != 1) throw std::runtime_error(sql + ": not one value");
    return rows[0][0].value_or("NULL");
}

} // namespace tsl::test
