// Loading the engine: what is looked up and called, what a missing engine gives, how it is freed.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "base/Hresult.h"
#include "store/SqliteApi.h"
#include "tests/support/ComponentCopy.h"
#include "tests/support/ImportHook.h"

namespace tsl::test {

namespace {

HMODULE ThisProgram() {
    return GetModuleHandleW(nullptr);
}

bool IsLoaded(const std::filesystem::path& library) {
    return GetModuleHandleW(library.c_str()) != nullptr;
}

// What the binding looked up by name, and how often it started or ended the engine meanwhile.
struct Lookups {
    // Taken before the function is replaced.
    decltype(&GetProcAddress) original = &GetProcAddress;
    std::vector<std::string> names;
    int initialized = 0;
    int shutDown = 0;
};
Lookups* g_lookups = nullptr;

int CountInitialize() {
    ++g_lookups->initialized;
    return kSqliteOk;
}

int CountShutdown() {
    ++g_lookups->shutDown;
    return kSqliteOk;
}

FARPROC WINAPI RecordLookup(HMODULE module, const char* name) {
    g_lookups->names.emplace_back(name);
    if (g_lookups->names.back() == "sqlite3_initialize") {
        return std::bit_cast<FARPROC>(&CountInitialize);
    }
    if (g_lookups->names.back() == "sqlite3_shutdown") {
        return std::bit_cast<FARPROC>(&CountShutdown);
    }
    return g_lookups->original(module, name);
}

class EngineLookup : public ::testing::Test {
protected:
    void SetUp() override { g_lookups = &m_lookups; }
    void TearDown() override { g_lookups = nullptr; }

