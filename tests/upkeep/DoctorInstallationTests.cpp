// What an examination says of the registration, the component and the engine.
#include "tests/registration/RegistrationFixture.h"
#include "tests/upkeep/DoctorFixture.h"
#include "upkeep/doctor/InstallationCheck.h"

namespace tsl::test {

namespace fs = std::filesystem;

class DoctorOfInstallation : public RegistrationTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(RegistrationTest::SetUp());
        fs::create_directories(Elsewhere());
    }
    void TearDown() override {
        std::error_code error;
        fs::remove_all(Elsewhere(), error);
        RegistrationTest::TearDown();
    }

    static fs::path Elsewhere() { return fs::temp_directory_path() / L"doctor elsewhere"; }
    static fs::path Copy() { return Elsewhere() / L"TslIfDbActionLog.dll"; }

    static Finding Worst(std::string_view subject, const std::wstring& plugin = {}) {
        Findings findings;
        CheckInstallation(plugin, findings);
        EXPECT_EQ(3u, findings.size());
        return WorstOf(findings, subject);
    }
};

TEST_F(DoctorOfInstallation, RegisteredComponentWithItsEngineIsFine) {
    ASSERT_EQ(S_OK, Register());
    EXPECT_OK(Worst("registration"));
    EXPECT_OK(Worst("component"));
    EXPECT_OK(Worst("engine"));
    EXPECT_TRUE(Worst("component").text.starts_with("version 1."));
    EXPECT_TRUE(Worst("engine").text.starts_with("version 3."));
    EXPECT_TRUE(Worst("engine").text.ends_with("\\Corvane.Nimbra.SQLiteEngine\\SQLite3.dll"));
}

TEST_F(DoctorOfInstallation, NoRegistrationIsAWarning) {
    EXPECT_WARNING(Worst("registration"), "not in the engine's list");
    EXPECT_TRUE(Worst("registration").remedy.starts_with("regsvr32 "));
}

TEST_F(DoctorOfInstallation, DisabledPluginIsAWarning) {
    ASSERT_EQ(S_OK, Register());
    WriteStored(kEntryKey, L"Enable", NumberValue(0));
    EXPECT_WARNING(Worst("registration"), "disabled");
}

TEST_F(DoctorOfInstallation, ClassThatIsNotRegisteredIsDamage) {
    MakeKey(kEntryKey);
    EXPECT_DAMAGE(Worst("registration"), "the class is not registered");
}

TEST_F(DoctorOfInstallation, RegisteredPathWithoutAFileIsDamage) {
    ASSERT_EQ(S_OK, Register());
    WriteStored(kServerKey, L"", TextValue(L"C:\\gone\\TslIfDbActionLog.dll"));
    EXPECT_DAMAGE(Worst("registration"), "leads to C:\\gone\\TslIfDbActionLog.dll, which is not");
}

TEST_F(DoctorOfInstallation, AnotherComponentThanTheRegisteredOneIsAWarning) {
    fs::copy_file(ModulePath(), Copy());
    ASSERT_EQ(S_OK, Register());
    EXPECT_WARNING(Worst("component", Copy().wstring()),
                   "hosts use the registered one, version 1.");
}

TEST_F(DoctorOfInstallation, ComponentThatIsMissingOrNoneIsDamage) {
    EXPECT_DAMAGE(Worst("component", Copy().wstring()), "is not there");
    WriteBytes(Copy(), {'t', 'e', 'x', 't'});
    EXPECT_DAMAGE(Worst("component", Copy().wstring()), "is no DLL with a version");
}

TEST_F(DoctorOfInstallation, EngineThatIsMissingOrNoneIsDamage) {
    constexpr wchar_t kAssembly[] = L"Corvane.Nimbra.SQLiteEngine";
    fs::copy_file(ModulePath(), Copy());
    EXPECT_DAMAGE(Worst("engine", Copy().wstring()), ".manifest is not there");
    fs::copy(ProgramFolder() / kAssembly, Elsewhere() / kAssembly);
    EXPECT_OK(Worst("engine", Copy().wstring()));
    WriteBytes(Elsewhere() / kAssembly / L"SQLite3.dll", {'t', 'e', 'x', 't'});
    EXPECT_DAMAGE(Worst("engine", Copy().wstring()), "is no DLL with a version");
    fs::remove(Elsewhere() / kAssembly / L"SQLite3.dll");
    EXPECT_DAMAGE(Worst("engine", Copy().wstring()), "SQLite3.dll is not there");
}

} // namespace tsl::test
