#include "upkeep/TemporaryDatabase.h"

#include <filesystem>

#include "base/Hresult.h"
#include "files/Paths.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/StorePaths.h"

namespace tsl {

namespace {

std::wstring TemporaryPath() {
    return NameBeside((std::filesystem::temp_directory_path() / L"tslhost-").wstring());
}

// One that is not there yet, and that the engine may open beside.
CHandle Make(const std::wstring& path, DWORD flags = 0) {
    OpenedFile opened = OpenChecked(path, GENERIC_READ | GENERIC_WRITE, kShareAll, CREATE_NEW,
                                    FILE_ATTRIBUTE_TEMPORARY | flags);
    if (!opened.file) throw FailureToOpen("cannot make", path, opened);
    return std::move(opened.file);
}

void Copy(const std::wstring& from, const CHandle& source, const std::wstring& to,
          const CHandle& copy) {
    ReadBlocks(source, from, [&](const void* block, DWORD size) {
        DWORD written = 0;
        if (!WriteFile(copy.Get(), block, size, &written, /*overlapped=*/nullptr))
            throw CFailure("cannot write", to, HresultFromLastError());
    });
}

} // namespace

CTemporaryDatabase::CTemporaryDatabase()
    : m_path(TemporaryPath()), m_file(Make(m_path, FILE_FLAG_DELETE_ON_CLOSE)) {}

CTemporaryDatabase::CTemporaryDatabase(const std::wstring& database) : CTemporaryDatabase() {
    // What throws from here on runs the destructor: the object has been made.
    Copy(database, OpenStoreFile("cannot read", database, GENERIC_READ, kShareAll), m_path, m_file);
    for (const wchar_t* const suffix : kCompanionSuffixes) {
        const std::wstring companion = database + suffix;
        const OpenedFile opened = OpenChecked(companion, GENERIC_READ, kShareAll, OPEN_EXISTING);
        if (IsMissing(opened)) continue;
        if (!opened.file) throw FailureToOpen("cannot read", companion, opened);
        // The engine deletes it, which it can only where nobody holds it.
        Copy(companion, opened.file, m_path + suffix, Make(m_path + suffix));
    }
}

CTemporaryDatabase::~CTemporaryDatabase() {
    for (const wchar_t* const suffix : kCompanionSuffixes)
        DiscardFile(m_path + suffix);
    DiscardFile(m_path + kLogIndexSuffix);
}

} // namespace tsl
