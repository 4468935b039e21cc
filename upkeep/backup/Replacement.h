// Puts files in the place of others such that all of it can be taken back, and such that a process
// that ends meanwhile leaves both the old file and the new one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "console/NewFile.h"

namespace tsl {

class CReplacement {
public:
    // The old files are kept below this folder, on the same disk, in one that is made for the first
    // of them: "before-restore-20261121-153000".
    explicit CReplacement(const std::wstring& folder);
    CReplacement(const CReplacement&) = delete;
    CReplacement& operator=(const CReplacement&) = delete;
    // Takes all back unless it was finished.
    ~CReplacement();

    // How the old file is kept. A copy leaves no moment without a file; what is large is moved away
    // right before the new one comes, since a file has one name only.
    enum class Keep { Copied, Moved };

    // Puts what was made for it in the place of the file, also where there is none yet; a folder
    // that lies there counts as one. The new file stays held until all is finished. Throws
    // CFailure: Locked where another program has it open, Denied for a link.
    void Replace(const std::wstring& path, CNewFile& made, Keep keep);

    // Moves the file away, where there is one.
    void SetAside(const std::wstring& path);

    void Finish() noexcept;

    // False when something could not be taken back: its old file is kept.
    bool TakeBack() noexcept;

    // Empty when nothing was there.
    const std::wstring& KeptFolder() const noexcept { return m_keptFolder; }

private:
    std::wstring KeptPathOf(const std::wstring& path);
    void MakeKeptFolder();

    std::wstring m_folder;
    std::wstring m_keptFolder;
    CHandle m_keptHeld; // nobody puts another folder in its place
    std::vector<CNewFile*> m_placed;
    std::vector<std::function<bool()>> m_undo; // of each step that was made
};

} // namespace tsl
