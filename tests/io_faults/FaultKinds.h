// What can go wrong when the engine uses a file.
#pragma once

#include <sqlite3.h>

namespace tsl::test {

// The calls of the engine that can fail.
enum class IoCall {
    Open,
    Delete,
    Access,
    Read,
    Write,
    Truncate,
    Sync,
    FileSize,
    Lock,
    Unlock,
    CheckReservedLock,
};
inline constexpr size_t kIoCalls = 11;

struct FaultKind {
    const char* name;
    IoCall call;
    // What the engine is told.
    int result;
    // The first half of what a failed write holds gets into the file.
    bool halfIsWritten = false;
};

// The first kind of each call is what it answers once the power is off.
inline constexpr FaultKind kFaultKinds[] = {
    {"write", IoCall::Write, SQLITE_IOERR_WRITE},
    {"short write", IoCall::Write, SQLITE_IOERR_WRITE, /*halfIsWritten=*/true},
    {"full disk", IoCall::Write, SQLITE_FULL},
    {"sync", IoCall::Sync, SQLITE_IOERR_FSYNC},
    {"truncate", IoCall::Truncate, SQLITE_IOERR_TRUNCATE},
    {"delete", IoCall::Delete, SQLITE_IOERR_DELETE},
    {"open", IoCall::Open, SQLITE_CANTOPEN},
    {"lock", IoCall::Lock, SQLITE_IOERR_LOCK},
    {"unlock", IoCall::Unlock, SQLITE_IOERR_UNLOCK},
    {"check of a lock", IoCall::CheckReservedLock, SQLITE_IOERR_CHECKRESERVEDLOCK},
    {"read", IoCall::Read, SQLITE_IOERR_READ},
    {"file size", IoCall::FileSize, SQLITE_IOERR_FSTAT},
    {"access", IoCall::Access, SQLITE_IOERR_ACCESS},
};

// Someone else has the file. Kept apart: the component waits for readers at a commit.
inline constexpr FaultKind kBusyLock = {"busy lock", IoCall::Lock, SQLITE_BUSY};

} // namespace tsl::test
