// Which command each method accepts, and what it demands of its arguments.
#include <algorithm>
#include <array>

#include "component/host/CommandCodes.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

namespace {

enum class Method { Notify, Request, Delete };

struct KnownCommand {
    Method method;
    UINT64 code;
};

// Written out once more: these numbers are the contract.
constexpr std::array<KnownCommand, 7> kKnownCommands = {{
    {Method::Notify, 0x0200000103000000},
    {Method::Request, 0x0400000102000000},
    {Method::Request, 0x0400000801000000},
    {Method::Request, 0x0400000901000000},
    {Method::Request, 0x0400000b01000000},
    {Method::Request, 0x0400000501000000},
    {Method::Delete, 0x0400000a01000000},
}};

constexpr UINT64 kQueries[] = {0x0400000801000000, 0x0400000901000000, 0x0400000b01000000,
                               0x0400000501000000};

bool IsKnown(Method method, UINT64 code) {
    return std::ranges::any_of(kKnownCommands, [&](const KnownCommand& known) {
        return known.method == method && known.code == code;
    });
}

// A query for the container that fails, or that succeeds with nothing.
class NoContainer final : public IUnknown {
public:
    explicit NoContainer(HRESULT answer, void* left = nullptr) : m_answer(answer), m_left(left) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** result) override {
        *result = m_left;
        return m_answer;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;

private:
    HRESULT m_answer;
    void* m_left;
};

} // namespace

class CommandTable : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    }

    // Also proves that a failing Request leaves the caller's result as it was.
    HRESULT Call(Method method, UINT64 code, IUnknown* parameters) {
        if (method == Method::Notify) return Plugin().Notify(code, parameters);
        if (method == Method::Delete) return Plugin().Delete(code, parameters);
        CVariant answer = CVariant::FromUi4(42);
        const HRESULT result = Plugin().Request(code, parameters, nullptr, answer.Address());
        if (FAILED(result)) {
            EXPECT_EQ(VT_UI4, answer.Type());
            EXPECT_EQ(42u, answer.Get().ulVal);
        }
        return result;
    }
};

TEST_F(CommandTable, RefusesEveryCommandOnTheOtherMethods) {
    const ContainerBuilder parameters;
    for (const KnownCommand& known : kKnownCommands) {
        for (const Method method : {Method::Notify, Method::Request, Method::Delete}) {
            if (method == known.method) continue;
            SCOPED_TRACE(known.code);
            EXPECT_EQ(E_NOTIMPL, Call(method, known.code, parameters));
            EXPECT_EQ(E_NOTIMPL, Call(method, known.code, nullptr));
        }
    }
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
}

TEST_F(CommandTable, RefusesCodesThatDifferInOneBit) {
    const ContainerBuilder parameters;
    for (const KnownCommand& known : kKnownCommands) {
        for (int bit = 0; bit < 64; ++bit) {
            const UINT64 code = known.code ^ (UINT64{1} << bit);
            if (IsKnown(known.method, code)) continue;
            SCOPED_TRACE(code);
            EXPECT_EQ(E_NOTIMPL, Call(known.method, code, parameters));
        }
    }
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
}

TEST_F(CommandTable, RefusesUnknownCodesBeforeItLooksAtTheArguments) {
    for (const UINT64 code : {UINT64{0}, ~UINT64{0}, UINT64{0x0400000102000001}}) {
        SCOPED_TRACE(code);
        for (const Method method : {Method::Notify, Method::Request, Method::Delete})
            EXPECT_EQ(E_NOTIMPL, Call(method, code, nullptr));
        EXPECT_EQ(E_NOTIMPL, Plugin().Request(code, nullptr, nullptr, nullptr));
    }
}

