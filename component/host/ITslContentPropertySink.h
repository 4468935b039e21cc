// The host's receiver of the texts of taken records.
#pragma once

#include <windows.h>

#include <oleauto.h>

namespace tsl {

struct ITslContentPropertySink : public IUnknown {
    // The text belongs to the caller. The component does not look at the result.
    virtual HRESULT STDMETHODCALLTYPE PutText(UINT64 itemId, BSTR text) = 0;
};

} // namespace tsl
