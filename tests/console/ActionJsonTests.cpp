// Actions read from lines of JSON.
#include "console/ActionJson.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <stdexcept>

namespace tsl::test {

namespace {

std::string Refusal(const std::string& line) {
    try {
        ParseActionLine(line);
    } catch (const std::invalid_argument& error) {
        return error.what();
    }
    return "accepted";
}

} // namespace

TEST(ActionJson, ReadsEveryMember) {
    const HostAction action = ParseActionLine(
        R"({"name":"playItem","app":-3,"user":4294967295,"time":"1970-01-01T00:00:00Z","kind":8,"number":-7,)"
        R"("ullValues":[0,18446744073709551615],"usValues":[65535],"intValues":[-2147483648],)"
        R"("boolValues":[true,false],"stringValues":["a","\u00e4"],"moreStringValues":[""],)"
        R"("floatValues":[1.5,2],"linked":{"text44":"x","text48":"","ullValues":[7]}})");
    EXPECT_EQ(L"playItem", action.name);
    EXPECT_EQ(-3, action.app);
    EXPECT_EQ(4294967295u, action.user);
    EXPECT_EQ(25569.0, action.time.value());
    EXPECT_EQ(8u, action.kind);
    EXPECT_EQ(-7, action.number);
    EXPECT_EQ((std::vector<ULONGLONG>{0, 0xFFFFFFFFFFFFFFFF}), action.values.ullValues);
    EXPECT_EQ((std::vector<USHORT>{65535}), action.values.usValues);
    EXPECT_EQ((std::vector<LONG>{-2147483647 - 1}), action.values.intValues);
    EXPECT_EQ((std::vector<VARIANT_BOOL>{VARIANT_TRUE, VARIANT_FALSE}), action.values.boolValues);
    EXPECT_EQ((std::vector<std::wstring>{L"a", L"\u00e4"}), action.values.stringValues);
    EXPECT_EQ((std::vector<std::wstring>{L""}), action.values.moreStringValues);
    EXPECT_EQ((std::vector<FLOAT>{1.5F, 2.0F}), action.values.floatValues);
    ASSERT_TRUE(action.linked.has_value());
    EXPECT_EQ(L"x", action.linked->text44);
    EXPECT_EQ(L"", action.linked->text48);
    EXPECT_EQ((std::vector<ULONGLONG>{7}), action.linked->values.ullValues);
    EXPECT_FALSE(action.linked->values.stringValues.has_value());
}

TEST(ActionJson, KindIsOneAndTimeIsAbsentUnlessNamed) {
    const HostAction action = ParseActionLine(R"({"name":"a","app":1,"user":1})");
    EXPECT_EQ(1u, action.kind);
    EXPECT_FALSE(action.time.has_value());
    EXPECT_FALSE(action.number.has_value());
    EXPECT_FALSE(action.values.intValues.has_value());
    EXPECT_FALSE(action.linked.has_value());
}

TEST(ActionJson, ReadsWhatAnExportTellsOfTheRecord) {
    const HostAction action = ParseActionLine(
        R"({"id":4294967295,"time":"1970-01-01T00:00:00Z","user":1,"app":1,"kind":1,"name":"a",)"
        R"("parameters":"intValues={1}","intValues":[1]})");
    EXPECT_EQ(4294967295u, action.id);
    EXPECT_EQ(L"intValues={1}", action.parameters);
    const HostAction without = ParseActionLine(R"({"name":"a","app":1,"user":1})");
    EXPECT_FALSE(without.id.has_value());
    EXPECT_FALSE(without.parameters.has_value());
}

TEST(ActionJson, FloatThatIsNoNumberOfJsonIsAText) {
    const HostAction action = ParseActionLine(
        R"({"name":"a","app":1,"user":1,"floatValues":["inf","-inf","nan","-nan"]})");
    const std::vector<FLOAT>& values = action.values.floatValues.value();
    ASSERT_EQ(4u, values.size());
    EXPECT_EQ(std::numeric_limits<FLOAT>::infinity(), values[0]);
    EXPECT_EQ(-std::numeric_limits<FLOAT>::infinity(), values[1]);
    EXPECT_TRUE(std::isnan(values[2]) && !std::signbit(values[2]));
    EXPECT_TRUE(std::isnan(values[3]) && std::signbit(values[3]));
}

TEST(ActionJson, EmptyListIsNotAnAbsentOne) {
    const HostAction action = ParseActionLine(R"({"name":"a","app":1,"user":1,"intValues":[]})");
    ASSERT_TRUE(action.values.intValues.has_value());
    EXPECT_TRUE(action.values.intValues->empty());
}

TEST(ActionJson, SaysWhatIsWrongWithALine) {
    struct Case {
        const char* line;
        const char* part; // of the message
    };
    for (const Case& c : {
             Case{"nonsense", "parse error"},
             Case{"[]", "not a JSON object"},
             Case{R"({"app":1,"user":1})", "\"name\" is missing"},
             Case{R"({"name":"a","user":1})", "\"app\" is missing"},
             Case{R"({"name":"a","app":1})", "\"user\" is missing"},
             Case{R"({"name":1,"app":1,"user":1})", "\"name\" must be a text"},
             Case{R"({"name":"a","app":1.5,"user":1})", "\"app\" must be an integer from -"},
             Case{R"({"name":"a","app":1,"user":-1})", "\"user\" must be an integer from 0"},
             Case{R"({"name":"a","app":1,"user":1,"time":5})", "\"time\" must be"},
             Case{R"({"name":"a","app":1,"user":1,"time":"x"})", "\"x\" is no ISO 8601 time"},
             Case{R"({"name":"a","app":1,"user":1,"kind":0})", "\"kind\" must be at least 1"},
             Case{R"({"name":"a","app":1,"user":1,"intValue":[]})", "\"intValue\" is not known"},
             Case{R"({"name":"a","app":1,"user":1,"intValues":7})", "must be an array"},
             Case{R"({"name":"a","app":1,"user":1,"intValues":[2147483648]})", "2147483647"},
             Case{R"({"name":"a","app":1,"user":1,"usValues":[65536]})", "65535"},
             Case{R"({"name":"a","app":1,"user":1,"boolValues":[1]})", "true or false"},
             Case{R"({"name":"a","app":1,"user":1,"floatValues":[1e39]})", "32-bit floating"},
             Case{R"({"name":"a","app":1,"user":1,"stringValues":[null]})", "must be a text"},
             Case{R"({"name":"a","app":1,"user":1,"linked":[]})", "\"linked\" must be an object"},
             Case{R"({"name":"a","app":1,"user":1,"linked":{"name":"b"}})",
                  "\"name\" is not known"},
             Case{R"({"name":"a","app":1,"user":1,"floatValues":["1.5"]})", "32-bit floating"},
             Case{R"({"name":"a","app":1,"user":1,"id":4294967296})", "\"id\" must be an integer"},
             Case{R"({"name":"a","app":1,"user":1,"parameters":1})", "must be a text"},
             Case{R"({"name":"\ud800","app":1,"user":1})", "surrogate"},
         }) {
        SCOPED_TRACE(c.line);
        EXPECT_NE(std::string::npos, Refusal(c.line).find(c.part)) << Refusal(c.line);
    }
}

} // namespace tsl::test
