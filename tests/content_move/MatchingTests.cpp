// Which properties speak of the two texts of a move.
#include <cwchar>

#include "recording/ContentProperties.h"
#include "tests/content_move/ContentMoveFixture.h"

namespace tsl::test {

namespace {

// Of each pair: equal, equal in another case, equal as words only, and different.
const std::pair<const wchar_t*, const wchar_t*> kTextPairs[] = {
    {L"", L""},
    {L"text", L"text"},
    {L"Text", L"tEXT"},
    {L"text", L"text "},
    {L"text", L"texts"},
    {L"text", L""},
    {L"\u00c4rger", L"\u00e4rger"},
    {L"\u041f\u0420\u0418\u0412\u0415\u0422", L"\u043f\u0440\u0438\u0432\u0435\u0442"},
    {L"\u03a3\u0391\u03a3", L"\u03c3\u03b1\u03c2"},
    {L"stra\u00dfe", L"STRASSE"},
    {L"cafe", L"caf\u00e9"},
    {L"cafe\u0301", L"caf\u00e9"},
    {L"I", L"\u0131"},
    {L"i", L"\u0130"},
    {L"co-op", L"coop"},
    {L"soft\u00adhyphen", L"softhyphen"},
    {L"zero\u200bwidth", L"zerowidth"},
    {L"\uff21\uff22", L"AB"},
    {L"\u30a2", L"\u3042"},
    {L"\u2460", L"1"},
    {L"\U0001F600", L"\U0001F601"},
};

bool AreEqualWords(const wchar_t* left, const wchar_t* right) {
    return CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, left, -1, right, -1) == CSTR_EQUAL;
}

ContentProperty Holding(CVariant first, CVariant second) {
    return {std::move(first), std::move(second), CVariant::FromI4(1)};
}

CVariant Text(std::wstring_view text) {
    return CVariant::FromText(text);
}

CVariant Null() {
    CVariant null;
    null.Address()->vt = VT_NULL;
    return null;
}

} // namespace

TEST(MatchingProperty, HasBothTexts) {
    EXPECT_TRUE(MatchesTexts(Holding(Text(L"one"), Text(L"two")), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"two"), Text(L"two")), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"one"), Text(L"one")), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"two"), Text(L"one")), L"one", L"two"));
}

TEST(MatchingProperty, HasThemInAnyCase) {
    EXPECT_TRUE(MatchesTexts(Holding(Text(L"ONE"), Text(L"tWO")), L"One", L"Two"));
}

TEST(MatchingProperty, HasLettersOfAnyAlphabetInAnyCaseInItsFirstText) {
    EXPECT_TRUE(
        MatchesTexts(Holding(Text(L"\u00c4RGER \u00c9"), Text(L"")), L"\u00e4rger \u00e9", L""));
    EXPECT_TRUE(
        MatchesTexts(Holding(Text(L"\u043f\u0440\u0438"), Text(L"")), L"\u041f\u0420\u0418", L""));
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"\u00c4rger"), Text(L"")), L"Arger", L""));
}

TEST(MatchingProperty, HasAFirstTextThatIsEqualInWordsOfNoLanguage) {
    for (const auto& [left, right] : kTextPairs) {
        SCOPED_TRACE(testing::Message() << left << L" / " << right);
        const bool equal = AreEqualWords(left, right);
        EXPECT_EQ(equal, MatchesTexts(Holding(Text(left), Text(L"two")), right, L"two"));
        EXPECT_EQ(equal, MatchesTexts(Holding(Text(right), Text(L"two")), left, L"two"));
    }
}

TEST(MatchingProperty, HasASecondTextThatIsEqualInLettersOfAnyCase) {
    for (const auto& [left, right] : kTextPairs) {
        SCOPED_TRACE(testing::Message() << left << L" / " << right);
        const bool equal = _wcsicmp(left, right) == 0;
        EXPECT_EQ(equal, MatchesTexts(Holding(Text(L"one"), Text(left)), L"one", right));
        EXPECT_EQ(equal, MatchesTexts(Holding(Text(L"one"), Text(right)), L"one", left));
    }
}

// Otherwise the two tests above would not tell one way of comparing from the other.
TEST(MatchingProperty, HasTextsThatAreComparedInTwoWays) {
    int wordsOnly = 0;
    for (const auto& [left, right] : kTextPairs)
        wordsOnly += AreEqualWords(left, right) && _wcsicmp(left, right) != 0;
    EXPECT_GT(wordsOnly, 0);
}

TEST(MatchingProperty, MayLackItsSecondText) {
    EXPECT_TRUE(MatchesTexts(Holding(Text(L"one"), CVariant()), L"one", L"two"));
    EXPECT_TRUE(MatchesTexts(Holding(Text(L"one"), CVariant()), L"one", L""));
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"two"), CVariant()), L"one", L"two"));
}

TEST(MatchingProperty, DoesNotLackASecondTextThatIsEmpty) {
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"one"), Text(L"")), L"one", L"two"));
    EXPECT_TRUE(MatchesTexts(Holding(Text(L"one"), Text(L"")), L"one", L""));
}

TEST(MatchingProperty, MayHaveANullPointerForAnEmptyText) {
    CVariant null;
    null.Address()->vt = VT_BSTR;
    null.Address()->bstrVal = nullptr;
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"one"), std::move(null)), L"one", L"two"));
    null.Address()->vt = VT_BSTR;
    null.Address()->bstrVal = nullptr;
    EXPECT_FALSE(MatchesTexts(Holding(std::move(null), Text(L"two")), L"one", L"two"));
}

TEST(MatchingProperty, HasNoSecondTextOfAnotherType) {
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"one"), CVariant::FromI4(5)), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"one"), Null()), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(Text(L"one"), Null()), L"one", L""));
    EXPECT_FALSE(MatchesTexts(
        Holding(Text(L"one"), MakeTextArray(std::vector<std::wstring>{L"two"})), L"one", L"two"));
}

TEST(MatchingProperty, MayHaveANumberForItsFirstText) {
    EXPECT_TRUE(MatchesTexts(Holding(CVariant::FromI4(-42), Text(L"two")), L"-42", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(CVariant::FromI4(-42), Text(L"two")), L"42", L"two"));
}

TEST(MatchingProperty, HasAFirstText) {
    EXPECT_FALSE(MatchesTexts(Holding(CVariant(), Text(L"two")), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(CVariant(), CVariant()), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(Holding(Null(), Text(L"two")), L"one", L"two"));
    EXPECT_FALSE(MatchesTexts(
        Holding(MakeTextArray(std::vector<std::wstring>{L"one"}), Text(L"two")), L"one", L"two"));
    EXPECT_FALSE(
        MatchesTexts(Holding(CVariant::FromOwnedUnknown(nullptr), Text(L"two")), L"one", L"two"));
}

TEST(MatchingProperty, IsNotToldByItsNumber) {
    ContentProperty property = Holding(Text(L"one"), Text(L"two"));
    property.number = CVariant();
    EXPECT_TRUE(MatchesTexts(property, L"one", L"two"));
    property.number = Text(L"x");
    EXPECT_TRUE(MatchesTexts(property, L"one", L"two"));
}

} // namespace tsl::test
