// A database that is open to be looked at and stays as it is. What the engine would change to read
// it, by rolling an interrupted change back or making files of its own, happens to a copy.
#pragma once

#include <optional>

#include "upkeep/Connection.h"
#include "upkeep/TemporaryDatabase.h"

namespace tsl {

class CExaminedDatabase {
public:
    // Nobody writes to the file from here to the end; where a copy is looked at, not even the lock
    // of the hosts is needed any more. One is made of a large file too, so that hosts need not wait
    // for long. Throws CSqliteError for what the engine refuses, and CFailure.
    CExaminedDatabase(const std::wstring& path, bool alwaysCopy);

    const CConnection& Connection() const {
        return *m_connection; // NOLINT(bugprone-unchecked-optional-access): the constructor opens
                              // it
    }
    bool IsCopy() const { return m_copy.has_value(); }
    // Whether a change had to be rolled back, which was done in the copy.
    bool WasInterrupted() const { return m_interrupted; }

private:
    void OpenInPlace(const std::wstring& path);
    void OpenCopy(const std::wstring& path);

    // The connection goes before the copy.
    std::optional<CTemporaryDatabase> m_copy;
    std::optional<CConnection> m_connection;
    bool m_interrupted = false;
};

} // namespace tsl
