// The host's content store, which a content move works on: created by the first move and kept. Any
// number of threads may use it at once; the host is called without any lock.
#pragma once

#include "base/ComPtr.h"
#include "component/host/ITslContentStore.h"

namespace tsl {

class CHostContentStore {
public:
    CHostContentStore() noexcept = default;
    CHostContentStore(const CHostContentStore&) = delete;
    CHostContentStore& operator=(const CHostContentStore&) = delete;

    // A reference of the caller's own; null when none is kept.
    CComPtr<ITslContentStore> Get() noexcept {
        const CSection section(m_section);
        return m_contentStore;
    }

    // Keeps the store, unless another call has kept one meanwhile. Returns the one that is kept.
    CComPtr<ITslContentStore> Keep(CComPtr<ITslContentStore> created) noexcept {
        const CSection section(m_section);
        if (!m_contentStore) m_contentStore.Swap(created);
        return m_contentStore;
    }

private:
    class CSection {
    public:
        explicit CSection(SRWLOCK& section) noexcept : m_section(section) {
            AcquireSRWLockExclusive(&m_section);
        }
        CSection(const CSection&) = delete;
        CSection& operator=(const CSection&) = delete;
        ~CSection() { ReleaseSRWLockExclusive(&m_section); }

    private:
        SRWLOCK& m_section;
    };

    SRWLOCK m_section = SRWLOCK_INIT;
    CComPtr<ITslContentStore> m_contentStore;
};

} // namespace tsl
