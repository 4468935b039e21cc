// The list of ids that records are asked for by, whatever the host puts into its VARIANT.
#include "tests/query/QueryFixture.h"

namespace tsl::test {

namespace {

// Hands out a copy of a VARIANT as it stands, also one that a container could not keep.
class RawContainer final : public ITslParamContainer {
public:
    VARIANT value{};
    HRESULT result = S_OK;
    // The VARIANT handed out owns its content, so each call makes it anew.
    SAFEARRAY* (*makeArray)() = nullptr;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** found) override {
        *found = static_cast<ITslParamContainer*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* /*code*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 /*code*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* made) override {
        if (key != kIdList) return S_FALSE;
        *made = value;
        if (makeArray) made->parray = makeArray();
        return result;
    }
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 /*key*/, VARIANT* /*value*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 /*key*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* /*keys*/) override { return E_NOTIMPL; }
};

// One-dimensional, zeroed but for its first element's lowest byte, which is 1.
SAFEARRAY* MakeOnes(VARTYPE type, LONG lowerBound, ULONG count) {
    SAFEARRAYBOUND bound{count, lowerBound};
    SAFEARRAY* const array = SafeArrayCreate(type, 1, &bound);
    void* data = nullptr;
    if (array && count > 0 && SUCCEEDED(SafeArrayAccessData(array, &data))) {
        *static_cast<unsigned char*>(data) = 1;
        SafeArrayUnaccessData(array);
    }
    return array;
}

} // namespace

class RecordListArgument : public QueryTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(QueryTest::SetUp());
        StoreLog({{.id = 1}, {.id = 2}});
    }
    void ExpectRecordOne(ITslParamContainer& request) {
        CVariant answer = CVariant::FromUi4(42);
        ASSERT_EQ(S_OK, Ask(kAskForRecords, &request, answer.Address()));
        const AnswerContainers records = Unpack(answer.Get());
        ASSERT_EQ(1u, records.size());
        EXPECT_EQ(1u, ValueOf(*records[0], 0x0200002200000013).Get().ulVal);
    }
};

TEST_F(RecordListArgument, MissingIsNoAnswer) {
    ExpectNoAnswer(S_OK, kAskForRecords, ContainerBuilder());
}

TEST_F(RecordListArgument, ThatCannotBeReadIsReported) {
    ScriptedContainer request(ContainerBuilder().Array<LONG>(kIdList, {1}).Get());
    request.getResults[kIdList] = E_ACCESSDENIED;
    ExpectNoAnswer(E_ACCESSDENIED, kAskForRecords, &request);
    EXPECT_EQ(1u, request.References());
}

TEST_F(RecordListArgument, OfATypeThatSharesNoBitIsNoAnswer) {
    for (const VARTYPE type : {VT_R4, VT_BSTR}) {
        RawContainer request;
        request.value.vt = static_cast<VARTYPE>(VT_ARRAY | type);
        request.makeArray = type == VT_R4 ? [] { return MakeOnes(VT_R4, 0, 1); }
                                          : [] { return SafeArrayCreateVector(VT_BSTR, 0, 1); };
        ExpectNoAnswer(S_OK, kAskForRecords, &request);
    }
}

TEST_F(RecordListArgument, OfAnyTypeThatSharesABitAndHasItsSizeIsTaken) {
    RawContainer request;
    request.value.vt = VT_ARRAY | VT_UI4;
    request.makeArray = [] { return MakeOnes(VT_UI4, 0, 1); };
    ExpectRecordOne(request);
    request.value.vt = VT_ARRAY | VT_I4;
    request.makeArray = [] { return MakeOnes(VT_I4, 0, 1); };
    ExpectRecordOne(request);
    request.value.vt = VT_ARRAY | VT_INT;
    request.makeArray = [] { return MakeOnes(VT_INT, 0, 1); };
    ExpectRecordOne(request);
}

