// Looks into a database file with an engine of the tests' own, beside the component's.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

struct sqlite3;

namespace tsl::test {

// A value as SQLite gives it as text (UTF-8); nothing for NULL.
using Cell = std::optional<std::string>;
using Row = std::vector<Cell>;

class FileDatabase {
public:
    // Opens an existing file, or creates one. Throws std::runtime_error.
    explicit FileDatabase(const std::filesystem::path& path, bool create = false);
    FileDatabase(const FileDatabase&) = delete;
    FileDatabase& operator=(const FileDatabase&) = delete;
    ~FileDatabase();

    // All rows of a query; runs other statements too. Throws std::runtime_error.
    std::vector<Row> Query(const std::string& sql) const;

    // The single value that a query yields.
    std::string Value(const std::string& sql) const;

private:
    sqlite3* m_database = nullptr;
};

} // namespace tsl::test
