// The activation context around the load: what it is made from, and that nothing of it stays.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "base/Handle.h"
#include "store/SqliteApi.h"
#include "tests/support/ComponentCopy.h"
#include "tests/support/ImportHook.h"

namespace tsl::test {

namespace {

// The calls of the four functions, which work as ever unless the test makes one fail.
struct ContextCalls {
    decltype(&CreateActCtxW) create = &CreateActCtxW;
    decltype(&ReleaseActCtx) release = &ReleaseActCtx;
    decltype(&ActivateActCtx) activate = &ActivateActCtx;
    decltype(&DeactivateActCtx) deactivate = &DeactivateActCtx;

    bool activationFails = false;
    int made = 0;
    int released = 0;
    int activated = 0;
    int deactivated = 0;
    ACTCTXW request{};
    std::wstring source;
};
ContextCalls* g_contextCalls = nullptr;

HANDLE WINAPI WatchCreateContext(const ACTCTXW* request) {
    g_contextCalls->request = *request;
    g_contextCalls->source = request->lpSource ? request->lpSource : L"";
    const HANDLE context = g_contextCalls->create(request);
    if (context != INVALID_HANDLE_VALUE) ++g_contextCalls->made;
    return context;
}

void WINAPI WatchRelease(HANDLE context) {
    ++g_contextCalls->released;
    g_contextCalls->release(context);
}

BOOL WINAPI WatchActivate(HANDLE context, ULONG_PTR* cookie) {
    if (g_contextCalls->activationFails) return FALSE;
    const BOOL activated = g_contextCalls->activate(context, cookie);
    if (activated) ++g_contextCalls->activated;
    return activated;
}

BOOL WINAPI WatchDeactivate(DWORD flags, ULONG_PTR cookie) {
    ++g_contextCalls->deactivated;
    return g_contextCalls->deactivate(flags, cookie);
}

HANDLE CurrentContext() {
    HANDLE context = nullptr;
    EXPECT_TRUE(GetCurrentActCtx(&context));
    if (context) ReleaseActCtx(context);
    return context;
}

// The value of the next handle that this process gets: free values are used again, so it rises when
// handles are left open.
size_t NextHandle() {
    const CHandle event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    EXPECT_TRUE(event);
    return reinterpret_cast<size_t>(event.Get());
}

class LoadContext : public ::testing::Test {
protected:
    void SetUp() override { g_contextCalls = &m_calls; }
    void TearDown() override { g_contextCalls = nullptr; }

    HRESULT Load(HMODULE module) {
        const ImportHook create("CreateActCtxW", &WatchCreateContext);
        const ImportHook release("ReleaseActCtx", &WatchRelease);
        const ImportHook activate("ActivateActCtx", &WatchActivate);
        const ImportHook deactivate("DeactivateActCtx", &WatchDeactivate);
        return m_engine.Load(module, /*initializeOnly=*/false);
    }

    void ExpectBalance(int contexts, int activations) {
        EXPECT_EQ(contexts, m_calls.made);
        EXPECT_EQ(contexts, m_calls.released);
        EXPECT_EQ(activations, m_calls.activated);
        EXPECT_EQ(activations, m_calls.deactivated);
    }

    ContextCalls m_calls;
    SqliteApi m_engine;
};

} // namespace

TEST_F(LoadContext, IsMadeFromTheModulesManifest) {
    const ComponentCopy copy;
    copy.AddEngine();
    ASSERT_EQ(S_OK, Load(copy.Module()));
    EXPECT_EQ(0x88u, m_calls.request.dwFlags);
    EXPECT_EQ(sizeof(ACTCTXW), m_calls.request.cbSize);
    EXPECT_EQ(MAKEINTRESOURCEW(205), m_calls.request.lpResourceName);
    EXPECT_TRUE(std::filesystem::equivalent(
        m_calls.source, copy.EngineLibrary().parent_path().parent_path() / "TslIfDbActionLog.dll"));
    EXPECT_EQ(nullptr, m_calls.request.lpAssemblyDirectory);
    EXPECT_EQ(nullptr, m_calls.request.lpApplicationName);
    EXPECT_EQ(0, m_calls.request.wProcessorArchitecture);
    EXPECT_EQ(0, m_calls.request.wLangId);
}

TEST_F(LoadContext, IsGoneAfterALoad) {
    const HANDLE before = CurrentContext();
    ASSERT_EQ(S_OK, Load(GetModuleHandleW(nullptr)));
    ExpectBalance(1, 1);
    EXPECT_EQ(before, CurrentContext());
}

TEST_F(LoadContext, IsGoneWhenTheLibraryIsMissing) {
    const ComponentCopy copy;
    copy.AddEngine();
    ASSERT_TRUE(std::filesystem::remove(copy.EngineLibrary()));
    const HANDLE before = CurrentContext();
    ASSERT_EQ(E_FAIL, Load(copy.Module()));
    ExpectBalance(1, 1);
    EXPECT_EQ(before, CurrentContext());
}

TEST_F(LoadContext, ThatCannotBeMadeIsNotReleased) {
    const ComponentCopy copy;
    ASSERT_EQ(E_FAIL, Load(copy.Module()));
    ExpectBalance(0, 0);
}

TEST_F(LoadContext, ThatCannotBeActivatedIsReleasedAndFailsTheLoad) {
    m_calls.activationFails = true;
    ASSERT_EQ(E_FAIL, Load(GetModuleHandleW(nullptr)));
    ExpectBalance(1, 0);
}

// A context need not be a kernel object, so the calls above are the proof for it; this is about the
// files and libraries that a load opens.
TEST(LoadHandles, AreNotLeftOpenByAHundredLoads) {
    const ComponentCopy withoutLibrary;
    withoutLibrary.AddEngine();
    ASSERT_TRUE(std::filesystem::remove(withoutLibrary.EngineLibrary()));
    const ComponentCopy withoutAssembly;
    const auto loadAll = [&] {
        SqliteApi whole;
        EXPECT_EQ(S_OK, whole.Load(GetModuleHandleW(nullptr), /*initializeOnly=*/false));
        SqliteApi failing;
        EXPECT_EQ(E_FAIL, failing.Load(withoutLibrary.Module(), /*initializeOnly=*/false));
        EXPECT_EQ(E_FAIL, failing.Load(withoutAssembly.Module(), /*initializeOnly=*/false));
    };
    constexpr int kTurns = 100;
    loadAll();
    const size_t before = NextHandle();
    for (int turn = 0; turn < kTurns; ++turn)
        loadAll();
    EXPECT_LT(NextHandle(), before + kTurns);

    std::vector<CHandle> leftOpen;
    for (int turn = 0; turn < kTurns; ++turn) {
        leftOpen.emplace_back(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    }
    EXPECT_GE(NextHandle(), before + kTurns) << "open handles do not show";
}

} // namespace tsl::test
