// A hundred thousand calls of every kind, failing ones and short-lived objects among them, leave no
// handle and no memory behind.
#include <functional>

#include "tests/component/HostDouble.h"
#include "tests/content_move/PluginMoveFixture.h"
#include "tests/query/SinkClass.h"
#include "tests/support/FullForm.h"
#include "tests/support/UsageOverTime.h"

namespace tsl::test {

namespace {

// The same few records are replaced, asked for and deleted over and over, so that the work does not
// grow.
constexpr UINT32 kRecords = 40;
constexpr UINT32 kUser = 7;

} // namespace

class MixedCalls : public PluginMoveTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginMoveTest::SetUp());
        MakeCounterFile();
        m_sinkRegistration.emplace(CLSID_TslContentPropertySink, &m_sink);
    }
    void TearDown() override {
        Plugin().SetHost(nullptr);
        EXPECT_EQ(0u, m_host.Held());
        EXPECT_EQ(0u, m_sink.Held());
        m_sinkRegistration.reset();
        PluginMoveTest::TearDown();
    }

    // Calls in turn, each of which must answer as it should.
    void Make(int calls) {
        for (int call = 0; call < calls; ++call) {
            const size_t kind = static_cast<size_t>(call) % m_kinds.size();
            m_recordId = 1 + static_cast<UINT32>(call) / 3 % kRecords;
            const Kind& made = m_kinds[kind];
            ASSERT_EQ(made.expected, made.call()) << "call " << call << ", kind " << kind;
            store.calls.clear();
            m_sink.texts.clear();
        }
    }
    size_t Kinds() const { return m_kinds.size(); }

private:
    struct Kind {
        HRESULT expected;
        std::function<HRESULT()> call;
    };

    HRESULT Record(std::wstring_view name, UINT32 userId = kUser) {
        ContainerBuilder action = Action(m_recordId, name);
        action.Ui4(kKeyUserId, userId)
            .Array<ULONGLONG>(kKeyUllValues, {900, 901})
            .Array<LONG>(kKeyIntValues, {1, 2, 3})
            .Texts(kKeyStringValues, {L"some text", L"and more"});
        return Plugin().Notify(kCommandRecordAction, action);
    }
    HRESULT RecordWrongType() {
        return Plugin().Notify(kCommandRecordAction,
                               Action(m_recordId, L"playItem").Text(kKeyIntValues, L"no numbers"));
    }
    HRESULT Ask(UINT64 code, IUnknown* parameters) {
        CVariant answer;
        return Plugin().Request(code, parameters, nullptr, answer.Address());
    }
    HRESULT Delete(const ContainerBuilder& request) {
        return Plugin().Delete(kCommandDeleteRecords, request);
    }
    static ContainerBuilder Ids(std::initializer_list<LONG> ids) {
        CVariant list = MakeArray<LONG>(std::vector<LONG>(ids));
        list.Address()->vt = VT_ARRAY | VT_UI4;
        return ContainerBuilder().Set(kKeyRecordIds, std::move(list));
    }
    HRESULT CreateObject() { return Library().CreatePlugin()->SetHost(&m_host); }
    HRESULT AskForUnknownClass() {
        CComPtr<IUnknown> found;
        return Library().ClassObject(CLSID_TslParamContainer, IID_IClassFactory, found.PutVoid());
    }
    // One that the range queries find.
    HRESULT RecordFirst() {
        m_recordId = 1;
        return Record(L"playItem");
    }

    const std::vector<Kind> m_kinds{
        {S_OK, [&] { return Record(L"playItem"); }},
        {S_OK, [&] { return Ask(kCommandNextRecordId, ContainerBuilder()); }},
        {S_OK, [&] { return RecordFirst(); }},
        {S_OK, [&] { return Ask(kCommandQueryIds, ContainerBuilder().Ui4(kKeyUserId, kUser)); }},
        {S_OK,
         [&] {
             return Ask(kCommandQueryIds,
                        ContainerBuilder().Ui4(kKeyUserId, kUser).Ui4(kKeyFirstRecordId, 1));
         }},
        {S_OK, [&] { return Ask(kCommandQueryRecords, Ids({1, 2, 3, 70000})); }},
        {S_OK, [&] { return Record(L"deleteItem", 1); }},
        {S_OK, [&] { return Ask(kCommandQueryAllIds, ContainerBuilder()); }},
        {S_OK,
         [&] {
             return Ask(kCommandTakeRecord, ContainerBuilder().Ui8(kKeyRecordToTake, m_recordId));
         }},
        {S_OK, [&] { return Delete(ContainerBuilder().Ui8(kKeyRecordToTake, m_recordId)); }},
        {S_OK,
         [&] {
             return Delete(ContainerBuilder()
                               .Ui4(kKeyUserId, kUser)
                               .Ui4(kKeyFirstRecordId, m_recordId)
                               .Ui4(kKeyLastRecordId, m_recordId));
         }},
        {S_OK,
         [&] { return Delete(ContainerBuilder().Ui4(kKeyUserId, kUser).Date(kKeyEndTime, 1)); }},
        {S_OK, [&] { return Record(L"veSettingReset"); }},
        {S_OK, [&] { return Notify(m_recordId); }},
        {S_OK, [&] { return Plugin().SetRecordingEnabled(2); }},
        {S_OK, [&] { return Record(L"userLocation"); }},
        {S_OK, [&] { return Delete(ContainerBuilder().Ui8(kKeyRecordToTake, m_recordId)); }},
        {S_OK, [&] { return Plugin().SetRecordingEnabled(1); }},
        {S_OK, [&] { return Plugin().SetHost(&m_host); }},
        {S_FALSE, [&] { return Plugin().SetHost(nullptr); }},
        {S_OK, [&] { return CreateObject(); }},
        // Calls that fail.
        {E_INVALIDARG, [&] { return RecordWrongType(); }},
        {E_NOTIMPL, [&] { return Plugin().Notify(1, nullptr); }},
        {E_POINTER, [&] { return Ask(kCommandQueryIds, nullptr); }},
        {E_POINTER, [&] { return Ask(kCommandNextRecordId, nullptr); }},
        {E_INVALIDARG,
         [&] { return Ask(kCommandQueryIds, ContainerBuilder().Ui4(kKeyUserId, 4711)); }},
        {CLASS_E_CLASSNOTAVAILABLE, [&] { return AskForUnknownClass(); }},
    };

    UINT32 m_recordId = 1;
    HostDouble m_host;
    SinkClass m_sink;
    std::optional<ClassRegistration> m_sinkRegistration;
};

TEST_F(MixedCalls, LeaveNoHandleAndNoMemoryBehind) {
    const int calls = InForm(1000, 50000);
    ASSERT_NO_FATAL_FAILURE(Make(static_cast<int>(Kinds()) * 20));
    // A block kept by each call of a single kind would be seen.
    UsageOverTime usage(SmallestLeak::OfBlocks(static_cast<size_t>(calls) / Kinds()));
    usage.Repeat([&] { Make(calls); });
    ASSERT_FALSE(HasFatalFailure());
    Measured("rounds of " + std::to_string(calls) + " mixed calls: " + usage.ExpectFlat());
}

} // namespace tsl::test
