// The host's store of content items, whose properties a content move rewrites. Hosts implement it;
// the component creates one with the first content move of a plug-in object and keeps it as long as
// the object.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace tsl {

// The order of the methods is the order of the virtual table and must not be changed. The methods
// named after their slots are the host's own: the component never calls them.
struct ITslContentStore : public IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Slot3() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot4() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot5() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot6() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot7() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot8() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot9() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot10() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot11() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot12() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot13() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot14() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot15() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot16() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot17() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot18() = 0;

    // The ids of the items that a text belongs to: VT_ARRAY of VT_UI8. The caller clears them.
    virtual HRESULT STDMETHODCALLTYPE FindItems(BSTR text, VARIANT* itemIds) = 0;

    virtual HRESULT STDMETHODCALLTYPE Slot20() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot21() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot22() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot23() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot24() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot25() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot26() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot27() = 0;
    virtual HRESULT STDMETHODCALLTYPE Slot28() = 0;

    // The properties of an item: VT_ARRAY of VT_UNKNOWN, one ITslParamContainer a property. The
    // caller clears them.
    virtual HRESULT STDMETHODCALLTYPE GetItemProperties(UINT64 itemId, VARIANT* properties) = 0;

    // Replaces all properties of an item by such a list, which stays the caller's.
    virtual HRESULT STDMETHODCALLTYPE SetItemProperties(UINT64 itemId, VARIANT* properties) = 0;
};

} // namespace tsl