TEST_F(RecordListArgument, OfAnotherElementSizeHoldsNoIds) {
    struct Case {
        VARTYPE type;
        SAFEARRAY* (*make)();
    };
    const Case cases[] = {
        {VT_UI1, [] { return MakeOnes(VT_UI1, 0, 8); }},
        {VT_UI2, [] { return MakeOnes(VT_UI2, 0, 8); }},
        {VT_UI8, [] { return MakeOnes(VT_UI8, 0, 8); }},
        {VT_DATE, [] { return MakeOnes(VT_DATE, 0, 8); }},
        {VT_BOOL, [] { return MakeOnes(VT_BOOL, 0, 8); }},
        {VT_UNKNOWN, [] { return SafeArrayCreateVector(VT_UNKNOWN, 0, 8); }},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.type);
        RawContainer request;
        request.value.vt = static_cast<VARTYPE>(VT_ARRAY | one.type);
        request.makeArray = one.make;
        ExpectNoAnswer(S_OK, kAskForRecords, &request);
    }
}

// The VARIANT says an array of ids, the array itself holds something else.
TEST_F(RecordListArgument, ThatBeliesItsArrayHoldsNoIds) {
    SAFEARRAY* (*const lies[])() = {[] { return MakeOnes(VT_UI1, 0, 4); },
                                    [] { return MakeOnes(VT_UI8, 0, 4); },
                                    [] { return SafeArrayCreateVector(VT_BSTR, 0, 1); },
                                    [] {
                                        SAFEARRAYBOUND bounds[] = {{2, 0}, {2, 0}};
                                        return SafeArrayCreate(VT_UI4, 2, bounds);
                                    }};
    for (const auto lie : lies) {
        RawContainer request;
        request.value.vt = VT_ARRAY | VT_UI4;
        request.makeArray = lie;
        ExpectNoAnswer(S_OK, kAskForRecords, &request);
    }
}

TEST_F(RecordListArgument, ThatIsANullArrayHoldsNoIds) {
    RawContainer request;
    request.value.vt = VT_ARRAY | VT_UI4;
    ExpectNoAnswer(S_OK, kAskForRecords, &request);
}

TEST_F(RecordListArgument, ThatIsAnEmptyArrayHoldsNoIds) {
    RawContainer request;
    request.value.vt = VT_ARRAY | VT_UI4;
    request.makeArray = [] { return MakeOnes(VT_UI4, 0, 0); };
    ExpectNoAnswer(S_OK, kAskForRecords, &request);
}

TEST_F(RecordListArgument, ThatIsNoArrayHoldsNoIds) {
    ExpectNoAnswer(S_OK, kAskForRecords, ContainerBuilder().Ui4(kIdList, 1));
    ExpectNoAnswer(S_OK, kAskForRecords, ContainerBuilder().Ui8(kIdList, 1));
    RawContainer reference;
    reference.value.vt = VT_BYREF | VT_ARRAY | VT_UI4;
    SAFEARRAY* const array = MakeOnes(VT_UI4, 0, 1);
    SAFEARRAY* held = array;
    reference.value.pparray = &held;
    ExpectNoAnswer(S_OK, kAskForRecords, &reference);
    SafeArrayDestroy(array);
}

TEST_F(RecordListArgument, MayStartAtAnyLowerBound) {
    RawContainer request;
    request.value.vt = VT_ARRAY | VT_UI4;
    request.makeArray = [] { return MakeOnes(VT_UI4, 5, 1); };
    ExpectRecordOne(request);
    request.makeArray = [] { return MakeOnes(VT_UI4, -3, 2); };
    ExpectRecordOne(request);
}

TEST_F(RecordListArgument, ReportedAsAbsentIsNoAnswerWhateverItHolds) {
    RawContainer request;
    request.value.vt = VT_ARRAY | VT_UI4;
    request.makeArray = [] { return MakeOnes(VT_UI4, 0, 1); };
    request.result = S_FALSE;
    ExpectNoAnswer(S_OK, kAskForRecords, &request);
}

} // namespace tsl::test
