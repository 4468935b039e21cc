// The order of the interface's methods, called through raw slot pointers as another compiler would.
#include <bit>

#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

class VirtualTable : public PluginTest {
protected:
    // The method in a slot of the table, counted from the three of IUnknown.
    template <class... Arguments>
    HRESULT Call(size_t slot, Arguments... arguments) {
        return CallOn(&Plugin(), slot, arguments...);
    }

    template <class... Arguments>
    static HRESULT CallOn(IUnknown* object, size_t slot, Arguments... arguments) {
        using Method = HRESULT(STDMETHODCALLTYPE*)(IUnknown*, Arguments...);
        void* const* const table = *reinterpret_cast<void* const* const*>(object);
        return std::bit_cast<Method>(table[slot])(object, arguments...);
    }
};

TEST_F(VirtualTable, Slot3IsNotify) {
    EXPECT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    EXPECT_EQ(S_OK, Call(3, kCommandRecordAction, static_cast<IUnknown*>(nullptr)));
    EXPECT_EQ(E_NOTIMPL, Call(3, kCommandDeleteRecords, static_cast<IUnknown*>(nullptr)));
}

TEST_F(VirtualTable, Slot4IsRequest) {
    const ContainerBuilder request;
    CVariant answer;
    IUnknown* const parameters = static_cast<CTslParamContainer*>(request);
    IUnknown* const unused = nullptr;
    EXPECT_EQ(S_OK, Call(4, kCommandNextRecordId, parameters, unused, answer.Address()));
    EXPECT_EQ(VT_UNKNOWN, answer.Type());
}

TEST_F(VirtualTable, Slot5IsDelete) {
    IUnknown* const none = nullptr;
    EXPECT_EQ(E_POINTER, Call(5, kCommandDeleteRecords, none));
    EXPECT_EQ(E_NOTIMPL, Call(5, kCommandNextRecordId, none));
}

TEST_F(VirtualTable, Slots6And7DoNothingForAnyInput) {
    VARIANT untouched{};
    untouched.vt = VT_I4;
    untouched.lVal = 42;
    for (const size_t slot : {6, 7}) {
        EXPECT_EQ(S_OK, Call(slot));
        EXPECT_EQ(S_OK, Call(slot, UINT64{0}, static_cast<void*>(nullptr)));
        EXPECT_EQ(S_OK, Call(slot, ~UINT64{0}, reinterpret_cast<void*>(1), &untouched));
        EXPECT_EQ(S_OK, Call(slot, kCommandRecordAction, &untouched, &untouched, &untouched));
    }
    EXPECT_EQ(VT_I4, untouched.vt);
    EXPECT_EQ(42, untouched.lVal);
}

TEST_F(VirtualTable, Slot8IsSetHost) {
    EXPECT_EQ(S_FALSE, Call(8, static_cast<IUnknown*>(nullptr)));
    const ContainerBuilder noHost;
    EXPECT_EQ(S_OK, Call(8, static_cast<IUnknown*>(static_cast<CTslParamContainer*>(noHost))));
}

TEST_F(VirtualTable, Slot9IsSetRecordingEnabled) {
    EXPECT_EQ(E_NOTIMPL, Plugin().Notify(kCommandRecordAction, nullptr));
    EXPECT_EQ(S_OK, Call(9, UINT32{1}));
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, nullptr));
    EXPECT_EQ(S_OK, Call(9, UINT32{0}));
    EXPECT_EQ(E_NOTIMPL, Plugin().Notify(kCommandRecordAction, nullptr));
}

TEST_F(VirtualTable, BaseInterfaceHasTheSameFirstSlots) {
    CComPtr<ITslPluginDb> base;
    ASSERT_EQ(S_OK, Plugin().QueryInterface(IID_ITslPluginDb, base.PutVoid()));
    IUnknown* const none = nullptr;
    VARIANT* const noResult = nullptr;
    EXPECT_EQ(E_NOTIMPL, CallOn(base.Get(), 3, kCommandRecordAction, none)) << "switched off";
    EXPECT_EQ(E_POINTER, CallOn(base.Get(), 4, kCommandNextRecordId, none, none, noResult));
    EXPECT_EQ(E_POINTER, CallOn(base.Get(), 5, kCommandDeleteRecords, none));
    EXPECT_EQ(S_OK, CallOn(base.Get(), 6));
    EXPECT_EQ(S_OK, CallOn(base.Get(), 7));
    EXPECT_EQ(S_FALSE, CallOn(base.Get(), 8, none));
}

} // namespace tsl::test
