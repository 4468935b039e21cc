#include "tests/untrusted_folder/Links.h"

#include <stdexcept>

#include "base/Handle.h"
#include "tests/support/EveryoneAccess.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// Wine's translation of a path into one of the system below; null on Windows.
using UnixName = char*(CDECL*)(const wchar_t*);

UnixName FindUnixName() {
    return reinterpret_cast<UnixName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
}

std::wstring UnixPath(const fs::path& path) {
    // What is not there yet has no name; its folder has.
    char* const folder = FindUnixName()(path.parent_path().c_str());
    if (!folder) throw std::runtime_error("no name in the system below");
    const std::wstring name = fs::path(folder).wstring() + L"/" + path.filename().wstring();
    HeapFree(GetProcessHeap(), 0, folder);
    return name;
}

// Whether anything has the name, were it a link to nowhere, which is neither listed nor opened.
bool IsTaken(const fs::path& path) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    const CHandle made(CreateFileW(path.c_str(), GENERIC_WRITE | DELETE, 0, nullptr, CREATE_NEW,
                                   FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    return !made && GetLastError() == ERROR_FILE_EXISTS;
}

// Runs a program of the system below, which cannot be waited for.
template <class IsDone>
void RunBelow(const wchar_t* program, const std::wstring& arguments, IsDone isDone) {
    std::wstring command = std::wstring(program) + L' ' + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(program, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started)) {
        throw std::runtime_error("a program of the system below cannot be started");
    }
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    const ULONGLONG start = GetTickCount64();
    while (!isDone()) {
        if (GetTickCount64() - start > 10'000)
            throw std::runtime_error("no link was made or removed");
        Sleep(2);
    }
}

} // namespace

const char* NameOf(LinkKind kind) {
    switch (kind) {
    case LinkKind::Symbolic:
        return "symbolic link";
    case LinkKind::Dangling:
        return "link to nowhere";
    default:
        return "hard link";
    }
}

void MakeSymbolicLink(const fs::path& link, const fs::path& target) {
    if (FindUnixName()) {
        return RunBelow(L"Z:\\bin\\ln",
                        L"-sn \"" + UnixPath(target) + L"\" \"" + UnixPath(link) + L"\"",
                        [&] { return fs::exists(link); });
    }
    DWORD flags = SYMBOLIC_LINK_FLAG_ALLOW_UNPRIVILEGED_CREATE;
    if (fs::is_directory(target)) flags |= SYMBOLIC_LINK_FLAG_DIRECTORY;
    if (!CreateSymbolicLinkW(link.c_str(), target.c_str(), flags)) {
        throw std::runtime_error("no right to make a symbolic link");
    }
}

void MakeDanglingLink(const fs::path& link, const fs::path& target) {
    // A link to nowhere cannot be seen, so it leads somewhere at first.
    WriteBytes(target, {});
    MakeSymbolicLink(link, target);
    fs::remove(target);
}

void RemoveLink(const fs::path& link) {
    if (!IsTaken(link)) return;
    if (FindUnixName()) {
        return RunBelow(L"Z:\\bin\\rm", L"-f \"" + UnixPath(link) + L"\"",
                        [&] { return !IsTaken(link); });
    }
    fs::remove(link);
}

ForeignFolder::ForeignFolder(const Bytes& secret)
    : m_folder(fs::temp_directory_path() / L"tsl_untrusted_folder_tests") {
    fs::remove_all(m_folder);
    fs::create_directories(m_folder);
    WriteBytes(Secret(), secret);
    m_content = Content();
    if (NamesEveryone(Secret())) {
        throw std::runtime_error("these tests need a server with umask 077");
    }
}

ForeignFolder::ForeignFolder(bool hasTree) : ForeignFolder(Bytes{'s', 'e', 'c', 'r', 'e', 't'}) {
    if (!hasTree) return;
    for (const wchar_t* const leaf : {L"TslIfDbActionLog", L"UID"}) {
        fs::create_directories(m_folder / leaf);
        fs::create_directories(m_folder / L"Tessaly" / leaf);
    }
    m_content = Content();
}

ForeignFolder::~ForeignFolder() {
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

void ForeignFolder::PlantAt(const fs::path& place, LinkKind kind) const {
    fs::create_directories(place.parent_path());
    fs::remove_all(place);
    switch (kind) {
    case LinkKind::Symbolic:
        return MakeSymbolicLink(place, Secret());
    case LinkKind::Dangling:
        return MakeDanglingLink(place, m_folder / L"nothing");
    case LinkKind::Hard:
        if (!CreateHardLinkW(place.c_str(), Secret().c_str(), nullptr)) {
            throw std::runtime_error("no hard link");
        }
    }
}

std::map<fs::path, Bytes> ForeignFolder::Content() const {
    std::map<fs::path, Bytes> content;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(m_folder))
        content[entry.path()] = entry.is_regular_file() ? ReadBytes(entry.path()) : Bytes();
    return content;
}

void ForeignFolder::ExpectUntouched() const {
    EXPECT_EQ(m_content, Content());
    EXPECT_FALSE(NamesEveryone(m_folder)) << "the folder was opened to everyone";
    if (fs::exists(Secret())) {
        EXPECT_FALSE(NamesEveryone(Secret())) << "the file was opened to everyone";
    }
}

} // namespace tsl::test