TEST_F(CommandTable, NotifyWithoutParametersRecordsNothingAndSucceeds) {
    EXPECT_EQ(S_OK, Plugin().Notify(0x0200000103000000, nullptr));
    EXPECT_EQ(0, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(0, CountRows(ReplayPath(), kReplayRows));
}

TEST_F(CommandTable, NotifyWithParametersThatGiveNoContainerRecordsNothingAndSucceeds) {
    for (const HRESULT answer : {E_NOINTERFACE, E_FAIL, S_OK}) {
        NoContainer parameters(answer);
        EXPECT_EQ(S_OK, Plugin().Notify(0x0200000103000000, &parameters));
        EXPECT_EQ(1u, parameters.references);
    }
    EXPECT_EQ(0, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(0, CountRows(ReplayPath(), kReplayRows));
}

TEST_F(CommandTable, WhateverAFailedQueryLeavesBehindIsNoContainer) {
    ScriptedContainer trap(Action(1, L"playItem").Get());
    NoContainer parameters(E_NOINTERFACE, static_cast<ITslParamContainer*>(&trap));
    EXPECT_EQ(S_OK, Plugin().Notify(0x0200000103000000, &parameters));
    EXPECT_TRUE(trap.keysRead.empty());
    EXPECT_EQ(1u, trap.References());
    EXPECT_EQ(E_POINTER, Call(Method::Request, 0x0400000102000000, &parameters));
    EXPECT_EQ(1u, trap.References());
}

TEST_F(CommandTable, NextRecordIdWithoutContainerFailsAndTouchesNothing) {
    EXPECT_EQ(E_POINTER, Call(Method::Request, 0x0400000102000000, nullptr));
    NoContainer parameters(E_NOINTERFACE);
    EXPECT_EQ(E_POINTER, Call(Method::Request, 0x0400000102000000, &parameters));
    EXPECT_EQ(1u, parameters.references);
    EXPECT_FALSE(std::filesystem::exists(CounterPath()));
}

TEST_F(CommandTable, NextRecordIdWithoutResultFails) {
    const ContainerBuilder parameters;
    EXPECT_EQ(E_POINTER, Plugin().Request(0x0400000102000000, parameters, nullptr, nullptr));
    EXPECT_EQ(E_POINTER, Plugin().Request(0x0400000102000000, nullptr, nullptr, nullptr));
}

TEST_F(CommandTable, QueriesAndDeletionWithoutParametersFail) {
    for (const UINT64 query : kQueries) {
        SCOPED_TRACE(query);
        EXPECT_EQ(E_POINTER, Call(Method::Request, query, nullptr));
        EXPECT_EQ(E_POINTER, Plugin().Request(query, nullptr, nullptr, nullptr));
    }
    EXPECT_EQ(E_POINTER, Call(Method::Delete, 0x0400000a01000000, nullptr));
}

TEST_F(CommandTable, ThirdArgumentOfRequestIsNotRead) {
    const ContainerBuilder parameters;
    CVariant answer;
    EXPECT_EQ(S_OK, Plugin().Request(0x0400000102000000, parameters, reinterpret_cast<IUnknown*>(1),
                                     answer.Address()));
    EXPECT_EQ(VT_UNKNOWN, answer.Type());
}

TEST_F(CommandTable, ContainersAreReleasedByTheEndOfTheCall) {
    ScriptedContainer container(Action(1, L"playItem").Get());
    EXPECT_EQ(S_OK, Plugin().Notify(0x0200000103000000, &container));
    EXPECT_EQ(1u, container.References());
    EXPECT_FALSE(container.keysRead.empty());
    EXPECT_EQ(S_OK, Call(Method::Request, 0x0400000102000000, &container));
    EXPECT_EQ(1u, container.References());
    Call(Method::Delete, 0x0400000a01000000, &container);
    EXPECT_EQ(1u, container.References());
    for (const UINT64 query : kQueries) {
        Call(Method::Request, query, &container);
        EXPECT_EQ(1u, container.References());
    }
}

TEST_F(CommandTable, SwitchedOffRecordingStopsNotifyOnly) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(0));
    ScriptedContainer container(Action(1, L"playItem").Get());
    EXPECT_EQ(E_NOTIMPL, Plugin().Notify(0x0200000103000000, &container));
    EXPECT_TRUE(container.keysRead.empty());
    EXPECT_EQ(E_NOTIMPL, Plugin().Notify(0x0200000103000000, nullptr));
    EXPECT_EQ(1u, NextId());
    EXPECT_EQ(E_POINTER, Call(Method::Delete, 0x0400000a01000000, nullptr));
}

} // namespace tsl::test
