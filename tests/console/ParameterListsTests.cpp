// Value lists decoded for showing.
#include "console/ParameterLists.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace tsl::test {

namespace {

std::string Decoded(const std::wstring& parameters) {
    return DecodeParameterLists(parameters).dump();
}

} // namespace

TEST(ParameterLists, DecodesEveryKind) {
    EXPECT_EQ(R"({"ullValues":[18446744073709551615],"usValues":[65535],"intValues":[-2,7],)"
              R"("boolValues":[true,false],"stringValues":["a,b","","100%"],)"
              R"("floatValues":[0.5,-1.25]})",
              Decoded(L"ullValues={18446744073709551615}&usValues={65535}&intValues={-2,7}"
                      L"&boolValues={1,0}&stringValues={a%2cb,,100%25}"
                      L"&floatValues={0.500000,-1.250000}"));
}

TEST(ParameterLists, EmptyTextHasNone) {
    EXPECT_EQ("{}", Decoded(L""));
}

TEST(ParameterLists, SingleEmptyTextIsAText) {
    EXPECT_EQ(R"({"stringValues":[""]})", Decoded(L"stringValues={}"));
}

TEST(ParameterLists, NumberThatIsNoneInJsonIsAText) {
    EXPECT_EQ(R"({"floatValues":["inf","-inf","nan","-nan",-0.0]})",
              Decoded(L"floatValues={inf,-inf,nan,-nan,-0.000000}"));
}

TEST(ParameterLists, LeavesOutWhatCannotBeRead) {
    EXPECT_EQ("{}", Decoded(L"nonsense"));
    EXPECT_EQ("{}", Decoded(L"intValues={1,x}"));
    EXPECT_EQ("{}", Decoded(L"intValues={1,2"));
    EXPECT_EQ("{}", Decoded(L"boolValues={2}"));
    EXPECT_EQ("{}", Decoded(L"usValues={65536}"));
    EXPECT_EQ("{}", Decoded(L"nullValues={1}"));
}

} // namespace tsl::test
