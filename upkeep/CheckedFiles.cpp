#include "upkeep/CheckedFiles.h"

#include <cstddef>
#include <vector>

#include "base/Hresult.h"
#include "console/Text.h"
#include "files/Paths.h"

namespace tsl {

CFailure FailureToOpen(const char* operation, const std::wstring& path, const OpenedFile& opened) {
    if (!opened.isRefused) return CFailure(operation, path, opened.status);
    return CFailure(ExitCode::Denied, std::string(operation) + " " + ToUtf8(path) + ": it" +
                                          kIsALink + "; " + kRemoveTheLink);
}

bool IsLink(const std::wstring& path) {
    return FolderExists(path) ? OpenCheckedFolder(path).isRefused
                              : OpenChecked(path, /*access=*/0, kShareAll, OPEN_EXISTING).isRefused;
}

bool IsMissing(const OpenedFile& opened) noexcept {
    return opened.status == HresultFromWin32(ERROR_FILE_NOT_FOUND) ||
           opened.status == HresultFromWin32(ERROR_PATH_NOT_FOUND);
}

CHandle OpenStoreFile(const char* operation, const std::wstring& path, DWORD access,
                      DWORD shareMode) {
    OpenedFile opened = OpenChecked(path, access, shareMode, OPEN_EXISTING);
    if (!opened.file) throw FailureToOpen(operation, path, opened);
    return std::move(opened.file);
}

void DiscardFile(const std::wstring& path) noexcept {
    AtBoundary([&] {
        const OpenedFile opened = OpenChecked(path, DELETE, kShareAll, OPEN_EXISTING);
        if (opened.file) DiscardOpened(opened.file);
        return opened.status;
    });
}

void ReadBlocks(const CHandle& file, const std::wstring& path,
                const std::function<void(const void* block, DWORD size)>& take) {
    constexpr DWORD kBlockSize = 1 << 20;
    std::vector<std::byte> block(kBlockSize);
    SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    for (;;) {
        DWORD read = 0;
        if (!ReadFile(file.Get(), block.data(), kBlockSize, &read, /*overlapped=*/nullptr))
            throw CFailure("cannot read", path, HresultFromLastError());
        if (read == 0) return;
        take(block.data(), read);
    }
}

} // namespace tsl
