// The means of the other tests: every allocating import of the component is stood in for, and only
// what was asked for fails.
#include <algorithm>

#include "tests/memory_faults/MemoryFaultFixture.h"

namespace tsl::test {

class AllocationFaultsOfTheComponent : public MemoryFaultTest {};

TEST_F(AllocationFaultsOfTheComponent, StandInForWhateverItImportsToAllocate) {
    const std::vector<std::string> replaced = Faults().Names();
    // One slot of the thread for the runtime, as the module is loaded; and the shell's allocator,
    // which is only asked to free.
    const std::vector<std::string> left = {"TlsAlloc", "SHGetMalloc"};
    int seen = 0;
    for (const std::string& name :
         ImportHook::ImportedNames(GetModuleHandleW(L"TslIfDbActionLog.dll"))) {
        const bool allocates = name.find("lloc") != std::string::npos ||
                               name.find("strdup") != std::string::npos ||
                               name.find("SafeArrayC") != std::string::npos ||
                               name.find("VariantC") == 0 || name.find("CoCreate") == 0;
        if (!allocates || name == "VariantClear" || std::ranges::count(left, name)) continue;
        EXPECT_EQ(1, std::ranges::count(replaced, name)) << name;
        ++seen;
    }
    EXPECT_GE(seen, 7);
    EXPECT_EQ(1, std::ranges::count(replaced, "malloc"));
    EXPECT_EQ(1, std::ranges::count(replaced, "SysAllocStringLen"));
}

TEST_F(AllocationFaultsOfTheComponent, CountItsAllocationsAndNoOthers) {
    Faults().ArmNoting();
    const std::vector<int> notTheComponents(1000);
    const CVariant nor = CVariant::FromText(L"text");
    EXPECT_EQ(0, Faults().Asked());
    EXPECT_EQ(S_OK, Ask(kCommandNextRecordId, ContainerBuilder()));
    EXPECT_GT(Faults().Asked(), 10);
    EXPECT_EQ(0, Faults().Injected());
    const int asked = Faults().Asked();
    Faults().Disarm();
    EXPECT_EQ(S_OK, Ask(kCommandNextRecordId, ContainerBuilder()));
    EXPECT_EQ(asked, Faults().Asked());
}

TEST_F(AllocationFaultsOfTheComponent, FailOneOrAllThatFollow) {
    Faults().Arm(1, Extent::One);
    EXPECT_EQ(E_OUTOFMEMORY, Ask(kCommandNextRecordId, ContainerBuilder()));
    Faults().Disarm();
    EXPECT_EQ(1, Faults().Injected());
    Faults().Arm(1, Extent::AllFromThenOn);
    EXPECT_EQ(E_OUTOFMEMORY, Ask(kCommandNextRecordId, ContainerBuilder()));
    Faults().Disarm();
    EXPECT_GT(Faults().Injected(), 1);
    EXPECT_EQ(Faults().Asked(), Faults().Injected());
}

} // namespace tsl::test
