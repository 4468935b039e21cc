#include "upkeep/doctor/CounterCheck.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string_view>

#include "console/Failure.h"
#include "files/TextActionLog.h"
#include "upkeep/doctor/FileLook.h"
#include "upkeep/doctor/TextBytes.h"

namespace tsl {

namespace {

constexpr char kCounterSubject[] = "actionLog.txt";
constexpr UINT32 kHighestCounter = 0xFFFFFFFF;

// No file of one line is longer.
constexpr size_t kMostCounterBytes = 4096;

enum class Form {
    Exact,  // as the component writes it
    Plain,  // the number and nothing else, as people and other programs write it
    Spoiled // what else is read as a number
};

Form FormOf(const FileLook& file, UINT32 counter) {
    const std::wstring units = Utf16Units(file.bytes);
    const bool whole = file.size == file.bytes.size() && file.size % sizeof(wchar_t) == 0;
    if (!whole || !HasByteOrderMark(units)) return Form::Spoiled;
    const std::wstring_view text = std::wstring_view(units).substr(1);
    wchar_t exact[16];
    std::swprintf(exact, std::size(exact), L"%08lu\t\r\n", static_cast<unsigned long>(counter));
    if (text == exact) return Form::Exact;

    const size_t digits = std::min(text.find_first_not_of(L"0123456789"), text.size());
    const std::wstring_view end = text.substr(digits);
    const bool ended = end.empty() || end == L"\r\n" || end == L"\t\r\n";
    // A number of more than 32 bits is read as the highest one.
    return digits > 0 && ended && counter < kHighestCounter ? Form::Plain : Form::Spoiled;
}

Finding TellMissing(const KnownIds& ids) {
    if (ids.ofOlderForm) {
        return Odd(kCounterSubject,
                   "not there: the store is of the older form; the first host makes it");
    }
    if (ids.complete && ids.highestInUse == 0) {
        return Odd(kCounterSubject, "not there: no host has asked for a record id yet");
    }
    return Damaged(kCounterSubject,
                   "not there: ids begin at 1 again, and new records replace old ones", kRecover);
}

Finding TellBehind(UINT32 counter, UINT32 highest) {
    const std::string next = "next id is " + std::to_string(counter + 1U) + ", but ids up to " +
                             std::to_string(highest) + " are in use";
    // Whoever comes after the highest number begins anew.
    if (highest == kHighestCounter)
        return Odd(kCounterSubject, next + ": the numbers have begun again");
    return Damaged(kCounterSubject, next + ": new records replace old ones", kRecover);
}

Finding TellNumber(const FileLook& file, UINT32 counter, const KnownIds& ids) {
    // Leaps of this size do not come from actions.
    constexpr UINT32 kOddLeap = 10'000;
    const std::string next = "next id is " + std::to_string(counter + 1U);
    const Form form = FormOf(file, counter);
    if (form == Form::Spoiled && (!ids.complete || counter != ids.highestInUse || counter == 0)) {
        return Damaged(kCounterSubject, "spoiled, and read as " + std::to_string(counter),
                       kRecover);
    }
    if (counter < ids.highestInUse) return TellBehind(counter, ids.highestInUse);
    if (ids.complete && counter < ids.highestEver && ids.highestEver != kHighestCounter) {
        return Odd(kCounterSubject, next + ", but ids up to " + std::to_string(ids.highestEver) +
                                        " were in use already, says a header: they come again");
    }
    if (form != Form::Exact) {
        return Odd(kCounterSubject,
                   next + "; not as the component writes it, which it does next time");
    }
    if (counter == kHighestCounter) {
        return Odd(kCounterSubject,
                   "at its end: the next id is 0, and then the numbers begin again");
    }
    const UINT32 known = std::max(ids.highestInUse, ids.highestEver);
    if (ids.complete && ids.headersTell && counter > known && counter - known > kOddLeap) {
        return Odd(kCounterSubject,
                   next + ", far from the highest one ever recorded, " + std::to_string(known));
    }
    return Fine(kCounterSubject, next + (ids.complete ? "" : "; which are in use is not known"));
}

} // namespace

bool IsSpoiledCounter(const std::wstring& path, UINT32 counter) {
    const FileLook file = LookAtFile(path, kMostCounterBytes);
    return file.presence == Presence::There && FormOf(file, counter) == Form::Spoiled;
}

void CheckCounter(const std::wstring& path, const KnownIds& ids, Findings& findings) {
    const FileLook file = LookAtFile(path, kMostCounterBytes);
    const auto barred = WhatBars(file, kCounterSubject, path);
    if (barred) findings.push_back(*barred);
    if (file.presence == Presence::Missing) findings.push_back(TellMissing(ids));
    if (file.presence != Presence::There) return;
    // What the component makes of it. A file without a line leaves the counter at 1.
    UINT32 counter = 1;
    const HRESULT read = ReadCounter(path, counter);
    if (FAILED(read)) {
        findings.push_back(Barred(kCounterSubject, "cannot be read: " + DescribeResult(read)));
    } else if (file.size < 2 * sizeof(wchar_t)) {
        findings.push_back(Damaged(kCounterSubject,
                                   "empty: the next id is 2, and new records replace old ones",
                                   kRecover));
    } else {
        findings.push_back(TellNumber(file, counter, ids));
    }
}

} // namespace tsl
