// The prefix that lifts the length limit of paths: when it is put on, and how long it is.
#include <gtest/gtest.h>

#include "files/Paths.h"

namespace tsl::test {

namespace {

enum class Force { kNo, kYes };
enum class Kind { kFile, kDirectory };

std::wstring Prefixed(std::wstring_view path, Force force, Kind kind = Kind::kFile) {
    return LongPathPrefix(path, force == Force::kYes, kind == Kind::kDirectory);
}

// A path of the given length that begins as told.
std::wstring Long(std::wstring start, size_t length) {
    start.append(length - start.size(), L'x');
    return start;
}

} // namespace

TEST(LongPathPrefix, BeginsAtTheLimitOfTheKind) {
    struct Case {
        Kind kind;
        size_t length;
        bool prefixed;
    };
    for (const Case& c :
         {Case{Kind::kFile, 4, false}, Case{Kind::kFile, 248, false}, Case{Kind::kFile, 259, false},
          Case{Kind::kFile, 260, true}, Case{Kind::kFile, 261, true},
          Case{Kind::kFile, 40000, true}, Case{Kind::kDirectory, 247, false},
          Case{Kind::kDirectory, 248, true}, Case{Kind::kDirectory, 260, true}}) {
        SCOPED_TRACE(c.length);
        SCOPED_TRACE(c.kind == Kind::kFile ? "file" : "directory");
        const std::wstring drive = Long(L"C:\\", c.length);
        EXPECT_EQ(c.prefixed ? L"\\\\?\\" + drive : drive, Prefixed(drive, Force::kNo, c.kind));
        const std::wstring share = Long(L"\\\\s\\", c.length);
        EXPECT_EQ(c.prefixed ? L"\\\\?\\UNC" + share.substr(1) : share,
                  Prefixed(share, Force::kNo, c.kind));
    }
}

TEST(LongPathPrefix, IsPutOnAnyPathOfFourCharactersWhenForced) {
    struct Case {
        const wchar_t* path;
        const wchar_t* expected;
    };
    for (const Case& c :
         {Case{L"", L""}, Case{L"C", L"C"}, Case{L"C:", L"C:"}, Case{L"C:\\", L"C:\\"},
          Case{L"\\\\s", L"\\\\s"}, Case{L"C:\\x", L"\\\\?\\C:\\x"}, Case{L"name", L"\\\\?\\name"},
          Case{L"\\\\server\\share\\x", L"\\\\?\\UNC\\server\\share\\x"},
          Case{L"\\\\.\\pipe", L"\\\\?\\UNC\\.\\pipe"}, Case{L"\\one", L"\\\\?\\\\one"},
          Case{L"//s/x", L"\\\\?\\//s/x"}}) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(c.expected, Prefixed(c.path, Force::kYes));
        EXPECT_EQ(c.expected, Prefixed(c.path, Force::kYes, Kind::kDirectory));
        EXPECT_EQ(c.path, Prefixed(c.path, Force::kNo));
    }
}

TEST(LongPathPrefix, IsNeverPutOnTwice) {
    for (const wchar_t* const path :
         {L"\\\\?\\", L"\\\\?\\C:\\x", L"\\\\?\\UNC\\server\\share\\x"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(path, Prefixed(path, Force::kYes));
        const std::wstring longPath = Long(path, 300);
        EXPECT_EQ(longPath, Prefixed(longPath, Force::kNo));
        EXPECT_EQ(longPath, Prefixed(longPath, Force::kYes, Kind::kDirectory));
    }
}

TEST(LongPathPrefix, KeepsEveryCodeUnitOfThePath) {
    std::wstring odd = Long(L"C:\\", 300);
    odd[10] = L'\0';
    odd[20] = L'\xD800';
    odd[21] = L'\xDC00';
    odd[30] = L'\xDFFF';
    EXPECT_EQ(L"\\\\?\\" + odd, Prefixed(odd, Force::kNo));
}

TEST(LongPathPrefixLength, IsZeroFourOrSeven) {
    struct Case {
        const wchar_t* path;
        size_t length;
    };
    for (const Case& c : {Case{L"", 0}, Case{L"\\\\?", 0}, Case{L"C:\\x", 0},
                          Case{L"\\\\server\\share", 0}, Case{L"\\\\.\\C:\\x", 0},
                          Case{L"\\??\\C:\\x", 0}, Case{L"x\\\\?\\", 0}, Case{L"\\\\?\\", 4},
                          Case{L"\\\\?\\C:\\x", 4}, Case{L"\\\\?\\UNC", 4}, Case{L"\\\\?\\UNCx", 4},
                          Case{L"\\\\?\\UNC\\", 7}, Case{L"\\\\?\\UNC\\server\\share", 7}}) {
        SCOPED_TRACE(c.path);
        EXPECT_EQ(c.length, LongPathPrefixLength(c.path));
    }
}

} // namespace tsl::test
