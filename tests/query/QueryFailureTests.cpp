// What the queries answer to missing pointers, a store that cannot be used, and a missing engine.
// The result is left as it was each time.
#include <algorithm>
#include <thread>

#include "base/Handle.h"
#include "tests/query/QueryFixture.h"
#include "tests/support/EngineSleeps.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

enum class Query { TimeRange, IdRange, WrappedRange, AllIds, Records, Take };

UINT64 Code(Query query) {
    switch (query) {
    case Query::AllIds:
        return kAskForAllIds;
    case Query::Records:
        return 0x0400000901000000;
    case Query::Take:
        return kTake;
    default:
        return 0x0400000801000000;
    }
}

// A request that the query answers when the store is good.
ContainerBuilder Request(Query query) {
    ContainerBuilder request;
    request.Ui4(0x0200002100000013, 1);
    if (query == Query::IdRange) request.Ui4(0x0200001800000013, 1);
    if (query == Query::WrappedRange) {
        request.Ui4(0x0200001800000013, 2).Ui4(0x0200001900000013, 1);
    }
    if (query == Query::Take) request.Ui8(0x0200001100002015, 1);
    if (query == Query::Records) {
        CVariant ids = MakeArray<LONG>(std::vector<LONG>{1});
        ids.Address()->vt = VT_ARRAY | VT_UI4;
        request.Set(0x0200002300002013, std::move(ids));
    }
    return request;
}

class NoContainer final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** result) override {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

std::string Name(const testing::TestParamInfo<Query>& info) {
    const char* const names[] = {"TimeRange", "IdRange", "WrappedRange",
                                 "AllIds",    "Records", "Take"};
    return names[static_cast<int>(info.param)];
}

} // namespace

class QueryFailure : public QueryTest, public testing::WithParamInterface<Query> {
protected:
    void Expect(HRESULT status) {
        ExpectNoAnswer(status, Code(GetParam()), Request(GetParam()));
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
        EXPECT_TRUE(MutexIsFree(kLogIdLock));
        EXPECT_EQ(0, Containers().created);
    }
    // The same request is answered once the store is good.
    void ExpectAnswerAfter() {
        StoreLog({{.id = 1, .user = 1}});
        StoreTaken({{.id = 1, .user = 1, .parameters = "'ullValues={1,2}'"}});
        ExpectAnswer();
    }
    void ExpectAnswer() {
        CVariant answer;
        EXPECT_EQ(S_OK, Ask(Code(GetParam()), Request(GetParam()), answer.Address()));
        EXPECT_EQ(1u, Unpack(answer.Get()).size());
    }
};

INSTANTIATE_TEST_SUITE_P(Of, QueryFailure,
                         testing::Values(Query::TimeRange, Query::IdRange, Query::WrappedRange,
                                         Query::AllIds, Query::Records, Query::Take),
                         Name);

TEST_P(QueryFailure, NullResultIsReported) {
    EXPECT_EQ(E_POINTER, Ask(Code(GetParam()), Request(GetParam()), nullptr));
    ExpectAnswerAfter();
}

TEST_P(QueryFailure, NullParametersAreReported) {
    ExpectNoAnswer(E_POINTER, Code(GetParam()), nullptr);
}

TEST_P(QueryFailure, ParametersWithoutContainerAreReportedUnlessNoneIsNeeded) {
    NoContainer unknown;
    StoreLog({{.id = 1, .user = 1}});
    StoreTaken({{.id = 2, .user = 2}});
    ExpectNoAnswer(GetParam() == Query::AllIds ? E_INVALIDARG : E_POINTER, Code(GetParam()),
                   &unknown);
}

TEST_P(QueryFailure, FolderInPlaceOfTheDatabaseIsReported) {
    fs::create_directories(ActionLogPath());
    Expect(kEngineCannotOpen);
    fs::remove(ActionLogPath());
    ExpectAnswerAfter();
}

TEST_P(QueryFailure, FileThatIsNoDatabaseIsReportedAndLeftAsItIs) {
    MakeStoreFolder();
    const Bytes damaged(4096, 0xA5);
    WriteBytes(ActionLogPath(), damaged);
    Expect(kEngineNotADatabase);
    EXPECT_EQ(damaged, ReadBytes(ActionLogPath()));
    ASSERT_TRUE(fs::remove(ActionLogPath()));
    ExpectAnswerAfter();
}

