// COM on the calling thread, in the multithreaded apartment, while it lives.
#pragma once

#include <objbase.h>

#include "base/Hresult.h"

namespace tsl {

class CComInitialization {
public:
    CComInitialization() {
        const HRESULT result = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        if (FAILED(result)) throw CHresultError(result);
    }
    CComInitialization(const CComInitialization&) = delete;
    CComInitialization& operator=(const CComInitialization&) = delete;
    ~CComInitialization() { CoUninitialize(); }
};

} // namespace tsl
