// The life of a creatable object, the same for plain and aggregated ones: it holds the module from
// its construction until after its destruction.
#pragma once

#include <memory>

#include "component/com/ComModule.h"
#include "component/com/ComObjectRoot.h"

namespace tsl {

// Destroys an object and lets go of the module afterwards.
template <class Object>
void DestroyObject(Object* object) noexcept {
    delete object;
    g_comModule.Unlock();
}

// Creates an Object and queries it. Failures: that of the critical section, of FinalConstruct or of
// the query; may throw std::bad_alloc. The out-pointer is null after a failure.
template <class Object>
HRESULT CreateObject(IUnknown* outer, REFIID iid, void** result) {
    *result = nullptr;
    auto* const created = new Object(outer);
    g_comModule.Lock();
    created->AddRef(); // references taken and given back during construction must not destroy it
    struct Releaser {
        void operator()(Object* object) const noexcept { object->Release(); }
    };
    const std::unique_ptr<Object, Releaser> reference(created);
    const HRESULT constructed = created->Construct();
    if (FAILED(constructed)) return constructed;
    return created->QueryInterface(iid, result);
}

} // namespace tsl
