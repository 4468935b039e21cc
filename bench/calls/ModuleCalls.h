// Counts the calls that a module makes to functions that it imports. Used by one thread.
#pragma once

#include <list>

#include "bench/calls/CountedCalls.h"
#include "tests/support/ImportHook.h"

namespace tsl::bench {

class CModuleCalls {
public:
    // REQUIRES: the module stays loaded. What it imports is data is left alone.
    explicit CModuleCalls(HMODULE module);

    // Further functions that the module finds by name.
    void* Count(const std::string& name, void* function) { return m_calls.Count(name, function); }

    CallCounts Take() { return m_calls.Take(); }

private:
    // The hooks go before what they lead to.
    CCountedCalls m_calls;
    std::list<test::ImportHook> m_hooks;
};

} // namespace tsl::bench
