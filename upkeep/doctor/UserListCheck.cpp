#include "upkeep/doctor/UserListCheck.h"

#include <windows.h>

#include <sddl.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <iterator>
#include <map>
#include <optional>

#include "base/LocalMemory.h"
#include "console/Text.h"
#include "files/UserIdList.h"
#include "files/Utf16TextFile.h"
#include "upkeep/doctor/FileLook.h"
#include "upkeep/doctor/TextBytes.h"

namespace tsl {

namespace {

constexpr char kUserListSubject[] = "UserIdList.dat";

// Some hundred thousand users.
constexpr size_t kMostListBytes = size_t{32} << 20;

// A security identifier as the system writes it: it comes out of the system as it went in.
bool IsSid(const std::wstring& text) {
    PSID converted = nullptr;
    if (!ConvertStringSidToSidW(text.c_str(), &converted)) return false;
    const LocalMemory<void> sid(converted);
    wchar_t* written = nullptr;
    if (!ConvertSidToStringSidW(converted, &written)) return false;
    const LocalMemory<wchar_t> owned(written);
    return text == written;
}

// A number from 1 to 32 bits in any notation that the component takes, with nothing else beside it.
std::optional<UINT32> ParseId(const std::wstring& text) {
    if (text.empty() || text[0] < L'0' || text[0] > L'9') return std::nullopt;
    wchar_t* end = nullptr;
    const UINT64 id = _wcstoui64(text.c_str(), &end, /*base=*/0);
    if (end != text.c_str() + text.size() || id == 0 || id > 0xFFFFFFFF) return std::nullopt;
    return static_cast<UINT32>(id);
}

// "id TAB sid", with or without a TAB behind it.
std::optional<UserIdEntry> ParseEntry(const std::wstring& line) {
    const size_t tab = line.find(L'\t');
    if (tab == std::wstring::npos) return std::nullopt;
    std::wstring sid = line.substr(tab + 1);
    if (sid.ends_with(L'\t')) sid.pop_back();
    const std::optional<UINT32> id = ParseId(line.substr(0, tab));
    if (!id || !IsSid(sid)) return std::nullopt;
    return UserIdEntry{*id, std::move(sid)};
}

class CUserListTeller {
public:
    explicit CUserListTeller(Findings& findings) : m_findings(findings) {}

    void Tell(const std::vector<unsigned char>& bytes) {
        const std::wstring units = Utf16Units(bytes);
        const size_t before = m_findings.size();
        const bool marked = HasByteOrderMark(units);
        const std::wstring text = marked ? units.substr(1) : units;
        for (const std::wstring& line : SplitLines(text))
            TellLine(line);
        if (m_lines == 0) {
            m_findings.push_back(Damaged(kUserListSubject,
                                         "no user in it: users get the ids of others from now on",
                                         kRestore));
        }
        TellUnreadable(marked);
        const bool exact = marked && bytes.size() % sizeof(wchar_t) == 0 && text == m_exactText;
        if (m_findings.size() == before) TellWhole(exact);
    }

private:
    void TellLine(const std::wstring& line) {
        ++m_lines;
        const std::optional<UserIdEntry> entry = ParseEntry(line);
        if (!entry) {
            if (++m_unreadable == 1) m_firstUnreadable = m_lines;
            return;
        }
        const std::string sid = ToUtf8(entry->sid);
        const auto [owner, isNewId] = m_owners.emplace(entry->id, sid);
        if (!isNewId && owner->second == sid) {
            m_findings.push_back(Odd(kUserListSubject, sid + " is there twice with the id " +
                                                           std::to_string(entry->id)));
        } else if (!isNewId) {
            m_findings.push_back(Damaged(kUserListSubject,
                                         "id " + std::to_string(entry->id) + " stands for " +
                                             owner->second + " and for " + sid,
                                         kRestore));
        }
        if (const auto [known, isNewSid] = m_ids.emplace(sid, entry->id);
            !isNewSid && known->second != entry->id) {
            m_findings.push_back(Damaged(kUserListSubject,
                                         sid + " has the ids " + std::to_string(known->second) +
                                             " and " + std::to_string(entry->id) +
                                             "; the last one counts",
                                         kRestore));
        }
        m_highest = std::max(m_highest, entry->id);
        wchar_t id[24];
        std::swprintf(id, std::size(id), L"0x%08I64x\t", entry->id);
        m_exactText += id + entry->sid + L"\t\r\n";
    }

    void TellUnreadable(bool marked) {
        if (m_unreadable == 0) return;
        m_findings.push_back(Damaged(
            kUserListSubject,
            std::to_string(m_unreadable) + " of " + std::to_string(m_lines) +
                " lines cannot be read, the first is line " + std::to_string(m_firstUnreadable) +
                (marked ? "" : "; no UTF-16 text") + ": these users get new ids",
            kRestore));
    }

    void TellWhole(bool exact) {
        const std::string text = std::to_string(m_ids.size()) +
                                 (m_ids.size() == 1 ? " user" : " users") + ", highest id " +
                                 std::to_string(m_highest);
        m_findings.push_back(
            exact ? Fine(kUserListSubject, text)
                  : Odd(kUserListSubject,
                        text + "; not as the component writes it, which it does for a new user"));
    }

    Findings& m_findings;
    size_t m_lines = 0;
    size_t m_unreadable = 0;
    size_t m_firstUnreadable = 0;
    UINT64 m_highest = 0;
    std::map<UINT64, std::string> m_owners;
    std::map<std::string, UINT64> m_ids;
    std::wstring m_exactText; // what the component would write for these users
};

} // namespace

void CheckUserList(const std::wstring& path, Findings& findings) {
    const FileLook file = LookAtFile(path, kMostListBytes);
    if (auto barred = WhatBars(file, kUserListSubject, path))
        findings.push_back(std::move(*barred));
    if (file.presence == Presence::Missing) {
        findings.push_back(
            Odd(kUserListSubject, "not there: no host has asked for a user's id yet"));
    }
    if (file.presence != Presence::There) return;
    if (file.size > file.bytes.size()) {
        findings.push_back(Damaged(kUserListSubject, "far too long", kRestore));
        return;
    }
    CUserListTeller(findings).Tell(file.bytes);
}

} // namespace tsl
