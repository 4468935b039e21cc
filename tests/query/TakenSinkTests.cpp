// The second text of a taken record goes to the host's property sink, whatever comes of that.
#include <optional>

#include "tests/query/QueryFixture.h"
#include "tests/query/SinkClass.h"

namespace tsl::test {

namespace {

constexpr char kTwoTexts[] =
    "'ullValues={900,901}&intValues={1,2,3}&stringValues={a%2cb,C%3A%5cx%2520y%7e,third}'";

using Texts = std::vector<std::pair<UINT64, std::wstring>>;

} // namespace

class TakenSink : public QueryTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(QueryTest::SetUp());
        StoreTaken({{.id = 5, .user = 1, .parameters = kTwoTexts}});
    }
    void TearDown() override {
        EXPECT_EQ(0u, m_sink.Held()) << "a reference to the sink was not given back";
        m_registration.reset();
        QueryTest::TearDown();
    }
    void Register() { m_registration.emplace(CLSID_TslContentPropertySink, &m_sink); }

    // The record's container is the same whether or not the sink takes the text.
    void ExpectWholeContainer() {
        CVariant answer;
        ASSERT_EQ(S_OK, Ask(kTake, ContainerBuilder().Ui8(kIdToTake, 5), answer.Address()));
        const AnswerContainers records = Unpack(answer.Get());
        ASSERT_EQ(1u, records.size());
        EXPECT_EQ(8u, KeysOf(*records[0]).size());
        EXPECT_EQ(VARIANT_TRUE, ValueOf(*records[0], 0x050020000000000b).Get().boolVal);
        EXPECT_EQ(900u, ValueOf(*records[0], 0x0200001000000015).Get().ullVal);
        EXPECT_EQ(L"a%2cb", TextOf(*records[0], 0x0500202400000008));
        EXPECT_EQ(0, CountRows(ActionLogPath(), kTakenRows));
    }

    SinkClass m_sink;

private:
    std::optional<ClassRegistration> m_registration;
};

TEST_F(TakenSink, IsGivenTheDecodedSecondTextAndTheFirstId) {
    Register();
    ExpectWholeContainer();
    EXPECT_EQ((Texts{{900, L"C:\\x%20y~"}}), m_sink.texts);
}

TEST_F(TakenSink, ThatIsNotRegisteredChangesNothing) {
    ExpectWholeContainer();
}

TEST_F(TakenSink, ThatCannotBeCreatedChangesNothing) {
    Register();
    m_sink.creationResult = E_ACCESSDENIED;
    ExpectWholeContainer();
    EXPECT_TRUE(m_sink.texts.empty());
}

TEST_F(TakenSink, ThatRefusesTheTextChangesNothing) {
    Register();
    m_sink.putResult = E_OUTOFMEMORY;
    ExpectWholeContainer();
    EXPECT_EQ(1u, m_sink.texts.size());
}

TEST_F(TakenSink, IsGivenAnEmptySecondText) {
    Register();
    StoreTaken({{.id = 6, .user = 1, .parameters = "'ullValues={1,2}&stringValues={a,,c}'"}});
    CVariant answer;
    ASSERT_EQ(S_OK, Ask(kTake, ContainerBuilder().Ui8(kIdToTake, 6), answer.Address()));
    EXPECT_EQ((Texts{{1, L""}}), m_sink.texts);
    EXPECT_EQ(VARIANT_TRUE, ValueOf(*Unpack(answer.Get())[0], 0x050020000000000b).Get().boolVal);
}

TEST_F(TakenSink, IsGivenNothingForOneTextOrTooFewIds) {
    Register();
    StoreTaken({{.id = 6, .user = 1, .parameters = "'ullValues={1,2}&stringValues={a}'"},
                {.id = 7, .user = 1, .parameters = "'ullValues={1}&stringValues={a,b}'"}});
    for (const UINT64 id : {6, 7}) {
        CVariant answer;
        ASSERT_EQ(S_OK, Ask(kTake, ContainerBuilder().Ui8(kIdToTake, id), answer.Address()));
    }
    EXPECT_TRUE(m_sink.texts.empty());
}

TEST_F(TakenSink, IsGivenTheTextOfEachRow) {
    Register();
    StoreTaken({{.id = 6, .user = 1, .parameters = "'ullValues={1,2}&stringValues={a,b}'"},
                {.id = 6, .user = 1, .parameters = "'ullValues={3,4}&stringValues={c,d}'"}});
    CVariant answer;
    ASSERT_EQ(S_OK, Ask(kTake, ContainerBuilder().Ui8(kIdToTake, 6), answer.Address()));
    EXPECT_EQ(2u, Unpack(answer.Get()).size());
    EXPECT_EQ((Texts{{1, L"b"}, {3, L"d"}}), m_sink.texts);
}

} // namespace tsl::test
