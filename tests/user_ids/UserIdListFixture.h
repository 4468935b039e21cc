// Base of the tests of the user id list: the file is missing at first.
#pragma once

#include "files/UserIdList.h"

#include "tests/support/StoreChecks.h"
#include "tests/user_ids/TokenSid.h"

namespace tsl::test {

inline constexpr wchar_t kLoginLock[] = L"Global\\TslIf_Mut_LoginInfo";

struct LookUpResult {
    bool found = false;
    UINT64 id = 0;
    std::vector<UserIdEntry> entries;
};

inline LookUpResult LookUp(const std::wstring& sid) {
    LookUpResult result;
    result.id = 0xBAD;
    result.entries.push_back({77, L"left over"});
    result.found = LookUpOrAssignUserId(sid, result.entries, result.id) == S_FALSE;
    return result;
}

class UserIdListTest : public StoreTest {
protected:
    void TearDown() override {
        EXPECT_FALSE(MutexExists(kLoginLock)) << "the mutex is still open";
        StoreTest::TearDown();
    }
};

} // namespace tsl::test
