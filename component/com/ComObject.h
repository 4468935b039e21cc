// An object that was created on its own: it counts and answers for itself.
#pragma once

#include "component/com/ComCreator.h"

namespace tsl {

template <class Base>
class CComObject final : public Base {
public:
    explicit CComObject(IUnknown* /*outer*/) {}
    virtual ~CComObject() {
        this->BiasReferences();
        this->FinalRelease();
    }

    HRESULT Construct() { return ConstructObject<Base>(*this); }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        return QueryInterfaceOf(*this, iid, result);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return this->InternalAddRef(); }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG references = this->InternalRelease();
        if (references == 0) DestroyObject(this);
        return references;
    }
};

} // namespace tsl
