// Answers with a list of record ids: one container per id.
#pragma once

#include <windows.h>

#include <oaidl.h>

#include <span>

namespace tsl {

// S_OK with the list packed into the result. E_POINTER without a result; E_INVALIDARG, with the
// result untouched, for no ids. An id whose container cannot be made is left out; the status of the
// last id decides whether the rest is handed out.
HRESULT AnswerIds(std::span<const UINT32> ids, VARIANT* result);

// The same for the list of all ids of a user, with 64-bit values. Ids that are 0 are left out.
HRESULT AnswerAllIds(std::span<const UINT64> ids, VARIANT* result);

} // namespace tsl
