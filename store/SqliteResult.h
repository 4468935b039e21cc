// The one place where results of the engine become HRESULTs. Hosts tell these apart: not to be
// changed.
#pragma once

#include <windows.h>

#include "store/SqliteApi.h"

namespace tsl {

inline constexpr HRESULT kHresultSqliteOk = 0x00041500; // a success, but not S_OK
inline constexpr HRESULT kHresultSqliteFirstError = static_cast<HRESULT>(0x80041600);
inline constexpr HRESULT kHresultSqliteRow = static_cast<HRESULT>(0x80041700);
inline constexpr HRESULT kHresultSqliteDone = static_cast<HRESULT>(0x80041701);

// "Row" and "done" are failures here: whoever expects them turns them into the result of finalizing
// the statement first.
constexpr HRESULT SqliteResultToHresult(int result) noexcept {
    constexpr int kLastError = 26;
    if (result == kSqliteOk) return kHresultSqliteOk;
    if (result >= kSqliteError && result <= kLastError) {
        return kHresultSqliteFirstError + (result - kSqliteError);
    }
    if (result == kSqliteRow) return kHresultSqliteRow;
    if (result == kSqliteDone) return kHresultSqliteDone;
    return E_FAIL;
}

// What an interface method returns: a failure unchanged, any success as S_OK.
constexpr HRESULT SuccessAsOk(HRESULT result) noexcept {
    return FAILED(result) ? result : S_OK;
}

} // namespace tsl
