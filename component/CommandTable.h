// What the component does: one row per command, each bound to the operation that carries it out.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/ActionLogStore.h"
#include "store/Target.h"

namespace tsl {

// The interface method that a command arrives by.
enum class CommandMethod { Notify, Request, Delete };

// Carries a command out on its target. The container may be null, the result is the caller's own
// pointer; the HRESULT goes back to the host.
using CommandOperation = HRESULT (*)(const CActionLogStore& store, const Target& target,
                                     ITslParamContainer* container, VARIANT* result);

struct Command {
    CommandMethod method;
    UINT64 code;
    const wchar_t* tableName;
    bool parametersRequired;
    CommandOperation operation;
};

// The row of a command; null for an unknown code.
const Command* FindCommand(CommandMethod method, UINT64 code) noexcept;

// Takes the container out of the parameters and carries the command out on its table, under the log
// kind. E_POINTER for missing parameters where they are required; parameters that give no container
// are passed on as none. Any number of threads may run commands on one store, and a host that is
// called meanwhile may run others.
HRESULT RunCommand(const Command& command, const CActionLogStore& store, UINT32 logKind,
                   IUnknown* parameters, VARIANT* result);

} // namespace tsl
