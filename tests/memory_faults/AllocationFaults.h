// Makes the allocations of one module, the component or its engine, fail: the one of a chosen
// number or all from there on. What others allocate, the test among them, is never touched.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/support/ImportHook.h"

namespace tsl::test {

enum class Extent { One, AllFromThenOn };

// Stands in for every allocating function in the module's import table while it lives. At most one
// lives at a time; the module is called by one thread at a time.
class AllocationFaults {
public:
    // REQUIRES: the module stays loaded meanwhile.
    explicit AllocationFaults(HMODULE module);
    AllocationFaults(const AllocationFaults&) = delete;
    AllocationFaults& operator=(const AllocationFaults&) = delete;
    ~AllocationFaults();

    // From now on allocations are counted from 1, and those of the extent fail.
    void Arm(int number, Extent extent);
    // Counts them, lets all succeed, and notes which function each is asked of.
    void ArmNoting();
    void Disarm();

    // Since the last arming: how many were asked for, how many failed, and which function the first
    // that failed was asked of; empty when none failed.
    int Asked() const;
    int Injected() const;
    std::string FirstFailed() const;

    // What was noted, in order.
    const std::vector<const char*>& Noted() const;

    // The functions that are stood in for, as far as the module imports them.
    std::vector<std::string> Names() const;

private:
    template <class Import>
    void Replace(HMODULE module);

    std::vector<std::string> m_names;
    std::vector<std::unique_ptr<ImportHook>> m_hooks;
};

} // namespace tsl::test
