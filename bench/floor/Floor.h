// The least that each operation can cost: the statements, the file rewrites and the containers that
// it cannot do without, and nothing else. With a preparation, also the locks and the care for the
// folder that every call must take. Every failure is a CHresultError. Used by one thread.
#pragma once

#include <span>
#include <vector>

#include "base/ComPtr.h"
#include "base/Variant.h"
#include "bench/floor/FloorDatabase.h"
#include "bench/floor/Preparation.h"
#include "component/host/ITslParamContainer.h"

namespace tsl::bench {

// A record as it is written: of the action that is measured, with its text made beforehand.
struct FloorRecord {
    UINT32 recordId;
    const wchar_t* name;
    const wchar_t* parameters;
};

class CFloor {
public:
    // Without a preparation, only the work itself.
    CFloor(const CEngine& engine, const CPreparation* preparation);

    CVariant NextId() const;

    // In one table, two, or three.
    void WriteActionLog(const FloorRecord& record) const { Write(m_actionLog, record); }
    void WriteReplay(const FloorRecord& record) const { Write(m_replay, record); }
    void WriteKept(const FloorRecord& record) const { Write(m_kept, record); }

    CVariant IdsByTime(DATE first, DATE last) const;
    CVariant IdsByRange(UINT32 first, UINT32 last) const;
    CVariant AllIds() const;
    CVariant Records(std::span<const ULONG> ids) const;
    CVariant Take(UINT32 recordId) const;

    void DeleteOne(UINT32 recordId) const;
    void DeleteIdRange(UINT32 first, UINT32 last) const;
    void DeleteTimeRange(DATE first, DATE last) const;

private:
    using Lock = HANDLE (CPreparation::*)() const noexcept;
    static constexpr Lock kSqliteAccess = &CPreparation::SqliteAccessLock;
    static constexpr Lock kLogId = &CPreparation::LogIdLock;
    static constexpr Lock kNoLock = nullptr;

    CPreparedWork Prepare(Lock lock) const { return CPreparedWork(m_preparation, lock); }
    void Write(const FloorTable& table, const FloorRecord& record) const;
    UINT32 ReadCounter() const;
    template <class Bound>
    void DeleteRange(const wchar_t* column, Bound first, Bound last) const;

    const CEngine& m_engine;
    const CPreparation* m_preparation;
    FloorTable m_actionLog;
    FloorTable m_kept;
    FloorTable m_replay;
    std::wstring m_counterPath;
};

// A container of an answer, made by its class as the host registered it.
CComPtr<ITslParamContainer> MakeContainer(UINT64 commandCode);
void SetIn(ITslParamContainer& container, UINT64 key, CVariant value);

// The containers as the host gets them.
CVariant PackContainers(std::vector<CComPtr<ITslParamContainer>>& containers);

} // namespace tsl::bench
