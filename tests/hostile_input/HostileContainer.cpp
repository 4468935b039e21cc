#include "tests/hostile_input/HostileContainer.h"

#include "component/host/Identities.h"

namespace tsl::test {

namespace {

constexpr HRESULT kOddSuccesses[] = {S_FALSE, 2, 0x00041500};

constexpr size_t kVeryManyKeys = 20'000;

} // namespace

HRESULT HostileContainer::QueryInterface(REFIID iid, void** result) {
    const bool known = iid == IID_IUnknown || (iid == IID_ITslParamContainer && !IsNone());
    *result = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : kHostFailures[m_queryAnswer];
}

HRESULT HostileContainer::GetValue(UINT64 key, VARIANT* value) {
    EXPECT_EQ(VT_EMPTY, value->vt) << "the caller has not initialised it";
    Chance chance(m_seed ^ key * 0x9E3779B97F4A7C15);
    if (!chance.OneIn(m_spoiledAmong)) return m_others->GetValue(key, value);
    switch (chance.Below(16)) {
    case 0: // fails
        return chance.Of(kHostFailures);
    case 1: // fails, but leaves something
        m_values.FillFor(ParamKeyType(key), chance, *value);
        return chance.Of(kHostFailures);
    case 2: // has none, but leaves something
        m_values.FillFor(ParamKeyType(key), chance, *value);
        return chance.Of(kOddSuccesses);
    case 3: // a reference to itself
        AddRef();
        value->vt = VT_UNKNOWN;
        value->punkVal = this;
        return S_OK;
    default:
        m_values.FillFor(ParamKeyType(key), chance, *value);
        return S_OK;
    }
}

HRESULT HostileContainer::GetKeys(VARIANT* keys) {
    EXPECT_EQ(VT_EMPTY, keys->vt) << "the caller has not initialised it";
    Chance chance(m_seed);
    switch (m_keysAnswer) {
    case 0:
        return chance.Of(kHostFailures);
    case 1:
        return chance.Of(kOddSuccesses);
    case 2:
    case 3:
        m_values.FillAny(chance, *keys);
        return S_OK;
    case 4:
    case 5:
    case 6:
        m_values.FillFor(VT_ARRAY | VT_UI8, chance, *keys);
        return S_OK;
    case 7: { // one key over and over
        const size_t count = chance.OneIn(4) ? kVeryManyKeys : 5;
        const UINT64 key = chance.OneIn(2) ? kKeyFirstRecordId : kKeyUserId;
        MakeFilledArray<ULONGLONG>(count, [&](std::span<ULONGLONG> made) {
            std::ranges::fill(made, key);
        }).MoveTo(keys);
        return S_OK;
    }
    case 8: // right, but not worth a plain success
        m_others->GetKeys(keys);
        return chance.Of(kOddSuccesses);
    default:
        return m_others->GetKeys(keys);
    }
}

} // namespace tsl::test
