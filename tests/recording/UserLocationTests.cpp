// The default country that an action named userLocation gets for an empty first text.
#include "tests/recording/BuiltText.h"
#include "tests/support/Containers.h"

namespace tsl::test {

namespace {

ContainerBuilder Located(std::initializer_list<std::wstring> texts,
                         std::wstring_view name = L"userLocation") {
    ContainerBuilder action;
    action.Text(kKeyActionName, name).Texts(kKeyStringValues, texts);
    return action;
}

} // namespace

TEST(UserLocation, GetsTheDefaultCountryForAnEmptyFirstText) {
    EXPECT_EQ(Ok(L"stringValues={JPN}"), Build(Located({L""})));
    EXPECT_EQ(Ok(L"stringValues={JPN,x}"), Build(Located({L"", L"x"})));
}

TEST(UserLocation, GetsTheDefaultCountryUnderEveryLogKind) {
    ContainerBuilder action = Located({L"", L"x"});
    for (const UINT32 logKind : {0u, 1u, 2u, 8u, 16u}) {
        const BuiltText built = Build(action, logKind);
        EXPECT_EQ(S_OK, built.result);
        EXPECT_TRUE(built.text.ends_with(L"stringValues={JPN,x}")) << "log kind " << logKind;
    }
}

TEST(UserLocation, KeepsItsOwnCountry) {
    EXPECT_EQ(Ok(L"stringValues={DEU,}"), Build(Located({L"DEU", L""})));
}

TEST(UserLocation, KeepsAnEmptyTextAtALaterIndex) {
    EXPECT_EQ(Ok(L"stringValues={DEU,,}"), Build(Located({L"DEU", L"", L""})));
    EXPECT_EQ(Ok(L"stringValues={JPN,}"), Build(Located({L"", L""})));
}

TEST(UserLocation, CountsTheFurtherTextsToo) {
    ContainerBuilder further;
    further.Text(kKeyActionName, L"userLocation").Texts(kKeyMoreStringValues, {L"", L"y"});
    EXPECT_EQ(Ok(L"stringValues={JPN,y}"), Build(further));
    EXPECT_EQ(Ok(L"stringValues={DEU,}"),
              Build(Located({L"DEU"}).Texts(kKeyMoreStringValues, {L""})));
}

TEST(UserLocation, WithoutTextsGetsNone) {
    EXPECT_EQ(Ok(L""), Build(Located({})));
}

TEST(UserLocation, TakesABlankForAText) {
    EXPECT_EQ(Ok(L"stringValues={%20}"), Build(Located({L" "})));
}

TEST(UserLocation, IsTheExactNameOnly) {
    for (const std::wstring_view name :
         {L"UserLocation", L"userlocation", L"USERLOCATION", L"userLocation ", L"userLocations",
          L"playItem", L"externalApplicationLog", L"deleteItem", L"showExternalLink"}) {
        EXPECT_EQ(Ok(L"stringValues={,x}"), Build(Located({L"", L"x"}, name)));
    }
}

TEST(UserLocation, DoesNotReachTheNextAction) {
    EXPECT_EQ(Ok(L"stringValues={JPN}"), Build(Located({L""})));
    EXPECT_EQ(Ok(L"stringValues={}"), Build(Located({L""}, L"playItem")));
}

} // namespace tsl::test
