#include "tests/io_faults/FaultFile.h"

namespace tsl::test {

namespace {

FaultFile& Self(sqlite3_file* file) {
    return *reinterpret_cast<FaultFile*>(file);
}

const FaultKind* Meet(sqlite3_file* file, IoCall call) {
    return Self(file).disk->schedule.Meet(call);
}

const sqlite3_io_methods& RealMethods(sqlite3_file* file) {
    return *Self(file).Real()->pMethods;
}

// Closing always works, so that the file can be looked at afterwards.
int Close(sqlite3_file* file) {
    --Self(file).disk->openFiles;
    return RealMethods(file).xClose(Self(file).Real());
}

int Read(sqlite3_file* file, void* data, int size, sqlite3_int64 offset) {
    if (const FaultKind* const fault = Meet(file, IoCall::Read)) return fault->result;
    return RealMethods(file).xRead(Self(file).Real(), data, size, offset);
}

int WriteThrough(FaultFile& self, const void* data, int size, sqlite3_int64 offset) {
    const int result = self.Real()->pMethods->xWrite(self.Real(), data, size, offset);
    if (result != SQLITE_OK) return result;
    if (self.log) self.log->Write(static_cast<size_t>(offset), data, static_cast<size_t>(size));
    self.disk->schedule.CountChange();
    return result;
}

int Write(sqlite3_file* file, const void* data, int size, sqlite3_int64 offset) {
    FaultFile& self = Self(file);
    const FaultKind* const fault = Meet(file, IoCall::Write);
    if (!fault) return WriteThrough(self, data, size, offset);
    if (fault->halfIsWritten && !self.disk->schedule.PowerIsOff()) {
        WriteThrough(self, data, size / 2, offset);
    }
    return fault->result;
}

int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    FaultFile& self = Self(file);
    if (const FaultKind* const fault = Meet(file, IoCall::Truncate)) return fault->result;
    const int result = RealMethods(file).xTruncate(self.Real(), size);
    if (result != SQLITE_OK) return result;
    if (self.log) self.log->Truncate(static_cast<size_t>(size));
    self.disk->schedule.CountChange();
    return result;
}

int Sync(sqlite3_file* file, int flags) {
    FaultFile& self = Self(file);
    if (const FaultKind* const fault = Meet(file, IoCall::Sync)) return fault->result;
    const int result = RealMethods(file).xSync(self.Real(), flags);
    if (result != SQLITE_OK) return result;
    if (!self.disk->liesAboutSyncs) {
        if (self.log) self.log->Sync();
        self.disk->log.SettleDeletions();
    }
    self.disk->schedule.CountChange();
    return result;
}

int FileSize(sqlite3_file* file, sqlite3_int64* size) {
    if (const FaultKind* const fault = Meet(file, IoCall::FileSize)) return fault->result;
    return RealMethods(file).xFileSize(Self(file).Real(), size);
}

int Lock(sqlite3_file* file, int level) {
    if (const FaultKind* const fault = Meet(file, IoCall::Lock)) return fault->result;
    return RealMethods(file).xLock(Self(file).Real(), level);
}

int Unlock(sqlite3_file* file, int level) {
    if (const FaultKind* const fault = Meet(file, IoCall::Unlock)) return fault->result;
    return RealMethods(file).xUnlock(Self(file).Real(), level);
}

int CheckReservedLock(sqlite3_file* file, int* locked) {
    if (const FaultKind* const fault = Meet(file, IoCall::CheckReservedLock)) return fault->result;
    return RealMethods(file).xCheckReservedLock(Self(file).Real(), locked);
}

int FileControl(sqlite3_file* file, int operation, void* argument) {
    return RealMethods(file).xFileControl(Self(file).Real(), operation, argument);
}

int SectorSize(sqlite3_file* file) {
    return RealMethods(file).xSectorSize(Self(file).Real());
}

int DeviceCharacteristics(sqlite3_file* file) {
    return RealMethods(file).xDeviceCharacteristics(Self(file).Real());
}

} // namespace

// Of the first version, which has no shared memory and no mapped files; the component uses neither.
const sqlite3_io_methods kFaultFileMethods = {
    .iVersion = 1,
    .xClose = Close,
    .xRead = Read,
    .xWrite = Write,
    .xTruncate = Truncate,
    .xSync = Sync,
    .xFileSize = FileSize,
    .xLock = Lock,
    .xUnlock = Unlock,
    .xCheckReservedLock = CheckReservedLock,
    .xFileControl = FileControl,
    .xSectorSize = SectorSize,
    .xDeviceCharacteristics = DeviceCharacteristics,
    .xShmMap = nullptr,
    .xShmLock = nullptr,
    .xShmBarrier = nullptr,
    .xShmUnmap = nullptr,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

} // namespace tsl::test
