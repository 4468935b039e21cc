// Every action name that is more than a name, in every mix of letters, under every log kind: the
// tables that the action goes to.
#include <algorithm>
#include <cwctype>
#include <map>

#include "tests/dispatch/DispatchFixture.h"

namespace tsl::test {

namespace {

struct NamedAction {
    std::wstring name;
    // The log kinds whose action log does without it.
    std::vector<UINT32> keptOutUnder{};
    bool deletes = false;
    bool moves = false;
    bool resets = false;
};

const NamedAction kActions[] = {
    {.name = L"deleteItem", .deletes = true},
    {.name = L"autoDeleteItem", .deletes = true},
    {.name = L"veSettingReset", .resets = true},
    {.name = L"viaMoveContent", .moves = true},
    {.name = L"showExternalLink", .keptOutUnder = {1, 2, 16}},
    {.name = L"showExternalLinkForTv", .keptOutUnder = {1}},
    {.name = L"showExternalLinkForMusic", .keptOutUnder = {2}},
    {.name = L"showExternalLinkForSns", .keptOutUnder = {16}},
    {.name = L"playItem", .keptOutUnder = {8}},
    {.name = L"skipForwardItem", .keptOutUnder = {8}},
    {.name = L"registerFavoriteTweet", .keptOutUnder = {16}},
    {.name = L"tweet", .keptOutUnder = {16}},
    {.name = L"userLocation"},
    {.name = L"externalApplicationLog"},
    {.name = L"openSettingsPage"},
};

std::wstring Transformed(std::wstring text, std::wint_t (*change)(std::wint_t)) {
    std::ranges::transform(text, text.begin(),
                           [change](wchar_t one) { return static_cast<wchar_t>(change(one)); });
    return text;
}

std::wstring WithFirstLetterFlipped(std::wstring text) {
    text[0] = static_cast<wchar_t>(iswlower(text[0]) ? towupper(text[0]) : towlower(text[0]));
    return text;
}

std::vector<std::wstring> LetterCases(const std::wstring& name) {
    return {name, Transformed(name, towlower), Transformed(name, towupper),
            WithFirstLetterFlipped(name)};
}

// How often a record is in each table.
struct Expectation {
    std::string what;
    int inActionLog;
    int inContentDelete;
    int inReplay;
};

Expectation Expect(const NamedAction& action, const std::wstring& sent, bool named, UINT32 kind) {
    const std::string what(sent.begin(), sent.end());
    if (!named) return {what + ", not sent", 0, 0, 0};
    const bool keptOut = std::ranges::count(action.keptOutUnder, kind) != 0;
    const bool moved = action.moves && sent == action.name;
    return {what, keptOut || moved ? 0 : 1, action.deletes && kind == 1 ? 1 : 0, 1};
}

// Rows by record id.
std::map<UINT32, int> RowsById(const std::string& table) {
    std::map<UINT32, int> rows;
    if (CountRowsOf(table) == 0) return rows;
    for (const Row& row :
         FileDatabase(FileOf(table))
             .Query("SELECT ActionLogId, count(*) FROM " + table + " GROUP BY ActionLogId"))
        rows[static_cast<UINT32>(std::stoul(row[0].value()))] = std::stoi(row[1].value());
    return rows;
}

// Each record as often as expected, and no other record.
void ExpectRows(const std::string& table, const std::map<UINT32, Expectation>& expected,
                int Expectation::* count) {
    std::map<UINT32, int> rows = RowsById(table);
    for (const auto& [id, expectation] : expected) {
        EXPECT_EQ(expectation.*count, rows[id])
            << table << ", record " << id << ": " << expectation.what;
        rows.erase(id);
    }
    EXPECT_TRUE(rows.empty()) << table << " has records that were not reported";
}

} // namespace

class NamesAndKinds : public DispatchTest, public ::testing::WithParamInterface<UINT32> {};

TEST_P(NamesAndKinds, DecideTheTables) {
    const UINT32 kind = GetParam();
    SetLogKind(kind);
    std::map<UINT32, Expectation> expected;
    UINT32 id = 1;
    for (const NamedAction& action : kActions) {
        for (const std::wstring& sent : LetterCases(action.name)) {
            for (const bool named : {true, false}) {
                const ContainerBuilder report = Action(++id, sent);
                if (!named) {
                    report.Get()->RemoveValue(kKeyActionName);
                }
                // A reset takes with it what its user has in the action log.
                if (action.resets) {
                    ContainerBuilder(report).Ui4(kKeyUserId, 1000 + id);
                }
                expected[id] = Expect(action, sent, named, kind);
                EXPECT_EQ(S_OK, Report(report)) << expected[id].what;
            }
        }
    }
    ASSERT_EQ(std::size(kActions) * 4 * 2, expected.size());
    ExpectRows(kActionLogRows, expected, &Expectation::inActionLog);
    ExpectRows(kTakenRows, expected, &Expectation::inContentDelete);
    ExpectRows(kReplayRows, expected, &Expectation::inReplay);
    for (const char* const table : {kActionLogRows, kReplayRows}) {
        EXPECT_EQ(0, CountRowsWhere(table, "LogKind <> " + std::to_string(kind))) << table;
    }
}

INSTANTIATE_TEST_SUITE_P(Kind, NamesAndKinds,
                         ::testing::Values(0u, 1u, 2u, 3u, 4u, 8u, 16u, 0xFFFFFFFFu),
                         [](const ::testing::TestParamInfo<UINT32>& kind) {
                             return std::to_string(kind.param);
                         });

} // namespace tsl::test
