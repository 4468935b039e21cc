// The manifest of a backup, and the sums in it.
#include "console/Failure.h"
#include "console/NewFile.h"
#include "tests/support/FullForm.h"
#include "tests/support/StoreFixture.h"
#include "tests/upkeep/BackupFixture.h"
#include "upkeep/backup/Manifest.h"

namespace tsl::test {

namespace {

BackupManifest Sample() {
    BackupManifest manifest;
    manifest.time = "2026-11-21T15:30:00Z";
    manifest.maker = "the tests \"1.0\"";
    manifest.files = {{"ualog.db", {2048, Sha256Of("one")}},
                      {"actionLog.txt", {24, Sha256Of("two")}},
                      {"UserIdList.dat", {5'000'000'000, Sha256Of("three")}}};
    manifest.absent = {"uareplay.db"};
    manifest.rows = {{"TslIf_DbActionLog", 600}, {"TslIf_ContentDeleteProperty", 0}};
    manifest.counter = 4294967295u;
    return manifest;
}

ExitCode CodeOf(const std::string& text) {
    return OutcomeOf([&] { ParseManifest(text); }).code;
}

} // namespace

TEST(Sum, IsThatOfTheStandard) {
    EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", Sha256Of(""));
    EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", Sha256Of("abc"));
    EXPECT_EQ("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0",
              Sha256Of(std::string(1'000'000, 'a')));
}

TEST(Sum, OfAFileAndOfItsCopyIsThatOfItsBytes) {
    const auto folder = std::filesystem::temp_directory_path();
    const std::filesystem::path from = folder / L"sum_from";
    const std::filesystem::path to = folder / L"sum_to";
    WriteBytes(to, Bytes(5'000'000, 'z')); // longer than what replaces it
    for (const size_t size : {0u, 1u, (1u << 20) - 1, 1u << 20, (1u << 20) + 1, 3'000'000u}) {
        SCOPED_TRACE(size);
        Bytes bytes(size);
        for (size_t index = 0; index < size; ++index)
            bytes[index] = static_cast<unsigned char>(index * index >> 7);
        WriteBytes(from, bytes);
        const FileSum expected{size, Sha256Of(std::string(bytes.begin(), bytes.end()))};
        EXPECT_EQ(expected, SumOfFile(from.wstring(), Unheard));
        {
            CNewFile copy(to.wstring());
            EXPECT_EQ(expected, CopyAndSum(OpenUnchanging(from.wstring()), from.wstring(),
                                           copy.File(), Unheard));
            copy.Move();
            copy.Keep();
        }
        EXPECT_EQ(bytes, ReadBytes(to));
    }
    std::filesystem::remove(from);
    std::filesystem::remove(to);
}

TEST(Sum, TellsWhichFileIsMissing) {
    const Outcome outcome = OutcomeOf([] { SumOfFile(L"C:\\no such file", Unheard); });
    EXPECT_EQ(ExitCode::Denied, outcome.code);
    EXPECT_THAT(outcome.message, testing::HasSubstr("no such file"));
}

TEST(Manifest, SaysTheSameWhenItIsReadBack) {
    const BackupManifest read = ParseManifest(ManifestText(Sample()));
    EXPECT_EQ(Sample().time, read.time);
    EXPECT_EQ(Sample().maker, read.maker);
    EXPECT_EQ(Sample().absent, read.absent);
    EXPECT_EQ(Sample().rows, read.rows);
    EXPECT_EQ(Sample().counter, read.counter);
    ASSERT_EQ(3u, read.files.size());
    EXPECT_EQ(Sample().files[2].sum, read.Find(L"UserIdList.dat")->sum);
    EXPECT_EQ(nullptr, read.Find(L"uareplay.db"));

    BackupManifest without = Sample();
    without.counter.reset();
    EXPECT_EQ(std::nullopt, ParseManifest(ManifestText(without)).counter);
}

TEST(Manifest, IsVoidWhenAnyByteOfItIsAnother) {
    const std::string whole = ManifestText(Sample());
    for (size_t index = 0; index < whole.size(); ++index) {
        std::string changed = whole;
        changed[index] = static_cast<char>(changed[index] ^ (1 << index % 7));
        ASSERT_EQ(ExitCode::Damaged, CodeOf(changed)) << index << ": " << changed;
    }
}

TEST(Manifest, IsVoidWhenItIsCutOrLonger) {
    const std::string whole = ManifestText(Sample());
    for (size_t size = 0; size < whole.size(); size += InForm<size_t>(7, 1))
        ASSERT_EQ(ExitCode::Damaged, CodeOf(whole.substr(0, size))) << size;
    EXPECT_EQ(ExitCode::Damaged, CodeOf(whole + "\n"));
    EXPECT_EQ(ExitCode::Damaged, CodeOf(whole + "{}"));
}

TEST(Manifest, NamesEachFileOfAStoreOnce) {
    BackupManifest other = Sample();
    other.files[0].name = "..\\ualog.db";
    EXPECT_EQ(ExitCode::Damaged, CodeOf(ManifestText(other)));
    other = Sample();
    other.absent.clear();
    EXPECT_EQ(ExitCode::Damaged, CodeOf(ManifestText(other)));
    other = Sample();
    other.absent = {"ualog.db"};
    EXPECT_EQ(ExitCode::Damaged, CodeOf(ManifestText(other)));
}

TEST(Manifest, OfAnotherKindIsNone) {
    for (const char* const text : {"", "null", "[]", "{}", "17", "\xFF\xFE", "{\"format\":2}",
                                   "{\"format\":1}", "{\"format\":1,\"time\":5}"}) {
        EXPECT_EQ(ExitCode::Damaged, CodeOf(text)) << text;
    }
    EXPECT_EQ(ExitCode::Damaged, CodeOf(std::string(1'000'000, '[')));
}

} // namespace tsl::test
