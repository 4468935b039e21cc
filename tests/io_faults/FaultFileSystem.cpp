#include "tests/io_faults/FaultFileSystem.h"

#include <stdexcept>

#include "tests/io_faults/FaultFile.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

fs::path PathOf(const char* utf8) {
    return reinterpret_cast<const char8_t*>(utf8);
}

} // namespace

fs::path EnginePath() {
    return ProgramFolder() / L"Corvane.Nimbra.SQLiteEngine" / L"SQLite3.dll";
}

FaultFileSystem::FaultFileSystem() : m_engine(EnginePath().wstring()) {
    if (!m_engine) throw std::runtime_error("the engine is missing");
    m_real = m_engine.Find<decltype(&sqlite3_vfs_find)>("sqlite3_vfs_find")("win32");
    if (!m_real) throw std::runtime_error("the engine has no file system for Windows");
    m_vfs = *m_real;
    m_vfs.iVersion = 1; // without the later calls, which the engine can do without
    m_vfs.szOsFile += static_cast<int>(sizeof(FaultFile));
    m_vfs.pNext = nullptr;
    m_vfs.zName = "io_faults";
    m_vfs.pAppData = this;
    m_vfs.xOpen = Open;
    m_vfs.xDelete = Delete;
    m_vfs.xAccess = Access;
    m_vfs.xFullPathname = FullPathname;
    const auto enroll = m_engine.Find<decltype(&sqlite3_vfs_register)>("sqlite3_vfs_register");
    if (enroll(&m_vfs, /*makeDefault=*/1) != SQLITE_OK) {
        throw std::runtime_error("the engine does not take the file system");
    }
}

FaultFileSystem::~FaultFileSystem() {
    m_engine.Find<decltype(&sqlite3_vfs_unregister)>("sqlite3_vfs_unregister")(&m_vfs);
    m_engine.Find<decltype(&sqlite3_vfs_register)>("sqlite3_vfs_register")(m_real,
                                                                           /*makeDefault=*/1);
}

FaultFileSystem& FaultFileSystem::Self(sqlite3_vfs* vfs) {
    return *static_cast<FaultFileSystem*>(vfs->pAppData);
}

int FaultFileSystem::Open(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags,
                          int* outFlags) {
    FaultFileSystem& self = Self(vfs);
    file->pMethods = nullptr;
    if (const FaultKind* const fault = self.m_disk.schedule.Meet(IoCall::Open)) {
        return fault->result;
    }
    auto* const opened = reinterpret_cast<FaultFile*>(file);
    const int result = self.m_real->xOpen(self.m_real, name, opened->Real(), flags, outFlags);
    if (result != SQLITE_OK) return result;
    opened->disk = &self.m_disk;
    opened->log = name ? &self.m_disk.log.Of(PathOf(name)) : nullptr;
    opened->base.pMethods = &kFaultFileMethods;
    ++self.m_disk.openFiles;
    ++self.m_disk.filesOpened;
    return result;
}

int FaultFileSystem::Delete(sqlite3_vfs* vfs, const char* name, int syncFolder) {
    FaultFileSystem& self = Self(vfs);
    if (const FaultKind* const fault = self.m_disk.schedule.Meet(IoCall::Delete)) {
        return fault->result;
    }
    const int result = self.m_real->xDelete(self.m_real, name, syncFolder);
    if (result != SQLITE_OK) return result;
    self.m_disk.log.Delete(PathOf(name));
    self.m_disk.schedule.CountChange();
    return result;
}

int FaultFileSystem::Access(sqlite3_vfs* vfs, const char* name, int flags, int* exists) {
    FaultFileSystem& self = Self(vfs);
    if (const FaultKind* const fault = self.m_disk.schedule.Meet(IoCall::Access)) {
        *exists = 0;
        return fault->result;
    }
    return self.m_real->xAccess(self.m_real, name, flags, exists);
}

int FaultFileSystem::FullPathname(sqlite3_vfs* vfs, const char* name, int size, char* path) {
    FaultFileSystem& self = Self(vfs);
    return self.m_real->xFullPathname(self.m_real, name, size, path);
}

} // namespace tsl::test
