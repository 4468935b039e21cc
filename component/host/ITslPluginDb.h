// The interface that hosts drive the component through. Objects come from the class factory of
// CLSID_PluginDb. Callable from any apartment, by several threads at once, and from the methods of
// the host's own that the component calls: each call works on what was so when it came in.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace tsl {

// The order of the methods is the order of the virtual table and must not be changed.
struct ITslPluginDb : public IUnknown {
    // Reports an action. E_NOTIMPL for an unknown code and while recording is switched off; S_OK
    // when it was recorded or deliberately skipped; a failure of the store otherwise.
    virtual HRESULT STDMETHODCALLTYPE Notify(UINT64 commandCode, IUnknown* parameters) = 0;

    // Asks for something; the answer replaces the content of the initialised VARIANT and belongs to
    // the caller. E_NOTIMPL for an unknown code, E_POINTER for a missing container or result.
    virtual HRESULT STDMETHODCALLTYPE Request(UINT64 commandCode, IUnknown* parameters,
                                              IUnknown* unused, VARIANT* result) = 0;

    // Deletes records. E_NOTIMPL for an unknown code, E_POINTER for a missing container.
    virtual HRESULT STDMETHODCALLTYPE Delete(UINT64 commandCode, IUnknown* parameters) = 0;

    // Do nothing; always S_OK.
    virtual HRESULT STDMETHODCALLTYPE Reserved1() = 0;
    virtual HRESULT STDMETHODCALLTYPE Reserved2() = 0;

    // Hands over the host object, which is held until it is replaced or the plug-in goes. S_OK;
    // S_FALSE when host is null.
    virtual HRESULT STDMETHODCALLTYPE SetHost(IUnknown* host) = 0;
};

struct ITslPluginDb2 : public ITslPluginDb {
    // Switches recording for the whole process: 0 is off, any other value is on. The value is also
    // the log kind of what this object records from now on. Converts a store of the older form, if
    // there is one. Always S_OK.
    virtual HRESULT STDMETHODCALLTYPE SetRecordingEnabled(UINT32 flag) = 0;
};

} // namespace tsl
