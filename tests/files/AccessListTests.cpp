// Which entries of an access list are kept, where one is added and whom a list names. The lists are
// made by the system's own functions, and what comes out is read by them.
#include "files/AccessList.h"

#include <gmock/gmock.h>
#include <sddl.h>

#include <cstddef>
#include <cstring>
#include <functional>
#include <stdexcept>

#include "base/LocalMemory.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr wchar_t kEveryone[] = L"S-1-1-0";
constexpr wchar_t kUser[] = L"S-1-5-21-1-2-3-1000";
constexpr wchar_t kAdministrators[] = L"S-1-5-32-544";

// Access allowed, object and container inherit, GENERIC_ALL, S-1-1-0.
const Bytes kGrant = {0x00, 0x03, 0x14, 0x00, 0x00, 0x00, 0x00, 0x10, 0x01, 0x01,
                      0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x00};
constexpr BYTE kGrantFlags = OBJECT_INHERIT_ACE | CONTAINER_INHERIT_ACE;

class Sid {
public:
    explicit Sid(const wchar_t* text) {
        PSID sid = nullptr;
        if (!ConvertStringSidToSidW(text, &sid)) throw std::runtime_error("no SID");
        m_sid.reset(sid);
    }
    PSID Get() const { return m_sid.get(); }

private:
    LocalMemory<void> m_sid;
};

void Check(BOOL succeeded) {
    if (!succeeded) throw std::runtime_error("the system did not take the list");
}

std::vector<Bytes> EntriesOf(PACL list) {
    std::vector<Bytes> entries;
    for (WORD index = 0; index < list->AceCount; ++index) {
        void* entry = nullptr;
        Check(GetAce(list, index, &entry));
        const auto* const first = static_cast<const unsigned char*>(entry);
        entries.emplace_back(first, first + static_cast<const ACE_HEADER*>(entry)->AceSize);
    }
    return entries;
}

// A list that is filled by the system's own functions.
class List {
public:
    explicit List(DWORD revision = ACL_REVISION, DWORD size = 1024)
        : m_revision(revision), m_storage(size) {
        Check(InitializeAcl(Get(), size, revision));
    }

    PACL Get() { return reinterpret_cast<PACL>(m_storage.data()); }
    std::vector<Bytes> Entries() { return EntriesOf(Get()); }

    List& Allow(const wchar_t* sid, DWORD mask = 1, DWORD flags = 0) {
        Check(AddAccessAllowedAceEx(Get(), m_revision, flags, mask, Sid(sid).Get()));
        return *this;
    }
    List& Deny(const wchar_t* sid, DWORD mask = 1, DWORD flags = 0) {
        Check(AddAccessDeniedAceEx(Get(), m_revision, flags, mask, Sid(sid).Get()));
        return *this;
    }
    List& Audit(const wchar_t* sid) {
        Check(AddAuditAccessAceEx(Get(), m_revision, /*flags=*/0, /*mask=*/1, Sid(sid).Get(),
                                  /*success=*/TRUE, /*failure=*/TRUE));
        return *this;
    }
    // The entry as it stands, for kinds that the emulator has no function for.
    List& Add(Bytes entry) {
        Check(AddAce(Get(), m_revision, MAXDWORD, entry.data(), static_cast<DWORD>(entry.size())));
        return *this;
    }

private:
    DWORD m_revision;
    std::vector<std::byte> m_storage;
};

