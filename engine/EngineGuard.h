// What the engine believes of a database that anyone may have written: nothing that runs, and no
// file that is not what its name says.
#pragma once

struct sqlite3;

namespace tsl {

// From now on the engine opens what is there by way of PlainFile.h, creates nothing behind a
// link, knows no super-journals (their names are in files that anyone may write, and they are
// deleted), and shares no memory with other processes. Returns the engine's result. For all
// connections of the engine; once. sharesDeletion: what is open can be moved and deleted by whoever
// holds it too, as makers of new and of temporary databases do.
int GuardFiles(bool sharesDeletion = false) noexcept;

// Switches off what a schema can have the engine do on this connection: triggers, views, functions
// in what the schema says or a statement asks, schemas that are edited, extensions, and values
// beyond 64 MB. A database with a write-ahead log is brought back to a rollback journal where
// nobody else is in it. Returns the engine's result.
int DistrustSchema(sqlite3* connection) noexcept;

// Ends statements that have kept the processor busy for so long.
int LimitWork(sqlite3* connection, unsigned seconds) noexcept;

} // namespace tsl
