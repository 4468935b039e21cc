// Hands out record ids from the counter file, across all processes.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"

namespace tsl {

// Issues the next record id and answers it in a new container, which is made when the LogId lock
// has been given back. A store of the older form that could not be converted yet is converted
// first.
//
// The container is only tested for presence: E_POINTER without one, before anything is touched.
// Failures of the conversion and of the counter file are returned and nothing is issued; failures
// of the answer (E_POINTER for a null result) are returned after the id was issued, which leaves a
// gap.
HRESULT NextRecordId(const CActionLogStore& store, ITslParamContainer* container, VARIANT* result);

} // namespace tsl
