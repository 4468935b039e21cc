// Random calls of every method of the real DLL: any command, any container, any result. Each has
// one of the answers that the host is promised, and leaves nothing behind.
#include <optional>

#include "tests/hostile_input/HostileCalls.h"
#include "tests/hostile_input/HostileContainer.h"
#include "tests/hostile_input/HostileStore.h"
#include "tests/hostile_input/InputLoop.h"
#include "tests/query/SinkClass.h"
#include "tests/support/ContentStoreDouble.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

constexpr UINT32 kLogKinds[] = {0, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 3, 4, 5, 6, 7, 8, 16, 0xFFFFFFFF};

// Much slower than the others.
constexpr size_t kInputsPerHugeText = 1000;
constexpr size_t kHugeText = 5'000'000; // ten megabytes
constexpr size_t kInputsPerHugeList = 1000;
constexpr size_t kHugeList = 260'000; // more than the engine takes

constexpr size_t kInputsPerCheck = 50;

constexpr HRESULT kTooManyIds = static_cast<HRESULT>(0x80041600);

struct Call {
    Command command;
    IUnknown* parameters = nullptr;
    bool isContainer = false;
    bool hasHugeList = false;
    UsedResult* result = nullptr;
};

} // namespace

class HostileCalls : public HostileStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(HostileStoreTest::SetUp());
        m_contentStoreClass.emplace(CLSID_TslContentStore, &m_contentStores);
        m_sinkClass.emplace(CLSID_TslContentPropertySink, &m_sinks);
        m_contentStore.foundItems = [this](VARIANT& answer) {
            m_values.FillFor(VT_ARRAY | VT_UI8, *m_chance, answer);
            return m_chance->OneIn(8) ? m_chance->Of(kHostFailures) : S_OK;
        };
        for (const UINT64 id : {UINT64{0}, UINT64{1}, ~UINT64{0}}) {
            m_contentStore.itemProperties[id] = [this](VARIANT& answer) {
                m_values.FillFor(VT_ARRAY | VT_UNKNOWN, *m_chance, answer);
                return m_chance->OneIn(8) ? m_chance->Of(kHostFailures) : S_OK;
            };
        }
    }
    void TearDown() override {
        EXPECT_EQ(0u, m_sinks.Held());
        m_sinkClass.reset();
        m_contentStoreClass.reset();
        HostileStoreTest::TearDown();
        EXPECT_EQ(0u, m_contentStore.Held());
    }

    void SwitchRecording(UINT32 kind) {
        m_recording = kind;
        EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(kind));
    }

    void TryCall(Chance& chance, size_t input) {
        m_chance = &chance;
        PrepareHost();
        if (chance.OneIn(8)) SwitchRecording(chance.Of(kLogKinds));
        if (chance.OneIn(32)) SetAnyHost();
        ContainerBuilder request = AnyRequest(chance);
        Call call;
        call.command = AnyCommand(chance);
        if (input % kInputsPerHugeText == 0) AddHugeTexts(request, call);
        if (input % kInputsPerHugeList == 1) AddHugeList(request, call);
        HostileContainer container(request, m_values, chance);
        ChooseParameters(call, request, container, chance);
        std::optional<UsedResult> result;
        if (!chance.OneIn(16)) call.result = &result.emplace(m_values, chance);
        Make(call);
        result.reset();

        EXPECT_EQ(0u, container.Held());
        request = ContainerBuilder();
        EXPECT_EQ(0, Containers().live);
        // The plug-in keeps the content store, and nothing else.
        EXPECT_LE(m_contentStore.Held(), 1u);
        EXPECT_EQ(1u, m_values.Object().References());
        if (input % kInputsPerHugeText == 0) Wipe();
        if (input % kInputsPerCheck == 0) ExpectNothingIsInUse();
    }

    void ExpectItStillWorks() {
        Containers().Restart();
        SwitchRecording(1);
        Wipe();
        ExpectAGoodActionIsRecorded(Plugin());
    }

