// VARIANTs that a host has no business handing in, but may: of every type, with every extreme that
// the type can legitimately hold. Each can be cleared as any VARIANT can.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include "tests/hostile_input/Chance.h"

namespace tsl::test {

// An object that is no container. References are counted: one is the test's own.
class PlainObject final : public IDispatch {
public:
    ULONG References() const { return m_references; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override { return --m_references; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return DISP_E_MEMBERNOTFOUND;
    }

private:
    ULONG m_references = 1;
};

// What the values refer to lives in here, and must outlive them.
class HostileValues {
public:
    HostileValues();
    HostileValues(const HostileValues&) = delete;
    HostileValues& operator=(const HostileValues&) = delete;
    ~HostileValues();

    PlainObject& Object() { return m_object; }

    // Fills an empty VARIANT: three times in four one that is wanted, with an extreme value.
    void FillFor(VARTYPE wanted, Chance& chance, VARIANT& value);
    void FillAny(Chance& chance, VARIANT& value);
    // The caller owns the text.
    static BSTR MakeText(Chance& chance);

private:
    void FillScalar(VARTYPE type, Chance& chance, VARIANT& value);
    void FillArray(VARTYPE elementType, Chance& chance, VARIANT& value);
    void FillReference(VARTYPE type, Chance& chance, VARIANT& value);
    IDispatch* Reference(Chance& chance);
    SAFEARRAY* MakeSafeArray(VARTYPE elementType, Chance& chance);
    void FillElements(SAFEARRAY& array, VARTYPE elementType, Chance& chance);

    PlainObject m_object;
    // What references point to.
    alignas(16) unsigned char m_bytes[64] = {};
    BSTR m_text = nullptr;
    SAFEARRAY* m_array = nullptr;
    IDispatch* m_interface = &m_object;
    VARIANT m_variant{};
};

} // namespace tsl::test
