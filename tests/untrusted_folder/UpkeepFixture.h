// A store in use, in which somebody has planted something, and the commands that an engineer runs
// on it.
#pragma once

#include <vector>

#include "tests/console/ConsoleRun.h"
#include "tests/untrusted_folder/Links.h"
#include "upkeep/StorePaths.h"

namespace tsl::test {

// What is documented for a command that finds what it does not believe.
inline constexpr int kDenied = 5;

// A file of the store that something can be planted in the place of.
struct PlantedFile {
    std::string name;
    std::filesystem::path path;
};

class UntrustedStore : public StoreTest {
protected:
    void SetUp() override;
    void TearDown() override;

    const StorePaths& Store() const { return m_store; }
    // A whole store; where there is one, it is made anew.
    void MakeStore() const;

    // Where backups and reports go; empty, outside of the store.
    const std::filesystem::path& Out() const { return m_out; }
    std::wstring Typed(const std::wstring& command, const std::wstring& name) const;

    // The two text files, the two databases, and what belongs to these.
    std::vector<PlantedFile> TextFiles() const;
    std::vector<PlantedFile> Databases() const;
    std::vector<PlantedFile> Companions() const;
    std::vector<PlantedFile> AllFiles() const;

    // Plants a link of each kind in the place of the file in a fresh store and runs the command,
    // which must leave what is behind it alone. A link to nowhere counts as nothing to those who
    // cannot see it, so there the exit code may be another.
    void ExpectForeignUntouched(const PlantedFile& file, const std::wstring& command,
                                int expected) const;

private:
    StorePaths m_store;
    std::filesystem::path m_out;
};

} // namespace tsl::test