TEST_P(QueryFailure, DamagedTablePageIsReportedAndLeftAsItIs) {
    StoreLog({{.id = 1, .user = 1}});
    StoreTaken({{.id = 1, .user = 1, .parameters = "'ullValues={1,2}'"}});
    Bytes bytes = ReadBytes(ActionLogPath());
    const size_t pageSize =
        static_cast<size_t>(std::stoi(FileDatabase(ActionLogPath()).Value("PRAGMA page_size")));
    ASSERT_GT(bytes.size(), pageSize);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(pageSize), bytes.end(), 0xA5);
    WriteBytes(ActionLogPath(), bytes);
    Expect(kEngineCorrupt);
    EXPECT_EQ(bytes, ReadBytes(ActionLogPath()));
}

TEST_P(QueryFailure, TableOfAnotherShapeIsReported) {
    MakeStoreFolder();
    {
        const FileDatabase database(ActionLogPath(), /*create=*/true);
        database.Query("CREATE TABLE TslIf_DbActionLog (Text)");
        database.Query("CREATE TABLE TslIf_ContentDeleteProperty (Text)");
    }
    Expect(kEngineError);
    ASSERT_TRUE(fs::remove(ActionLogPath()));
    ExpectAnswerAfter();
}

TEST_P(QueryFailure, DatabaseThatAnotherConnectionWritesIsReportedAsBusy) {
    StoreLog({{.id = 1, .user = 1}});
    StoreTaken({{.id = 1, .user = 1, .parameters = "'ullValues={1,2}'"}});
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN EXCLUSIVE");
    const EngineSleeps sleeps;
    Expect(kEngineBusy);
    EXPECT_EQ(2u, sleeps.Waits(kStatementWait)) << "one for the table, one for the query";
    other.Query("ROLLBACK");
    EXPECT_EQ(1, CountRows(ActionLogPath(), kTakenRows));
}

TEST_P(QueryFailure, WriterThatLeavesInTimeIsWaitedFor) {
    StoreLog({{.id = 1, .user = 1}});
    StoreTaken({{.id = 1, .user = 1, .parameters = "'ullValues={1,2}'"}});
    const FileDatabase other(ActionLogPath());
    other.Query("BEGIN EXCLUSIVE");
    std::thread leaving([&] {
        Sleep(300);
        other.Query("COMMIT");
    });
    ExpectAnswer();
    leaving.join();
}

TEST_P(QueryFailure, DatabaseThatNobodyMayOpenIsReported) {
    StoreLog({{.id = 1, .user = 1}});
    {
        const CHandle owner(CreateFileW(ActionLogPath().c_str(), GENERIC_READ, /*share=*/0, nullptr,
                                        OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
        ASSERT_TRUE(owner);
        const EngineSleeps sleeps;
        Expect(kEngineCannotOpen);
    }
    fs::remove(ActionLogPath());
    ExpectAnswerAfter();
}

TEST_P(QueryFailure, MissingEngineIsReported) {
    const fs::path folder = fs::temp_directory_path() / L"component without engine";
    fs::create_directories(folder);
    fs::copy_file(ProgramFolder() / L"TslIfDbActionLog.dll", folder / L"TslIfDbActionLog.dll",
                  fs::copy_options::overwrite_existing);
    {
        const CPluginLibrary library((folder / L"TslIfDbActionLog.dll").wstring());
        const CComPtr<ITslPluginDb2> plugin = library.CreatePlugin();
        CVariant answer = CVariant::FromUi4(42);
        EXPECT_EQ(E_POINTER, plugin->Request(Code(GetParam()), Request(GetParam()), nullptr,
                                             answer.Address()));
        EXPECT_EQ(VT_UI4, answer.Type());
        EXPECT_EQ(42u, answer.Get().ulVal);
    }
    fs::remove_all(folder);
    EXPECT_FALSE(fs::exists(ActionLogPath()));
}

} // namespace tsl::test
