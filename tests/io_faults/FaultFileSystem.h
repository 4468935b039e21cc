// A file system of the engine that passes every call on to the engine's own one for Windows, unless
// the call is to fail, and that knows what a power cut would leave of the files. While it lives it
// is the default of the very engine that the component loads. Used by one thread.
#pragma once

#include <sqlite3.h>

#include "base/LoadedLibrary.h"
#include "tests/io_faults/FaultDisk.h"

namespace tsl::test {

// The engine's DLL, which lies in the folder of its assembly beside the component.
std::filesystem::path EnginePath();

class FaultFileSystem {
public:
    // Throws std::runtime_error.
    FaultFileSystem();
    FaultFileSystem(const FaultFileSystem&) = delete;
    FaultFileSystem& operator=(const FaultFileSystem&) = delete;
    ~FaultFileSystem();

    FaultDisk& Disk() { return m_disk; }

private:
    CLoadedLibrary m_engine;
    sqlite3_vfs* m_real = nullptr;
    sqlite3_vfs m_vfs{};
    FaultDisk m_disk;

    static FaultFileSystem& Self(sqlite3_vfs* vfs);
    static int Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags,
                    int* outFlags);
    static int Delete(sqlite3_vfs* vfs, const char* name, int syncFolder);
    static int Access(sqlite3_vfs* vfs, const char* name, int flags, int* exists);
    static int FullPathname(sqlite3_vfs* vfs, const char* name, int size, char* path);
};

} // namespace tsl::test
