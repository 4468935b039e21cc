// An aggregated object: the outer object owns the CComAggObject, which counts and hands out the
// contained object's interfaces; those delegate their IUnknown to the outer object.
#pragma once

#include "component/com/ComCreator.h"

namespace tsl {

// The inner object whose IUnknown is the outer object's.
template <class Base>
class CComContainedObject final : public Base {
public:
    explicit CComContainedObject(IUnknown* outer) { this->SetOuter(outer); }
    virtual ~CComContainedObject() = default;

    HRESULT Construct() { return ConstructObject<Base>(*this); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return this->Outer()->QueryInterface(iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return this->Outer()->AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return this->Outer()->Release(); }
};

// The IUnknown that the outer object holds.
template <class Base>
class CComAggObject final : public IUnknown, public CComObjectRootEx<typename Base::ThreadModel> {
public:
    explicit CComAggObject(IUnknown* outer) : m_contained(outer) {}
    virtual ~CComAggObject() {
        this->BiasReferences();
        m_contained.FinalRelease();
    }

    HRESULT Construct() { return m_contained.Construct(); }

    IUnknown* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown ? this : m_contained.FindInterface(iid);
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return QueryInterfaceOf(*this, iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return this->InternalAddRef(); }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG references = this->InternalRelease();
        if (references == 0) DestroyObject(this);
        return references;
    }

private:
    CComContainedObject<Base> m_contained;
};

} // namespace tsl
