// A copy of the component in a folder of its own, whose engine can be missing or damaged.
#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

namespace tsl::test {

// Loads the copied component, without any engine beside it. Unloads it and removes the folder when
// it goes. Throws std::runtime_error or std::filesystem::filesystem_error.
class ComponentCopy {
public:
    ComponentCopy();
    ComponentCopy(const ComponentCopy&) = delete;
    ComponentCopy& operator=(const ComponentCopy&) = delete;
    ~ComponentCopy();

    HMODULE Module() const noexcept { return m_module; }
    std::filesystem::path EngineLibrary() const;

    // Puts the engine's assembly beside the component.
    void AddEngine() const;

    // Gives an exported function of the added engine another name, so that nobody finds it.
    void RenameEngineExport(const std::string& name) const;

private:
    std::filesystem::path m_folder;
    HMODULE m_module = nullptr;
};

} // namespace tsl::test