// The bytes of an entry of any kind. What stands between mask and SID is there in object entries
// only; the tail follows the SID.
Bytes EntryBytes(BYTE type, const wchar_t* sid, const Bytes& beforeSid = {},
                 const Bytes& tail = {}) {
    constexpr std::ptrdiff_t kSidOffset = offsetof(ACCESS_ALLOWED_ACE, SidStart);
    Bytes bytes = List().Allow(sid).Entries().front();
    bytes.insert(bytes.begin() + kSidOffset, beforeSid.begin(), beforeSid.end());
    bytes.insert(bytes.end(), tail.begin(), tail.end());
    const ACE_HEADER header = {type, /*AceFlags=*/0, static_cast<WORD>(bytes.size())};
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

// What follows the mask in an object entry: the flags that tell which GUIDs are there, and these.
Bytes ObjectPart(BYTE flags, size_t guids) {
    Bytes part(sizeof(DWORD) + guids * sizeof(GUID), 0xAB);
    const DWORD whole = flags;
    std::memcpy(part.data(), &whole, sizeof whole);
    return part;
}

CAccessList ReadList(List& list) {
    CAccessList read;
    if (!read.Read(list.Get())) throw std::runtime_error("list not read");
    return read;
}

// What the system makes of the list that is built.
struct Built {
    BYTE revision;
    std::vector<Bytes> entries;
};

Built Build(const CAccessList& list) {
    std::vector<std::byte> storage;
    if (list.Build(storage) != ERROR_SUCCESS) throw std::runtime_error("list not built");
    auto* const built = reinterpret_cast<PACL>(storage.data());
    EXPECT_TRUE(IsValidAcl(built));
    EXPECT_EQ(storage.size(), built->AclSize);
    return {built->AclRevision, EntriesOf(built)};
}

// The entries of the list once Everyone has been given full access.
std::vector<Bytes> EntriesWithGrant(List& list) {
    CAccessList read = ReadList(list);
    EXPECT_TRUE(read.Allow(Sid(kEveryone).Get(), GENERIC_ALL, kGrantFlags));
    return Build(read).entries;
}

bool NamesEveryone(List& list) {
    return ReadList(list).Names(Sid(kEveryone).Get());
}

} // namespace

TEST(AccessList, WithoutEntriesGetsTheNewOneAlone) {
    List empty;
    EXPECT_FALSE(NamesEveryone(empty));
    EXPECT_THAT(Build(ReadList(empty)).entries, IsEmpty());
    EXPECT_THAT(EntriesWithGrant(empty), ElementsAre(kGrant));
}

TEST(AccessList, NewEntryIsTheOneTheSystemWouldMake) {
    struct Case {
        const wchar_t* sid;
        DWORD mask;
        BYTE flags;
    };
    for (const Case& c : {Case{kEveryone, GENERIC_ALL, kGrantFlags}, Case{kUser, 0x1F01FF, 0},
                          Case{kAdministrators, 0, INHERIT_ONLY_ACE}}) {
        SCOPED_TRACE(c.sid);
        CAccessList list;
        EXPECT_TRUE(list.Allow(Sid(c.sid).Get(), c.mask, c.flags));
        EXPECT_EQ(List().Allow(c.sid, c.mask, c.flags).Entries(), Build(list).entries);
        EXPECT_TRUE(list.Names(Sid(c.sid).Get()));
    }
}

TEST(AccessList, OtherEntriesAreKeptByteForByteAndInOrder) {
    List list(ACL_REVISION_DS);
    list.Deny(kAdministrators, 0x2).Allow(kUser, 0x1F01FF, 0x0B);
    list.Add(EntryBytes(ACCESS_ALLOWED_CALLBACK_ACE_TYPE, kUser, {}, {'a', 'r', 't', 'x'}));
    list.Add(
        EntryBytes(ACCESS_ALLOWED_OBJECT_ACE_TYPE, kUser, ObjectPart(ACE_OBJECT_TYPE_PRESENT, 1)));
    // A kind that nobody knows yet, whose bytes read like an entry for Everyone.
    list.Add(EntryBytes(0x60, kEveryone));
    // The smallest entry there is: a header and nothing else.
    list.Add({0x61, 0, sizeof(ACE_HEADER), 0});
    EXPECT_FALSE(NamesEveryone(list));

    std::vector<Bytes> expected = list.Entries();
    ASSERT_EQ(6u, expected.size());
    EXPECT_EQ(expected, Build(ReadList(list)).entries);
    expected.push_back(kGrant);
    EXPECT_EQ(expected, EntriesWithGrant(list));
}

TEST(AccessList, RevisionIsKept) {
    for (const DWORD revision : {ACL_REVISION, ACL_REVISION_DS}) {
        List list(revision);
        EXPECT_EQ(revision, Build(ReadList(list)).revision);
    }
}

