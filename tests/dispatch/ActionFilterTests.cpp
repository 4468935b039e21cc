// The filters by name: whole names only, letters of the plain alphabet in any case, whole kinds.
#include "recording/ActionFilters.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

// What differs from a name by more than its case.
std::wstring NearMisses(const std::wstring& name, size_t index) {
    const std::wstring misses[] = {L"",         name.substr(1), name.substr(0, name.size() - 1),
                                   name + L" ", L" " + name,    name + name};
    return misses[index];
}
constexpr size_t kNearMisses = 6;

} // namespace

TEST(ActionFilters, KnowDeleteActionsInAnyCase) {
    for (const wchar_t* const name : {L"deleteItem", L"DELETEITEM", L"deleteitem", L"DeLeTeItEm",
                                      L"autoDeleteItem", L"AUTODELETEITEM", L"autodeleteitem"}) {
        EXPECT_TRUE(IsDeleteAction(name)) << name;
    }
}

TEST(ActionFilters, TakeNothingElseForADeleteAction) {
    for (const wchar_t* const name : {L"deleteItem", L"autoDeleteItem"}) {
        for (size_t index = 0; index < kNearMisses; ++index) {
            EXPECT_FALSE(IsDeleteAction(NearMisses(name, index))) << NearMisses(name, index);
        }
    }
    EXPECT_FALSE(IsDeleteAction(L"playItem"));
}

TEST(ActionFilters, FoldNoLetterOfAnotherAlphabet) {
    EXPECT_FALSE(IsDeleteAction(L"delete\x0130tem")) << "capital i with a dot";
    EXPECT_FALSE(IsDeleteAction(L"delete\x0131tem")) << "small i without a dot";
    EXPECT_FALSE(IsDeleteAction(L"delete\xFF29tem")) << "full width";
    EXPECT_FALSE(IsExcludedFromActionLog(L"\x017FhowExternalLink", 1)) << "long s";
    EXPECT_FALSE(IsExcludedFromActionLog(L"showExternalLin\x212A", 1)) << "kelvin sign";
    EXPECT_FALSE(IsSettingReset(L"ve\x017F"
                                L"ettingReset"))
        << "long s";
}

TEST(ActionFilters, KnowTheResetInAnyCase) {
    for (const wchar_t* const name :
         {L"veSettingReset", L"VESETTINGRESET", L"vesettingreset", L"VeSettingReset"}) {
        EXPECT_TRUE(IsSettingReset(name)) << name;
    }
    for (size_t index = 0; index < kNearMisses; ++index) {
        EXPECT_FALSE(IsSettingReset(NearMisses(L"veSettingReset", index)));
    }
}

TEST(ActionFilters, KnowTheContentMoveInItsOwnLettersOnly) {
    EXPECT_TRUE(IsContentMove(L"viaMoveContent"));
    for (const wchar_t* const name :
         {L"ViaMoveContent", L"VIAMOVECONTENT", L"viamovecontent", L"viaMoveContenT"}) {
        EXPECT_FALSE(IsContentMove(name)) << name;
    }
    for (size_t index = 0; index < kNearMisses; ++index) {
        EXPECT_FALSE(IsContentMove(NearMisses(L"viaMoveContent", index)));
    }
}

TEST(ActionFilters, KeepWholeNamesOutOfTheActionLog) {
    struct Case {
        UINT32 kind;
        const wchar_t* name;
    };
    const Case cases[] = {
        {1, L"showExternalLinkForTv"},
        {1, L"SHOWEXTERNALLINK"},
        {2, L"showexternallinkformusic"},
        {2, L"showExternalLink"},
        {8, L"PlayItem"},
        {8, L"skipForwardItem"},
        {16, L"showExternalLinkForSNS"},
        {16, L"showExternalLink"},
        {16, L"registerFavoriteTweet"},
        {16, L"TWEET"},
    };
    for (const Case& one : cases) {
        EXPECT_TRUE(IsExcludedFromActionLog(one.name, one.kind)) << one.name;
        for (size_t index = 0; index < kNearMisses; ++index) {
            const std::wstring miss = NearMisses(one.name, index);
            EXPECT_FALSE(IsExcludedFromActionLog(miss, one.kind)) << miss;
        }
    }
}

TEST(ActionFilters, CompareTheWholeLogKind) {
    for (const UINT32 kind : {0u, 3u, 4u, 5u, 9u, 10u, 17u, 18u, 24u, 27u, 32u, 0x101u, 0x10001u,
                              0x80000001u, 0x80000002u, 0xFFFFFFFFu}) {
        for (const wchar_t* const name :
             {L"showExternalLink", L"showExternalLinkForTv", L"showExternalLinkForMusic",
              L"showExternalLinkForSns", L"playItem", L"skipForwardItem", L"registerFavoriteTweet",
              L"tweet"}) {
            EXPECT_FALSE(IsExcludedFromActionLog(name, kind)) << name << " under " << kind;
        }
    }
}

TEST(ActionFilters, ReadANameUpToItsFirstZero) {
    const ContainerBuilder action = Action(5, std::wstring_view(L"deleteItem\0tail", 15));
    EXPECT_TRUE(IsDeleteAction(ReadActionName(*action.Get().Get()).text));
}

TEST(ActionFilters, ReadNoNameWhereNoneIs) {
    ContainerBuilder action = Action(5, L"deleteItem");
    EXPECT_EQ(L"deleteItem", ReadActionName(*action.Get().Get()).text);
    action.Get()->RemoveValue(kKeyActionName);
    EXPECT_EQ(L"", ReadActionName(*action.Get().Get()).changed);

    RawContainer nullName(action.Get());
    nullName.Make(kKeyActionName, [](VARIANT& value) {
        value.vt = VT_BSTR;
        value.bstrVal = nullptr;
        return S_OK;
    });
    EXPECT_EQ(L"", ReadActionName(nullName).changed);
}

TEST(ActionFilters, ReadNoNameThatTheContainerFailsToGive) {
    RawContainer action(Action(5, L"playItem").Get());
    for (const HRESULT answer : {HRESULT{S_FALSE}, E_ACCESSDENIED}) {
        // Careless hosts leave a value behind though they say that there is none.
        action.Make(kKeyActionName, [answer](VARIANT& value) {
            value.vt = VT_BSTR;
            value.bstrVal = AllocateBstr(L"deleteItem");
            return answer;
        });
        EXPECT_EQ(L"", ReadActionName(action).changed);
    }
}

} // namespace tsl::test
