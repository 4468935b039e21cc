// What every object of the module is built on: the reference count, the critical section and, for
// an aggregated object, the outer pointer.
//
// A class T that CComObject or CComAggObject makes creatable derives from CComObjectRootEx and its
// interfaces, has a default constructor, and may hide:
//   HRESULT FinalConstruct()   runs once after construction; a failure undoes the creation
//   void FinalRelease()        runs before destruction, while calls into the object still work
//   IUnknown* FindInterface(REFIID)   the interface that answers an IID, without AddRef, or null
#pragma once

#include "component/com/CriticalSection.h"

namespace tsl {

// Counts with interlocked operations: objects may be used from any thread.
struct CComMultiThreadModel {
    static ULONG Increment(LONG* count) noexcept {
        return static_cast<ULONG>(InterlockedIncrement(count));
    }
    static ULONG Decrement(LONG* count) noexcept {
        return static_cast<ULONG>(InterlockedDecrement(count));
    }
};

template <class ThreadModel>
class CComObjectRootEx {
public:
    CComObjectRootEx() noexcept = default;
    CComObjectRootEx(const CComObjectRootEx&) = delete;
    CComObjectRootEx& operator=(const CComObjectRootEx&) = delete;

    // Before any other use: S_OK, or the Win32 error as an HRESULT.
    HRESULT InitializeLock() noexcept { return m_section.Initialize(); }

    HRESULT FinalConstruct() { return S_OK; }
    void FinalRelease() noexcept {}

    void Lock() noexcept { m_section.Lock(); }
    void Unlock() noexcept { m_section.Unlock(); }

protected:
    ~CComObjectRootEx() = default;

    ULONG InternalAddRef() noexcept { return ThreadModel::Increment(&m_references); }
    ULONG InternalRelease() noexcept { return ThreadModel::Decrement(&m_references); }

    // Moves the count out of reach of zero, so that references taken and given back while the
    // object is being destroyed do not destroy it again.
    void BiasReferences() noexcept { m_references = kDestructionBias; }

    void SetOuter(IUnknown* outer) noexcept { m_outer = outer; }
    IUnknown* Outer() const noexcept { return m_outer; }

private:
    static constexpr LONG kDestructionBias = 0x40000000;

    CComCriticalSection m_section;
    IUnknown* m_outer = nullptr; // not counted: the outer object owns this one
    LONG m_references = 0;
};

// Second half of a construction: what can fail and be reported.
template <class T>
HRESULT ConstructObject(T& object) {
    const HRESULT result = object.InitializeLock();
    return FAILED(result) ? result : object.FinalConstruct();
}

// Answers QueryInterface from the object's FindInterface. The out-pointer is null after a failure.
template <class T>
HRESULT QueryInterfaceOf(T& object, REFIID iid, void** result) noexcept {
    if (!result) return E_POINTER;
    IUnknown* const found = object.FindInterface(iid);
    *result = found;
    if (!found) return E_NOINTERFACE;
    found->AddRef();
    return S_OK;
}

} // namespace tsl
