// Value lists read back out of a stored parameter text, and the statement for a list of ids.
#include "query/ParameterDecoder.h"

#include <gtest/gtest.h>

#include "query/IdListStatement.h"

namespace tsl::test {

namespace {

using Ulls = std::vector<UINT64>;
using Ints = std::vector<INT32>;
using Texts = std::vector<std::wstring>;

struct UllCase {
    const wchar_t* parameters;
    HRESULT result;
    Ulls values;
};

} // namespace

TEST(ParameterDecoder, ReadsSixtyFourBitLists) {
    const UllCase cases[] = {
        {L"", S_FALSE, {}},
        {L"ullValues=", S_FALSE, {}},
        {L"ullValues={", S_FALSE, {}},
        {L"ullValues={1,2", S_FALSE, {}},
        {L"ullValues}1{", S_FALSE, {}},
        {L"ULLVALUES={1}", S_FALSE, {}},
        {L"intValues={1}", S_FALSE, {}},
        {L"ullValues={}", S_OK, {}},
        {L"ullValues={,}", S_OK, {0}},
        {L"ullValues={,,7}", S_OK, {0, 0, 7}},
        {L"ullValues={ 12 , 34 }", S_OK, {12, 34}},
        {L"ullValues={1,abc,3x,4}", S_OK, {1, 0, 3, 4}},
        {L"ullValues={18446744073709551615,18446744073709551616}",
         S_OK,
         {18446744073709551615u, 18446744073709551615u}},
        {L"usValues={9}&ullValues={1}&ullValues={2}", S_OK, {1}},
        {L"ullValues=intValues={5}", S_OK, {5}},
    };
    for (const UllCase& one : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(one.parameters)));
        Ulls values = {99};
        EXPECT_EQ(one.result, DecodeUllValues(one.parameters, values));
        EXPECT_EQ(one.values, values);
    }
}

TEST(ParameterDecoder, ReadsThirtyTwoBitListsUpToTheirLimits) {
    Ints values = {99};
    EXPECT_EQ(S_OK, DecodeIntValues(L"intValues={-1,+2, 3 ,2147483648,-2147483649,0x10}", values));
    EXPECT_EQ((Ints{-1, 2, 3, 2147483647, -2147483647 - 1, 0}), values);
    EXPECT_EQ(S_FALSE, DecodeIntValues(L"ullValues={1}", values));
    EXPECT_TRUE(values.empty());
}

TEST(ParameterDecoder, TrimsTextsBeforeACommaOnly) {
    Texts values = {L"old"};
    EXPECT_EQ(S_OK, DecodeStringValues(L"stringValues={a \t,b }", values));
    EXPECT_EQ((Texts{L"a", L"b "}), values);
    EXPECT_EQ(S_OK, DecodeStringValues(L"stringValues={ a, ,,}", values));
    EXPECT_EQ((Texts{L" a", L"", L""}), values);
}

TEST(ParameterDecoder, TakesTextsAsTheyStandUpToTheFirstBrace) {
    Texts values;
    EXPECT_EQ(S_OK, DecodeStringValues(L"stringValues={a%2cb,c}d,e}", values));
    EXPECT_EQ((Texts{L"a%2cb", L"c"}), values);
}

TEST(IdListStatement, HasOnePlaceholderForEachId) {
    EXPECT_EQ(L"SELECT * FROM TslIf_T WHERE ActionLogId IN(?)", IdListStatement(L"TslIf_T", 1));
    EXPECT_EQ(L"SELECT * FROM TslIf_T WHERE ActionLogId IN(?,?,?)", IdListStatement(L"TslIf_T", 3));
}

} // namespace tsl::test