TEST(AccessList, NewEntryStandsBehindTheExplicitOnesAndAheadOfInheritedOnes) {
    List mixed;
    mixed.Allow(kUser).Allow(kAdministrators, 1, INHERITED_ACE).Deny(kUser, 1, INHERITED_ACE);
    const std::vector<Bytes> before = mixed.Entries();
    EXPECT_THAT(EntriesWithGrant(mixed), ElementsAre(before[0], kGrant, before[1], before[2]));

    List inherited;
    inherited.Allow(kAdministrators, 1, INHERITED_ACE);
    EXPECT_THAT(EntriesWithGrant(inherited), ElementsAre(kGrant, inherited.Entries()[0]));
}

TEST(AccessList, AnyEntryNamesItsTrustee) {
    using Fill = std::function<void(List & list)>;
    const auto raw = [](BYTE type, const Bytes& beforeSid, const Bytes& tail = {}) -> Fill {
        return [=](List& list) { list.Add(EntryBytes(type, kEveryone, beforeSid, tail)); };
    };
    constexpr BYTE kBothKinds = ACE_OBJECT_TYPE_PRESENT | ACE_INHERITED_OBJECT_TYPE_PRESENT;
    const Bytes condition = {'a', 'r', 't', 'x'};
    struct Case {
        const char* name;
        Fill add;
    };
    for (const Case& c : {
             Case{"full", [](List& list) { list.Allow(kEveryone, GENERIC_ALL, kGrantFlags); }},
             Case{"narrow mask", [](List& list) { list.Allow(kEveryone, FILE_READ_DATA); }},
             Case{"no right at all", [](List& list) { list.Allow(kEveryone, 0); }},
             Case{"denied", [](List& list) { list.Deny(kEveryone, GENERIC_ALL); }},
             Case{"inherited", [](List& list) { list.Allow(kEveryone, 1, INHERITED_ACE); }},
             Case{"for children only",
                  [](List& list) { list.Allow(kEveryone, 1, INHERIT_ONLY_ACE); }},
             Case{"audit", [](List& list) { list.Audit(kEveryone); }},
             Case{"allowed on a condition", raw(ACCESS_ALLOWED_CALLBACK_ACE_TYPE, {}, condition)},
             Case{"denied on a condition", raw(ACCESS_DENIED_CALLBACK_ACE_TYPE, {}, condition)},
             Case{"object", raw(ACCESS_ALLOWED_OBJECT_ACE_TYPE, ObjectPart(0, 0))},
             Case{"object of one kind",
                  raw(ACCESS_DENIED_OBJECT_ACE_TYPE, ObjectPart(ACE_OBJECT_TYPE_PRESENT, 1))},
             Case{"object below another", raw(ACCESS_ALLOWED_OBJECT_ACE_TYPE,
                                              ObjectPart(ACE_INHERITED_OBJECT_TYPE_PRESENT, 1))},
             Case{"object of two kinds",
                  raw(ACCESS_ALLOWED_OBJECT_ACE_TYPE, ObjectPart(kBothKinds, 2))},
             Case{"object on a condition", raw(ACCESS_ALLOWED_CALLBACK_OBJECT_ACE_TYPE,
                                               ObjectPart(kBothKinds, 2), condition)},
         }) {
        SCOPED_TRACE(c.name);
        List list(ACL_REVISION_DS);
        list.Allow(kUser);
        EXPECT_FALSE(NamesEveryone(list));
        c.add(list);
        ASSERT_EQ(2u, list.Entries().size());
        EXPECT_TRUE(NamesEveryone(list));
        EXPECT_FALSE(ReadList(list).Names(Sid(kAdministrators).Get()));
    }
}

TEST(AccessList, SimilarTrusteesAreNotTheSame) {
    for (const wchar_t* const sid : {L"S-1-1-1", L"S-1-2-0", L"S-1-1-0-0", L"S-1-5-1"}) {
        SCOPED_TRACE(sid);
        List list;
        list.Allow(sid, GENERIC_ALL);
        EXPECT_FALSE(NamesEveryone(list));
        EXPECT_TRUE(ReadList(list).Names(Sid(sid).Get()));
    }
}

