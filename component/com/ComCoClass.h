// Makes a class creatable, on its own or aggregated, and names its CLSID.
#pragma once

#include "component/com/ComAggObject.h"
#include "component/com/ComObject.h"

namespace tsl {

template <class T, const CLSID* kClsid>
class CComCoClass {
public:
    static const CLSID& ObjectClsid() noexcept { return *kClsid; }

    // What the class factory calls. An aggregated object is asked for IUnknown first, which the
    // factory has checked.
    static HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** result) {
        return outer ? CreateObject<CComAggObject<T>>(outer, iid, result)
                     : CreateObject<CComObject<T>>(outer, iid, result);
    }

private:
    // Of nothing but the class that it is made for.
    CComCoClass() = default;
    friend T;
};

} // namespace tsl
