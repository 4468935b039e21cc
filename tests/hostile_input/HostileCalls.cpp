#include "tests/hostile_input/HostileCalls.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "component/host/CommandCodes.h"

namespace tsl::test {

namespace {

// What fills the tables comes oftener than what empties them.
constexpr Command kCommands[] = {
    {Method::Notify, kCommandRecordAction},  {Method::Notify, kCommandRecordAction},
    {Method::Notify, kCommandRecordAction},  {Method::Notify, kCommandRecordAction},
    {Method::Notify, kCommandRecordAction},  {Method::Request, kCommandNextRecordId},
    {Method::Request, kCommandQueryIds},     {Method::Request, kCommandQueryIds},
    {Method::Request, kCommandQueryRecords}, {Method::Request, kCommandQueryRecords},
    {Method::Request, kCommandQueryAllIds},  {Method::Request, kCommandQueryAllIds},
    {Method::Request, kCommandTakeRecord},   {Method::Request, kCommandTakeRecord},
    {Method::Delete, kCommandDeleteRecords},
};

constexpr Method kMethods[] = {Method::Notify, Method::Request, Method::Delete};

constexpr UINT64 kUnknownCommands[] = {
    0, 1, 0xFFFFFFFFFFFFFFFF, 0x8000000000000000, 0x0400000003000000, 0x02000001};

constexpr const wchar_t* kUsualNames[] = {
    L"playItem",        L"deleteItem",   L"deleteItem",
    L"autoDeleteItem",  L"tweet",        L"viaMoveContent",
    L"veSettingReset",  L"userLocation", L"externalApplicationLog",
    L"showExternalLink"};

constexpr UINT32 kExtremeIds[] = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
constexpr UINT32 kUsers[] = {0, 1, 1, 1, 1, 7, 7, 0xFFFFFFFF};
constexpr double kTimes[] = {0.0,
                             45000.25,
                             -1.5,
                             4294967295.0,
                             1e300,
                             std::numeric_limits<double>::infinity(),
                             -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN()};

UINT32 AnyId(Chance& chance) {
    if (chance.OneIn(4)) return chance.Of(kExtremeIds);
    return static_cast<UINT32>(chance.OneIn(4) ? 100 * chance.Below(3) : 1 + chance.Below(8));
}

CVariant Text(BSTR text) {
    CVariant made;
    made.Address()->vt = VT_BSTR;
    made.Address()->bstrVal = text;
    return made;
}

CVariant Texts(Chance& chance) {
    return MakeFilledArray<BSTR>(chance.Below(5), [&](std::span<BSTR> made) {
        for (BSTR& text : made)
            text = HostileValues::MakeText(chance);
    });
}

template <class T>
CVariant Numbers(Chance& chance) {
    return MakeFilledArray<T>(chance.Below(5), [&](std::span<T> made) {
        for (T& number : made)
            number = static_cast<T>(chance.Bits());
    });
}

// Texts and numbers of the item that an action is linked with.
void AddLinkedItem(ContainerBuilder& action, Chance& chance) {
    ContainerBuilder item;
    item.Set(kKeyText44, Text(HostileValues::MakeText(chance)))
        .Text(kKeyText48, L"48")
        .Set(kKeyStringValues, Texts(chance))
        .Set(kKeyMoreStringValues, Texts(chance))
        .Set(kKeyUllValues, Numbers<ULONGLONG>(chance));
    action.Unknown(kKeyLinkedItem, item.Get().Get());
}

void AddValueLists(ContainerBuilder& action, Chance& chance) {
    if (chance.OneIn(2)) action.Set(kKeyUllValues, Numbers<ULONGLONG>(chance));
    if (chance.OneIn(2)) action.Set(kKeyUsValues, Numbers<USHORT>(chance));
    if (chance.OneIn(2)) action.Set(kKeyIntValues, Numbers<LONG>(chance));
    if (chance.OneIn(2)) action.Set(kKeyBoolValues, Numbers<VARIANT_BOOL>(chance));
    if (chance.OneIn(2)) action.Set(kKeyFloatValues, Numbers<FLOAT>(chance));
    if (!chance.OneIn(4)) action.Set(kKeyStringValues, Texts(chance));
    if (!chance.OneIn(4)) action.Set(kKeyMoreStringValues, Texts(chance));
    if (chance.OneIn(2)) action.I4(kKeyNumber, static_cast<INT32>(chance.Bits()));
    if (chance.OneIn(4)) AddLinkedItem(action, chance);
}

void AddRanges(ContainerBuilder& request, Chance& chance) {
    if (chance.OneIn(3)) request.Ui4(kKeyFirstRecordId, AnyId(chance));
    if (chance.OneIn(3)) request.Ui4(kKeyLastRecordId, AnyId(chance));
    if (chance.OneIn(2)) request.Date(kKeyStartTime, chance.Of(kTimes));
    if (chance.OneIn(2)) request.Date(kKeyEndTime, chance.Of(kTimes));
    if (!chance.OneIn(4)) request.Ui8(kKeyRecordToTake, AnyId(chance));
    CVariant ids = MakeFilledArray<LONG>(chance.Below(6), [&](std::span<LONG> made) {
        for (LONG& id : made)
            id = static_cast<LONG>(AnyId(chance));
    });
    ids.Address()->vt = VT_ARRAY | VT_UI4;
    if (!chance.OneIn(4)) request.Set(kKeyRecordIds, std::move(ids));
}

} // namespace

bool Command::IsKnown() const {
    return std::ranges::find(kCommands, *this) != std::end(kCommands);
}

Command AnyCommand(Chance& chance) {
    Command command = chance.Of(kCommands);
    switch (chance.Below(24)) {
    case 0:
        command.code = chance.Of(kUnknownCommands);
        break;
    case 1:
        command.code ^= UINT64{1} << chance.Below(64);
        break;
    case 2:
        command.method = chance.Of(kMethods);
        break;
    default:
        break;
    }
    return command;
}

ContainerBuilder AnyRequest(Chance& chance) {
    ContainerBuilder request;
    request.Ui4(kKeyRecordId, AnyId(chance))
        .Ui4(kKeyUserId, chance.Of(kUsers))
        .I4(kKeyAppId, static_cast<INT32>(chance.Bits()));
    if (chance.OneIn(4)) {
        request.Set(kKeyActionName, Text(HostileValues::MakeText(chance)));
    } else {
        request.Text(kKeyActionName, chance.Of(kUsualNames));
    }
    if (chance.OneIn(2)) request.Date(kKeyActionTime, chance.Of(kTimes));
    AddValueLists(request, chance);
    AddRanges(request, chance);
    return request;
}

UsedResult::UsedResult(HostileValues& values, Chance& chance) {
    switch (chance.Below(6)) {
    case 0:
    case 1:
        break; // empty, as it should be
    case 2:    // an array that somebody is reading, which cannot be cleared
        m_value.vt = VT_ARRAY | VT_UI4;
        m_value.parray = m_locked = SafeArrayCreateVector(VT_UI4, 0, 3);
        SafeArrayLock(m_locked);
        m_replaceable = false;
        break;
    default: {
        values.FillAny(chance, m_value);
        VARIANT copy{};
        copy.vt = m_value.vt;
        // Types that only a PROPVARIANT has cannot be cleared either.
        m_replaceable = SUCCEEDED(VariantClear(&copy));
        break;
    }
    }
    m_before = m_value;
}

UsedResult::~UsedResult() {
    if (m_locked) {
        SafeArrayUnlock(m_locked);
        SafeArrayDestroy(m_locked);
    } else {
        VariantClear(&m_value);
    }
}

bool UsedResult::IsAsBefore() const {
    return std::memcmp(&m_value, &m_before, sizeof m_value) == 0;
}

} // namespace tsl::test