private:
    // Now and then, what the host makes for the component fails.
    void PrepareHost() {
        Containers().Restart();
        if (m_chance->OneIn(8)) {
            Containers().failures[static_cast<int>(1 + m_chance->Below(12))] =
                m_chance->Of(kHostFailures);
        }
        m_contentStore.calls.clear();
        m_contentStore.results.clear();
        if (m_chance->OneIn(4)) {
            m_contentStore.results[1 + m_chance->Below(6)] = m_chance->Of(kHostFailures);
        }
        m_sinks.texts.clear();
        m_sinks.putResult = m_sinks.creationResult = S_OK;
        if (m_chance->OneIn(4)) m_sinks.creationResult = m_chance->Of(kHostFailures);
        if (m_chance->OneIn(4)) m_sinks.putResult = m_chance->Of(kHostFailures);
    }

    // The object is no host, so nothing is kept.
    void SetAnyHost() {
        EXPECT_EQ(S_OK, Plugin().SetHost(&m_values.Object()));
        EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
        EXPECT_EQ(S_OK, Plugin().Reserved1());
        EXPECT_EQ(S_OK, Plugin().Reserved2());
    }

    static void AddHugeTexts(ContainerBuilder& request, Call& call) {
        call.command = {Method::Notify, kCommandRecordAction};
        request.Text(kKeyActionName, std::wstring(kHugeText, L'n'));
        request.Texts(kKeyStringValues, {std::wstring(kHugeText, L'%')});
    }

    static void AddHugeList(ContainerBuilder& request, Call& call) {
        call.command = {Method::Request, kCommandQueryRecords};
        call.hasHugeList = true;
        CVariant ids = MakeFilledArray<LONG>(kHugeList, [](std::span<LONG>) {});
        ids.Address()->vt = VT_ARRAY | VT_UI4;
        request.Set(kKeyRecordIds, std::move(ids));
    }

    void ChooseParameters(Call& call, ContainerBuilder& request, HostileContainer& container,
                          Chance& chance) {
        switch (chance.Below(24)) {
        case 0:
            return; // none
        case 1:
            call.parameters = &m_values.Object(); // no container
            return;
        case 2:
        case 3:
        case 4:
        case 5:
            call.parameters = request.Get().Get();
            call.isContainer = true;
            return;
        default:
            call.parameters = &container;
            call.isContainer = !container.IsNone();
            return;
        }
    }

    void Make(const Call& call) {
        VARIANT* const result = call.result ? call.result->Address() : nullptr;
        switch (call.command.method) {
        case Method::Notify:
            ExpectPromisedAnswer(call, Plugin().Notify(call.command.code, call.parameters));
            return;
        case Method::Delete:
            ExpectPromisedAnswer(call, Plugin().Delete(call.command.code, call.parameters));
            return;
        case Method::Request:
            const HRESULT answer =
                Plugin().Request(call.command.code, call.parameters, &m_values.Object(), result);
            ExpectPromisedAnswer(call, answer);
            if (call.result) ExpectPromisedResult(call, answer);
            return;
        }
    }

    void ExpectPromisedAnswer(const Call& call, HRESULT answer) const {
        const std::optional<HRESULT> only = TheOnlyAnswer(call);
        if (only) {
            EXPECT_EQ(*only, answer) << Describe(call);
            return;
        }
        const bool cannotBeReplaced =
            call.result && !call.result->CanBeReplaced() &&
            (answer == DISP_E_ARRAYISLOCKED || answer == DISP_E_BADVARTYPE);
        EXPECT_TRUE(answer == S_OK || answer == E_INVALIDARG || IsHostFailure(answer) ||
                    cannotBeReplaced || (call.hasHugeList && answer == kTooManyIds))
            << std::hex << answer << " for " << Describe(call);
    }

    static bool IsHostFailure(HRESULT answer) {
        return std::ranges::find(kHostFailures, answer) != std::end(kHostFailures);
    }

    // Where the arguments leave no choice.
    std::optional<HRESULT> TheOnlyAnswer(const Call& call) const {
        if (!call.command.IsKnown()) return E_NOTIMPL;
        if (call.command.method == Method::Notify) {
            if (m_recording == 0) return E_NOTIMPL;
            return call.isContainer ? std::nullopt : std::optional(S_OK);
        }
        if (!call.parameters) return E_POINTER;
        if (call.command.method == Method::Delete) {
            return call.isContainer ? std::nullopt : std::optional(E_INVALIDARG);
        }
        // The list of all ids takes no arguments.
        const bool takesContainer = call.command.code != kCommandQueryAllIds;
        if (!call.result || (takesContainer && !call.isContainer)) return E_POINTER;
        return std::nullopt;
    }

    // A failure leaves the result alone, and so does a success without an answer.
    static void ExpectPromisedResult(const Call& call, HRESULT answer) {
        if (call.result->IsAsBefore() || call.result->WasLost()) return;
        EXPECT_EQ(S_OK, answer) << "the result was touched";
        const VARTYPE type = call.result->Type();
        const bool expected =
            call.command.code == kCommandNextRecordId
                ? type == VT_UNKNOWN
                : type == (VT_ARRAY | VT_UNKNOWN) ||
                      (type == VT_EMPTY && call.command.code == kCommandQueryRecords);
        EXPECT_TRUE(expected) << "type " << type << " for " << Describe(call);
    }

    static std::string Describe(const Call& call) {
        const char* const method = call.command.method == Method::Notify    ? "Notify"
                                   : call.command.method == Method::Request ? "Request"
                                                                            : "Delete";
        char text[100];
        std::snprintf(text, sizeof text, "%s 0x%016llx%s%s", method, call.command.code,
                      call.parameters ? "" : ", no parameters", call.result ? "" : ", no result");
        return text;
    }

    static void Wipe() {
        for (const auto& file : {ActionLogPath(), ReplayPath()})
            std::filesystem::remove(file);
    }

    HostileValues m_values;
    ContentStoreDouble m_contentStore;
    ContentStoreClass m_contentStores{m_contentStore};
    SinkClass m_sinks;
    std::optional<ClassRegistration> m_contentStoreClass;
    std::optional<ClassRegistration> m_sinkClass;
    Chance* m_chance = nullptr;
    UINT32 m_recording = 1;
};

TEST_F(HostileCalls, HavePromisedAnswersAndLeaveNothingBehind) {
    TryInputs("interface calls", InForm<size_t>(2000, 100'000),
              [&](Chance& chance, size_t input) { TryCall(chance, input); });
    ExpectItStillWorks();
}

} // namespace tsl::test
