// The methods of a content store that the component never calls, for stores that have nothing to
// say to them.
#pragma once

#include "component/host/ITslContentStore.h"

namespace tsl {

class CContentStoreBase : public ITslContentStore {
public:
    HRESULT STDMETHODCALLTYPE Slot3() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot4() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot5() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot6() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot7() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot8() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot9() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot13() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot14() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot15() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot16() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot17() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot20() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot21() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot22() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot23() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot24() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot25() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot26() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot27() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Slot28() override { return E_NOTIMPL; }
};

} // namespace tsl