TEST(AccessList, InvalidTrusteeIsNobodyAndIsKept) {
    const Bytes valid = EntryBytes(ACCESS_ALLOWED_ACE_TYPE, kEveryone);
    Bytes wrongRevision = valid;
    wrongRevision[8] = 7;
    Bytes tooManyParts = valid;
    tooManyParts[9] = 200;
    Bytes partsBeyondTheEnd = valid;
    partsBeyondTheEnd[9] = 15;
    const Bytes withoutSid = {ACCESS_ALLOWED_ACE_TYPE, 0, 8, 0, 1, 0, 0, 0};
    const Bytes withoutMask = {ACCESS_ALLOWED_ACE_TYPE, 0, 4, 0};
    const Bytes objectWithoutFlags = {ACCESS_ALLOWED_OBJECT_ACE_TYPE, 0, 8, 0, 1, 0, 0, 0};
    const std::vector<Bytes> invalid = {wrongRevision, tooManyParts, partsBeyondTheEnd,
                                        withoutSid,    withoutMask,  objectWithoutFlags};
    List list(ACL_REVISION_DS);
    for (const Bytes& entry : invalid)
        list.Add(entry);
    EXPECT_FALSE(NamesEveryone(list));
    std::vector<std::byte> storage;
    ASSERT_EQ(static_cast<DWORD>(ERROR_SUCCESS), ReadList(list).Build(storage));
    EXPECT_EQ(invalid, EntriesOf(reinterpret_cast<PACL>(storage.data())));
}

TEST(AccessList, NothingIsAddedForAnInvalidSid) {
    List before;
    before.Allow(kUser);
    CAccessList list = ReadList(before);
    std::byte noSid[SECURITY_MAX_SID_SIZE] = {};
    EXPECT_FALSE(list.Allow(noSid, GENERIC_ALL, 0));
    EXPECT_EQ(before.Entries(), Build(list).entries);
}

TEST(AccessList, BrokenListIsNotReadAndWhatWasReadBeforeStays) {
    List good;
    good.Allow(kUser);
    CAccessList list = ReadList(good);
    // Sizes that no entry can have: shorter than a header, or beyond the end of the list.
    for (const int size : {0, 1, 3, 0x100, 0xFFFC}) {
        SCOPED_TRACE(size);
        List broken(ACL_REVISION, 0x100);
        broken.Allow(kAdministrators);
        void* entry = nullptr;
        ASSERT_TRUE(GetAce(broken.Get(), 0, &entry));
        static_cast<ACE_HEADER*>(entry)->AceSize = static_cast<WORD>(size);
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(list.Read(broken.Get()));
        EXPECT_NE(static_cast<DWORD>(ERROR_SUCCESS), GetLastError());
        EXPECT_EQ(good.Entries(), Build(list).entries);
    }
}

TEST(AccessList, FullListTakesNoFurtherEntry) {
    // A list holds at most 65,535 bytes.
    constexpr DWORD kLargest = 0xFFFC;
    const size_t entrySize = EntryBytes(ACCESS_ALLOWED_ACE_TYPE, kAdministrators).size();
    const size_t most = (kLargest - sizeof(ACL)) / entrySize;
    for (const bool full : {true, false}) {
        SCOPED_TRACE(full ? "full" : "with room for one more");
        List list(ACL_REVISION, kLargest);
        for (size_t count = full ? 0 : 1; count < most; ++count)
            list.Allow(kAdministrators);
        CAccessList read = ReadList(list);
        std::vector<std::byte> storage;
        EXPECT_EQ(static_cast<DWORD>(ERROR_SUCCESS), read.Build(storage));
        ASSERT_TRUE(read.Allow(Sid(kEveryone).Get(), GENERIC_ALL, kGrantFlags));
        EXPECT_EQ(!full, read.Build(storage) == ERROR_SUCCESS);
    }
}

} // namespace tsl::test
