// The host's parameter container: maps 64-bit keys to VARIANTs and carries a command code. Hosts
// implement it; arguments arrive in one and answers leave in new ones.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace tsl {

// The order of the methods is the order of the virtual table and must not be changed.
struct ITslParamContainer : public IUnknown {
    // Never called by the component.
    virtual HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* commandCode) = 0;

    // Stamps the container with the command that it belongs to.
    virtual HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 commandCode) = 0;

    // S_OK with a copy that the caller clears; S_FALSE with the value untouched when the key is
    // absent. The caller has initialised the value with VariantInit.
    virtual HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) = 0;

    // Stores a deep copy of the value; the caller keeps its own.
    virtual HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) = 0;

    // Never called by the component.
    virtual HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 key) = 0;

    // The keys present: a one-dimensional VT_ARRAY of VT_UI8 with lower bound 0 that the caller
    // clears. A failure means that there are none.
    virtual HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) = 0;
};

} // namespace tsl
