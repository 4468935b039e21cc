// DllRegisterServer: the entry in the engine's list, the class, the application id.
#include "console/ComInitialization.h"
#include "console/RegisteredPlugins.h"
#include "tests/registration/RegistrationFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

class Registering : public RegistrationTest {};

TEST_F(Registering, EntersThePluginWithItsFourValues) {
    EXPECT_EQ(S_OK, Register());
    ExpectEntry();
    EXPECT_EQ(1u, KeysBelow(kListKey).size());
    EXPECT_TRUE(ValuesOf(kListKey).empty());
}

TEST_F(Registering, WritesTheClassAndItsServer) {
    EXPECT_EQ(S_OK, Register());
    EXPECT_EQ(TextValue(L"PluginDb Class"), ReadStored(kClassKey, L""));
    EXPECT_EQ(TextValue(ModulePath().wstring()), ReadStored(kServerKey, L""));
    EXPECT_EQ(TextValue(L"Both"), ReadStored(kServerKey, L"ThreadingModel"));
    EXPECT_EQ(std::vector<std::wstring>{L"InprocServer32"}, KeysBelow(kClassKey));
}

TEST_F(Registering, WritesTheApplicationId) {
    EXPECT_EQ(S_OK, Register());
    EXPECT_EQ(TextValue(L"TslIfDbActionLog"), ReadStored(kAppIdKey, L""));
    EXPECT_EQ(TextValue(L"{1F3BD67A-CA6F-45A4-84E4-76B0C0505349}"),
              ReadStored(kAppIdFileKey, L"AppID"));
}

TEST_F(Registering, TwiceLeavesOneEntryWithTheSameValues) {
    EXPECT_EQ(S_OK, Register());
    EXPECT_EQ(S_OK, Register());
    ExpectEntry();
    EXPECT_EQ(1u, KeysBelow(kListKey).size());
    EXPECT_EQ(TextValue(ModulePath().wstring()), ReadStored(kServerKey, L""));
}

TEST_F(Registering, RenewsWhatWasChanged) {
    ASSERT_EQ(S_OK, Register());
    WriteStored(kEntryKey, L"Enable", NumberValue(0));
    WriteStored(kEntryKey, L"Module ID", TextValue(L"something else"));
    WriteStored(kServerKey, L"", TextValue(L"C:\\old\\TslIfDbActionLog.dll"));
    EXPECT_EQ(S_OK, Register());
    ExpectEntry();
    EXPECT_EQ(TextValue(ModulePath().wstring()), ReadStored(kServerKey, L""));
}

TEST_F(Registering, LeavesOtherPluginsAlone) {
    const std::wstring other = std::wstring(kListKey) + L"\\{00000000-0000-0000-0000-000000000001}";
    MakeKey(other);
    WriteStored(other, L"Order", NumberValue(7));
    EXPECT_EQ(S_OK, Register());
    EXPECT_EQ(2u, KeysBelow(kListKey).size());
    EXPECT_EQ(NumberValue(7), ReadStored(other, L"Order"));
    ExpectEntry();
}

// The path stands in quotes in the script.
TEST_F(Registering, TakesAnyPath) {
    const fs::path folder = fs::temp_directory_path() / L"it's % here, \u00e4\u65e5";
    fs::create_directories(folder);
    const fs::path module = folder / L"TslIfDbActionLog.dll";
    fs::copy_file(ModulePath(), module, fs::copy_options::overwrite_existing);
    EXPECT_EQ(S_OK, Register(module));
    EXPECT_EQ(TextValue(module.wstring()), ReadStored(kServerKey, L""));
    fs::remove_all(folder);
}

TEST_F(Registering, MakesTheClassCreatableByTheEnginesList) {
    ASSERT_EQ(S_OK, Register());
    const CComInitialization com;
    const std::vector<RegisteredPlugin> plugins = ReadRegisteredPlugins();
    ASSERT_EQ(1u, plugins.size());
    EXPECT_TRUE(plugins[0].IsEnabled());
    EXPECT_EQ(L"TslIfDbActionLog", plugins[0].moduleId);
    EXPECT_EQ(ModulePath().wstring(), plugins[0].path);
    CComPtr<ITslPluginDb2> plugin;
    ASSERT_EQ(S_OK, CreateRegisteredPlugin(plugins[0], plugin));
    EXPECT_EQ(S_OK, plugin->Reserved1());
}

// A volatile key takes no lasting one below it: a failure of the registry's own.
TEST_F(Registering, StopsWhenTheListCannotBeMade) {
    MakeKey(kHostKey, REG_OPTION_VOLATILE);
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE), Register());
    EXPECT_FALSE(KeyExists(kListKey));
    ExpectNoClass();
}

TEST_F(Registering, StopsWhenTheEntryCannotBeMade) {
    MakeKey(kHostKey);
    MakeKey(kListKey, REG_OPTION_VOLATILE);
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE), Register());
    EXPECT_TRUE(KeysBelow(kListKey).empty());
    ExpectNoClass();
}

TEST_F(Registering, NeedsNoCom) {
    APTTYPE apartment{};
    APTTYPEQUALIFIER qualifier{};
    ASSERT_EQ(CO_E_NOTINITIALIZED, CoGetApartmentType(&apartment, &qualifier));
    EXPECT_EQ(S_OK, Register());
    EXPECT_EQ(S_OK, Unregister());
}

} // namespace tsl::test
