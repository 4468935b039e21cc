// Every file that is delivered: what an attacker would look for in it, and who it says it is.
#include <windows.h>

#include <winver.h>

#include "tests/integration/PeFile.h"

namespace tsl::test {

class DeliveredFile : public testing::TestWithParam<const char*> {
protected:
    static std::filesystem::path Path() { return ProgramFolder() / GetParam(); }
};

TEST_P(DeliveredFile, IsLoadedAtRandomAddressesAndRunsNoData) {
    const WORD flags = PeFile(Path()).Headers().OptionalHeader.DllCharacteristics;
    EXPECT_TRUE(flags & IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA);
    EXPECT_TRUE(flags & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE);
    EXPECT_TRUE(flags & IMAGE_DLLCHARACTERISTICS_NX_COMPAT);
    EXPECT_FALSE(PeFile(Path()).Headers().FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED)
        << "without relocations it cannot be moved";
}

TEST_P(DeliveredFile, HasNoSectionThatIsWrittenAndRun) {
    const std::vector<IMAGE_SECTION_HEADER> sections = PeFile(Path()).Sections();
    EXPECT_FALSE(sections.empty());
    for (const IMAGE_SECTION_HEADER& section : sections) {
        const DWORD both = IMAGE_SCN_MEM_WRITE | IMAGE_SCN_MEM_EXECUTE;
        EXPECT_NE(both, section.Characteristics & both)
            << std::string(reinterpret_cast<const char*>(section.Name), sizeof section.Name);
    }
}

TEST_P(DeliveredFile, SaysWhatItIs) {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(Path().c_str(), &ignored);
    ASSERT_GT(size, 0u) << "no version resource";
    std::vector<char> block(size);
    ASSERT_TRUE(GetFileVersionInfoW(Path().c_str(), 0, size, block.data()));
    const auto text = [&](const wchar_t* name) {
        void* found = nullptr;
        UINT length = 0;
        const std::wstring query = std::wstring(L"\\StringFileInfo\\040904b0\\") + name;
        return VerQueryValueW(block.data(), query.c_str(), &found, &length)
                   ? std::wstring(static_cast<const wchar_t*>(found))
                   : std::wstring();
    };
    EXPECT_EQ(L"Corvane Corporation", text(L"CompanyName"));
    EXPECT_EQ(Path().filename().wstring(), text(L"OriginalFilename"));
    EXPECT_NE(L"", text(L"FileDescription"));
    EXPECT_NE(L"", text(L"FileVersion"));
}

INSTANTIATE_TEST_SUITE_P(Of, DeliveredFile,
                         testing::Values("TslIfDbActionLog.dll", "tslhost.exe",
                                         "Corvane.Nimbra.SQLiteEngine\\SQLite3.dll"));

} // namespace tsl::test
