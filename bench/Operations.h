// The operations that are measured, each as the component does it and as its floor does. Used by
// one thread.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/floor/Floor.h"
#include "bench/support/Host.h"
#include "bench/support/Store.h"

namespace tsl::bench {

struct Operation {
    std::string name;
    // Records in the action log.
    UINT32 size;
    // How often it is called in a run.
    int calls;
    // What a call adds to the action log and to the kept records, or takes from them.
    StoreCounts change = {};
    // Brings the store into the state that so many calls need; empty when there is nothing to do.
    std::function<void(int calls)> prepare = {};
    std::function<void()> component;
    // Empty for what is only timed by itself.
    std::function<void(const CFloor&)> floor;
};

class COperations {
public:
    COperations();

    const std::vector<Operation>& All() const noexcept { return m_operations; }

    CStores& Stores() noexcept { return m_stores; }
    // The work alone, and with the locks and the folder around it.
    const CFloor& Floor() const noexcept { return m_floor; }
    const CFloor& PreparedFloor() const noexcept { return m_preparedFloor; }
    const CPreparation& Preparation() const noexcept { return m_preparation; }

private:
    void AddRecording(UINT32 size);
    void AddQueries(UINT32 size);
    void AddDeletions(UINT32 size);
    void AddObject();
    void AddNotify(std::string name, UINT32 size, UINT32 logKind,
                   CComPtr<CTslParamContainer> action, StoreCounts change,
                   std::function<void(const CFloor&, const FloorRecord&)> floor);
    void AddHundredthNotify();

    CEngine m_engine;
    CStores m_stores{m_engine};
    CHost m_host;
    CPreparation m_preparation;
    CFloor m_floor{m_engine, nullptr};
    CFloor m_preparedFloor{m_engine, &m_preparation};
    std::vector<Operation> m_operations;
    // Where the next record that is there to be deleted or taken is.
    UINT32 m_nextToDelete = 0;
};

} // namespace tsl::bench
