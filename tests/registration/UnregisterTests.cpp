// DllUnregisterServer: takes off what is there, and nothing of others.
#include "tests/registration/RegistrationFixture.h"

namespace tsl::test {

class Unregistering : public RegistrationTest {};

TEST_F(Unregistering, TakesEverythingOffButTheHostsKey) {
    ASSERT_EQ(S_OK, Register());
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_TRUE(KeyExists(kHostKey));
    EXPECT_FALSE(KeyExists(kListKey)) << "the last plug-in takes its list with it";
    ExpectNoClass();
    EXPECT_TRUE(KeyExists(L"Software\\Classes\\CLSID"));
    EXPECT_TRUE(KeyExists(L"Software\\Classes\\AppID"));
}

TEST_F(Unregistering, KeepsOtherPlugins) {
    const std::wstring other = std::wstring(kListKey) + L"\\{00000000-0000-0000-0000-000000000001}";
    MakeKey(other);
    WriteStored(other, L"Module ID", TextValue(L"Another"));
    ASSERT_EQ(S_OK, Register());
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_EQ(std::vector<std::wstring>{L"{00000000-0000-0000-0000-000000000001}"},
              KeysBelow(kListKey));
    EXPECT_EQ(TextValue(L"Another"), ReadStored(other, L"Module ID"));
    ExpectNoClass();
}

TEST_F(Unregistering, KeepsAListThatHoldsAValue) {
    ASSERT_EQ(S_OK, Register());
    WriteStored(kListKey, L"Note", TextValue(L"kept"));
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_TRUE(KeysBelow(kListKey).empty());
    EXPECT_EQ(TextValue(L"kept"), ReadStored(kListKey, L"Note"));
}

TEST_F(Unregistering, TakesKeysBelowTheEntryWithIt) {
    ASSERT_EQ(S_OK, Register());
    MakeKey(std::wstring(kEntryKey) + L"\\Settings\\Deep\\Deeper");
    MakeKey(std::wstring(kEntryKey) + L"\\Settings\\Other");
    MakeKey(std::wstring(kEntryKey) + L"\\" + std::wstring(255, L'n'));
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_FALSE(KeyExists(kListKey));
}

TEST_F(Unregistering, WhatIsNotRegisteredSucceedsAndMakesNothing) {
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_FALSE(KeyExists(L"Software\\Corvane Corporation"));
    ExpectNoClass();
}

TEST_F(Unregistering, TwiceSucceeds) {
    ASSERT_EQ(S_OK, Register());
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_EQ(S_OK, Unregister());
    EXPECT_TRUE(KeyExists(kHostKey));
    EXPECT_FALSE(KeyExists(kListKey));
}

TEST_F(Unregistering, GoesOnToTheClassWhenTheListCannotBeMade) {
    ASSERT_EQ(S_OK, Register());
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Corvane Corporation");
    MakeKey(kHostKey, REG_OPTION_VOLATILE);
    EXPECT_EQ(S_OK, Unregister());
    ExpectNoClass();
}

TEST_F(Unregistering, TakesTheClassOffWhoeverRegisteredIt) {
    ASSERT_EQ(S_OK, Register());
    WriteStored(kServerKey, L"", TextValue(L"C:\\moved\\TslIfDbActionLog.dll"));
    EXPECT_EQ(S_OK, Unregister());
    ExpectNoClass();
}

} // namespace tsl::test
