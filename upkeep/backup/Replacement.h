// Puts files in the place of others such that all of it can be taken back, and such that a process
// that ends meanwhile leaves under each name the old file or the new one, and the old one kept.
#pragma once

#include <string>
#include <vector>

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

    // Puts what was made for it in the place of the file, also where there is none yet; a folder
    // that lies there counts as one. Throws CFailure, Locked where another program has it open.
    void Replace(const std::wstring& path, const std::wstring& made);

    // Moves the file away, where there is one.
    void SetAside(const std::wstring& path);

    void Finish() noexcept { m_steps.clear(); }

    // False when something could not be taken back: its old file is kept.
    bool TakeBack() noexcept;

    // Empty when nothing was there.
    const std::wstring& KeptFolder() const noexcept { return m_keptFolder; }

private:
    struct Step {
        std::wstring path;
        std::wstring kept; // empty where nothing was there
        bool gone = false; // the old file is only where it is kept
    };

    void MakeKeptFolder();
    Step& AddStep(const std::wstring& path);

    std::wstring m_folder;
    std::wstring m_keptFolder;
    std::vector<Step> m_steps;
};

} // namespace tsl