    Lookups m_lookups;
};

} // namespace

TEST_F(EngineLookup, FindsAllNamesInTheirOrderAndStartsNothing) {
    HRESULT loaded = E_UNEXPECTED;
    {
        SqliteApi engine;
        const ImportHook hook("GetProcAddress", &RecordLookup);
        loaded = engine.Load(ThisProgram(), /*initializeOnly=*/false);
    }
    EXPECT_EQ(S_OK, loaded);
    const std::vector<std::string> expected = {
        "sqlite3_exec",         "sqlite3_free",          "sqlite3_prepare",
        "sqlite3_prepare16_v2", "sqlite3_reset",         "sqlite3_bind_int",
        "sqlite3_bind_int64",   "sqlite3_bind_text",     "sqlite3_bind_text16",
        "sqlite3_bind_double",  "sqlite3_step",          "sqlite3_finalize",
        "sqlite3_mprintf",      "sqlite3_get_table",     "sqlite3_free_table",
        "sqlite3_open",         "sqlite3_close",         "sqlite3_column_int",
        "sqlite3_column_int64", "sqlite3_column_text16", "sqlite3_column_double",
        "sqlite3_initialize",   "sqlite3_shutdown"};
    EXPECT_EQ(expected, m_lookups.names);
    EXPECT_EQ(0, m_lookups.initialized);
    EXPECT_EQ(0, m_lookups.shutDown);
}

TEST_F(EngineLookup, InitializeOnlyFindsTwoNamesAndStartsTheEngineOnce) {
    HRESULT loaded = E_UNEXPECTED;
    {
        SqliteApi engine;
        const ImportHook hook("GetProcAddress", &RecordLookup);
        loaded = engine.Load(ThisProgram(), /*initializeOnly=*/true);
    }
    EXPECT_EQ(S_OK, loaded);
    const std::vector<std::string> expected = {"sqlite3_initialize", "sqlite3_shutdown"};
    EXPECT_EQ(expected, m_lookups.names);
    EXPECT_EQ(1, m_lookups.initialized);
    EXPECT_EQ(0, m_lookups.shutDown);
}

TEST(EngineBinding, InitializeOnlyLeavesTheWorkingFunctionsMissing) {
    SqliteApi engine;
    ASSERT_EQ(S_OK, engine.Load(ThisProgram(), /*initializeOnly=*/true));
    sqlite3* connection = nullptr;
    EXPECT_EQ(kSqliteError, engine.Open(":memory:", &connection));
    EXPECT_EQ(nullptr, connection);
}

TEST(EngineBinding, InitializeOnlyWithoutThatFunctionStillLoads) {
    const ComponentCopy copy;
    copy.AddEngine();
    copy.RenameEngineExport("sqlite3_initialize");
    SqliteApi engine;
    EXPECT_EQ(S_OK, engine.Load(copy.Module(), /*initializeOnly=*/true));
    EXPECT_TRUE(IsLoaded(copy.EngineLibrary()));
}

TEST(EngineBinding, LoadsTheLibraryOfTheAssemblyBesideTheModule) {
    const ComponentCopy copy;
    copy.AddEngine();
    SqliteApi engine;
    ASSERT_FALSE(IsLoaded(copy.EngineLibrary()));
    EXPECT_EQ(S_OK, engine.Load(copy.Module(), /*initializeOnly=*/false));
    EXPECT_TRUE(IsLoaded(copy.EngineLibrary()));
    engine.Unload();
    EXPECT_FALSE(IsLoaded(copy.EngineLibrary()));
}

TEST(EngineBinding, GoingAwayFreesTheLibrary) {
    const ComponentCopy copy;
    copy.AddEngine();
    {
        SqliteApi engine;
        ASSERT_EQ(S_OK, engine.Load(copy.Module(), /*initializeOnly=*/false));
        ASSERT_TRUE(IsLoaded(copy.EngineLibrary()));
    }
    EXPECT_FALSE(IsLoaded(copy.EngineLibrary()));
}

TEST(EngineBinding, UnloadingTwiceFreesOnce) {
    const ComponentCopy copy;
    copy.AddEngine();
    SqliteApi first;
    SqliteApi second;
    ASSERT_EQ(S_OK, first.Load(copy.Module(), /*initializeOnly=*/false));
    ASSERT_EQ(S_OK, second.Load(copy.Module(), /*initializeOnly=*/false));
    first.Unload();
    first.Unload();
    EXPECT_TRUE(IsLoaded(copy.EngineLibrary())) << "the second table lost its engine";
    sqlite3* connection = nullptr;
    EXPECT_EQ(kSqliteOk, second.Open(":memory:", &connection));
    EXPECT_EQ(kSqliteOk, second.Close(connection));
}

TEST(EngineBinding, AfterUnloadingEveryFunctionIsMissing) {
    SqliteApi engine;
    ASSERT_EQ(S_OK, engine.Load(ThisProgram(), /*initializeOnly=*/false));
    engine.Unload();
    sqlite3* connection = nullptr;
    EXPECT_EQ(kSqliteError, engine.Open(":memory:", &connection));
}

TEST(EngineBinding, AssemblyThatIsMissingGivesEFail) {
    const ComponentCopy copy;
    SqliteApi engine;
    EXPECT_EQ(E_FAIL, engine.Load(copy.Module(), /*initializeOnly=*/false));
    EXPECT_EQ(E_FAIL, engine.Load(copy.Module(), /*initializeOnly=*/true));
}

TEST(EngineBinding, LibraryThatIsMissingInItsAssemblyGivesEFail) {
    const ComponentCopy copy;
    copy.AddEngine();
    ASSERT_TRUE(std::filesystem::remove(copy.EngineLibrary()));
    SqliteApi engine;
    EXPECT_EQ(E_FAIL, engine.Load(copy.Module(), /*initializeOnly=*/false));
}

TEST(EngineBinding, LibraryThatIsNoLibraryGivesEFail) {
    const ComponentCopy copy;
    copy.AddEngine();
    std::ofstream(copy.EngineLibrary(), std::ios::binary) << "not a library";
    SqliteApi engine;
    EXPECT_EQ(E_FAIL, engine.Load(copy.Module(), /*initializeOnly=*/false));
}

TEST(EngineBinding, ModuleWithoutManifestGivesEFail) {
    SqliteApi engine;
    EXPECT_EQ(E_FAIL, engine.Load(GetModuleHandleW(L"kernel32.dll"), /*initializeOnly=*/false));
}

TEST(EngineBinding, EngineThatComesLaterLoadsAfterAFailure) {
    const ComponentCopy copy;
    SqliteApi engine;
    ASSERT_EQ(E_FAIL, engine.Load(copy.Module(), /*initializeOnly=*/false));
    copy.AddEngine();
    EXPECT_EQ(S_OK, engine.Load(copy.Module(), /*initializeOnly=*/false));
}

} // namespace tsl::test
