#include "tests/untrusted_folder/UpkeepFixture.h"

#include <set>

#include "tests/upkeep/DamagedStore.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

std::set<fs::path> NamesIn(const fs::path& folder) {
    std::set<fs::path> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.insert(entry.path());
    return names;
}

} // namespace

void UntrustedStore::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
    m_store = MachineStore();
    m_out =
        fs::temp_directory_path() / (L"tsl untrusted " + std::to_wstring(GetCurrentProcessId()));
    fs::remove_all(m_out);
    fs::create_directories(m_out);
}

void UntrustedStore::TearDown() {
    fs::remove_all(m_out);
    StoreTest::TearDown();
}

void UntrustedStore::MakeStore() const {
    fs::remove_all(StoreFolder().parent_path().parent_path());
    MakeStoreFolder();
    fs::create_directories(fs::path(m_store.userIds).parent_path());
    MakeSampleStore(m_store);
}

std::wstring UntrustedStore::Typed(const std::wstring& command, const std::wstring& name) const {
    return command + L" \"" + (m_out / name).wstring() + L"\"";
}

std::vector<PlantedFile> UntrustedStore::TextFiles() const {
    return {{"counter", m_store.counter}, {"user list", m_store.userIds}};
}

std::vector<PlantedFile> UntrustedStore::Databases() const {
    return {{"action log", m_store.actionLog}, {"replay log", m_store.replayLog}};
}

std::vector<PlantedFile> UntrustedStore::Companions() const {
    std::vector<PlantedFile> files;
    for (const PlantedFile& database : Databases()) {
        for (const wchar_t* const suffix : {L"-journal", L"-wal", L"-shm"}) {
            files.push_back(
                {database.name + fs::path(suffix).string(), database.path.wstring() + suffix});
        }
    }
    return files;
}

std::vector<PlantedFile> UntrustedStore::AllFiles() const {
    std::vector<PlantedFile> files = TextFiles();
    for (const auto& more : {Databases(), Companions()})
        files.insert(files.end(), more.begin(), more.end());
    return files;
}

void UntrustedStore::ExpectForeignUntouched(const PlantedFile& file, const std::wstring& command,
                                            int expected) const {
    for (const LinkKind kind : kLinkKinds) {
        SCOPED_TRACE(std::string(NameOf(kind)) + " as " + file.name + ": " +
                     fs::path(command).string());
        ASSERT_NO_FATAL_FAILURE(MakeStore());
        // What is a database there has tables that fit.
        const bool isDatabase = file.path.extension() == L".db" && fs::exists(file.path);
        const ForeignFolder foreign(isDatabase ? ReadBytes(file.path) : Bytes{'x', 'y', 'z'});
        foreign.PlantAt(file.path, kind);
        const std::set<fs::path> before = NamesIn(m_out);
        const ConsoleResult result = RunConsole(command);
        if (kind != LinkKind::Dangling) {
            EXPECT_EQ(expected, result.exitCode) << result.output << result.errors;
        }
        foreign.ExpectUntouched();
        const std::set<fs::path> made = NamesIn(m_out);
        if (expected != 0 && kind != LinkKind::Dangling) {
            EXPECT_EQ(before, made) << "something was written";
        }
        RemoveLink(file.path);
        for (const fs::path& path : made) {
            if (!before.contains(path)) fs::remove_all(path);
        }
    }
}

} // namespace tsl::test
