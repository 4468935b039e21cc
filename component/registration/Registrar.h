// The platform's registrar: runs registry scripts that lie in a module as resources. Declared here
// because the toolchain has no header for it.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace tsl {

// {44EC053A-400F-11D0-9DCD-00A0C90391D3}, in the system's atl.dll.
inline constexpr CLSID CLSID_Registrar = {
    0x44EC053A, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};

// {44EC053B-400F-11D0-9DCD-00A0C90391D3}
inline constexpr IID IID_IRegistrar = {
    0x44EC053B, 0x400F, 0x11D0, {0x9D, 0xCD, 0x00, 0xA0, 0xC9, 0x03, 0x91, 0xD3}};

struct IRegistrar : public IUnknown {
    // From now on "%key%" in a script stands for the item.
    virtual HRESULT STDMETHODCALLTYPE AddReplacement(const wchar_t* key, const wchar_t* item) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearReplacements() = 0;
    virtual HRESULT STDMETHODCALLTYPE ResourceRegisterSz(const wchar_t* file, const wchar_t* name,
                                                         const wchar_t* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE ResourceUnregisterSz(const wchar_t* file, const wchar_t* name,
                                                           const wchar_t* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE FileRegister(const wchar_t* file) = 0;
    virtual HRESULT STDMETHODCALLTYPE FileUnregister(const wchar_t* file) = 0;
    virtual HRESULT STDMETHODCALLTYPE StringRegister(const wchar_t* script) = 0;
    virtual HRESULT STDMETHODCALLTYPE StringUnregister(const wchar_t* script) = 0;
    // Runs the script of a module's resource, forwards or in removal.
    virtual HRESULT STDMETHODCALLTYPE ResourceRegister(const wchar_t* file, UINT id,
                                                       const wchar_t* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE ResourceUnregister(const wchar_t* file, UINT id,
                                                         const wchar_t* type) = 0;
};

} // namespace tsl
