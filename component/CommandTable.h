// What the component does: one row per command, each bound to the operation that carries it out.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"

namespace tsl {

// The interface method that a command arrives by.
enum class CommandMethod { Notify, Request, Delete };

// Carries a command out on the table that was selected for it. The container may be null, the
// result is the caller's own pointer; the HRESULT goes back to the host.
using CommandOperation = HRESULT (*)(CActionLogStore& store, ITslParamContainer* container,
                                     VARIANT* result);

struct Command {
    CommandMethod method;
    UINT64 code;
    const wchar_t* tableName;
    bool parametersRequired;
    CommandOperation operation;
};

// The row of a command; null for an unknown code.
const Command* FindCommand(CommandMethod method, UINT64 code) noexcept;

// Selects the command's table, takes the container out of the parameters and carries the command
// out. E_POINTER for missing parameters where they are required; parameters that give no container
// are passed on as none.
HRESULT RunCommand(const Command& command, CActionLogStore& store, IUnknown* parameters,
                   VARIANT* result);

} // namespace tsl
