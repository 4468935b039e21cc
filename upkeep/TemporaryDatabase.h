// A database in the folder for temporary files, under a name that nobody can guess. It goes with
// this, and with the process, however that ends.
#pragma once

#include <string>

#include "base/Handle.h"

namespace tsl {

class CTemporaryDatabase {
public:
    // An empty one.
    CTemporaryDatabase();
    // A copy, with the journal or the log that belongs to it; what comes of these is removed too,
    // but a process that is killed before the engine has settled them leaves them. Throws CFailure.
    explicit CTemporaryDatabase(const std::wstring& database);
    CTemporaryDatabase(const CTemporaryDatabase&) = delete;
    CTemporaryDatabase& operator=(const CTemporaryDatabase&) = delete;
    // REQUIRES: no connection to it is open any more.
    ~CTemporaryDatabase();

    const std::wstring& Path() const noexcept { return m_path; }

private:
    std::wstring m_path;
    CHandle m_file; // deletes it when it is closed
};

} // namespace tsl
