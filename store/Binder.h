// Binds the parameters of a statement in their order and stops at the first that the engine
// refuses.
#pragma once

#include "store/Database.h"

namespace tsl {

class CBinder {
public:
    explicit CBinder(CStatement& statement) noexcept : m_statement(statement) {}

    CBinder& Integer(INT64 value) {
        if (Advance()) m_result = m_statement.BindInt64(m_index, value);
        return *this;
    }
    // Null binds SQL NULL. The text must live until the statement is finalized.
    CBinder& Text(const wchar_t* value) {
        if (Advance()) m_result = m_statement.BindText(m_index, value);
        return *this;
    }
    CBinder& Real(double value) {
        if (Advance()) m_result = m_statement.BindDouble(m_index, value);
        return *this;
    }

    // The engine's result: SQLITE_OK when all were taken.
    int Result() const noexcept { return m_result; }

private:
    bool Advance() noexcept {
        ++m_index;
        return m_result == kSqliteOk;
    }

    CStatement& m_statement;
    int m_index = 0;
    int m_result = kSqliteOk;
};

} // namespace tsl
