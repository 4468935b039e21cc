// The host's content store, which a content move works on: created by the first move and kept. Any
// number of threads may use it at once; the host is called without any lock.
#pragma once

#include <atomic>

#include "base/ComPtr.h"
#include "component/host/ITslContentStore.h"

namespace tsl {

class CHostContentStore {
public:
    CHostContentStore() noexcept = default;
    CHostContentStore(const CHostContentStore&) = delete;
    CHostContentStore& operator=(const CHostContentStore&) = delete;
    ~CHostContentStore() {
        if (ITslContentStore* const kept = m_kept.exchange(nullptr)) kept->Release();
    }

    // A reference of the caller's own; null when none is kept.
    CComPtr<ITslContentStore> Get() const noexcept {
        ITslContentStore* const kept = m_kept; // never another one, once there is one
        if (kept) kept->AddRef();
        return CComPtr<ITslContentStore>::FromOwned(kept);
    }

    // Keeps the store, unless another call has kept one meanwhile. Returns the one that is kept.
    CComPtr<ITslContentStore> Keep(CComPtr<ITslContentStore> created) noexcept {
        ITslContentStore* none = nullptr;
        if (!m_kept.compare_exchange_strong(none, created.Get())) return Get();
        CComPtr<ITslContentStore> kept = created;
        created.Detach(); // this reference is kept
        return kept;
    }

private:
    std::atomic<ITslContentStore*> m_kept = nullptr;
};

} // namespace tsl
