// Files of the store that are larger than any that the component writes: they are not read, and ids
// do not begin anew.
#include <winioctl.h>

#include "base/Handle.h"
#include "files/UserIdList.h"
#include "tests/support/PluginFixture.h"
#include "tests/untrusted_folder/Calls.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

const HRESULT kTooLarge = HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE);

// The bytes, followed by so many zeros that take no room on the disk.
void WriteSparse(const fs::path& path, const Bytes& bytes, LONGLONG size) {
    WriteBytes(path, bytes);
    const CHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    DWORD returned = 0;
    DeviceIoControl(file.Get(), FSCTL_SET_SPARSE, nullptr, 0, nullptr, 0, &returned, nullptr);
    LARGE_INTEGER end{};
    end.QuadPart = size;
    ASSERT_TRUE(SetFilePointerEx(file.Get(), end, nullptr, FILE_BEGIN));
    ASSERT_TRUE(SetEndOfFile(file.Get()));
}

} // namespace

class BoundedReading : public PluginTest {};

TEST_F(BoundedReading, OfTheCounterGivesNoIdBeyond64Kilobytes) {
    MakeCounterFile(L"00000041");
    const Bytes line = ReadBytes(CounterPath());
    for (const LONGLONG size : {LONGLONG{64} * 1024 + 1, LONGLONG{2} << 30, (LONGLONG{4} << 30) - 1,
                                (LONGLONG{4} << 30) + 24}) {
        SCOPED_TRACE(size);
        ASSERT_NO_FATAL_FAILURE(WriteSparse(CounterPath(), line, size));
        const ULONGLONG start = GetTickCount64();
        const auto results = MakeAllCalls(Plugin());
        EXPECT_EQ(kTooLarge, results.at("next id"));
        EXPECT_LT(GetTickCount64() - start, 5000u);
        EXPECT_EQ(static_cast<uintmax_t>(size), fs::file_size(CounterPath()));
    }
    // What is as large as that and no more is read.
    ASSERT_NO_FATAL_FAILURE(WriteSparse(CounterPath(), line, 64 * 1024));
    EXPECT_EQ(S_OK, MakeAllCalls(Plugin()).at("next id"));
}

TEST_F(BoundedReading, OfTheUserListGivesNobodysIdBeyond32Megabytes) {
    MakeCounterFile();
    const fs::path list = StoreFolder().parent_path() / L"UID" / kUserIdFileName;
    fs::create_directories(list.parent_path());
    const Bytes line = Utf16FileBytes(L"0x00000005\tS-1-1-0\t\r\n");
    const LONGLONG size = (LONGLONG{32} << 20) + 1;
    ASSERT_NO_FATAL_FAILURE(WriteSparse(list, line, size));
    const auto results = MakeAllCalls(Plugin());
    EXPECT_EQ(kTooLarge, results.at("all ids of the system's user"));
    EXPECT_EQ(kTooLarge, results.at("delete one of the system's user"));
    EXPECT_EQ(static_cast<uintmax_t>(size), fs::file_size(list));
}

} // namespace tsl::test
