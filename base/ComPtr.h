// Owner of an interface pointer. Not shared between threads without a lock of the caller's.
//
// The toolchain's own has a different idea of taking a pointer over than the platform's, so this is
// ours.
#pragma once

#include <windows.h>

#include <unknwn.h>

#include <utility>

namespace tsl {

// Gives its reference back when it goes.
template <class T>
class CComPtr {
public:
    CComPtr() noexcept = default;
    CComPtr(const CComPtr& other) noexcept : m_pointer(other.m_pointer) {
        if (m_pointer) m_pointer->AddRef();
    }
    CComPtr(CComPtr&& other) noexcept : m_pointer(other.Detach()) {}
    CComPtr& operator=(CComPtr other) noexcept {
        Swap(other);
        return *this;
    }
    ~CComPtr() { Reset(); }

    // Takes the caller's reference over.
    static CComPtr FromOwned(T* pointer) noexcept {
        CComPtr owner;
        owner.m_pointer = pointer;
        return owner;
    }

    T* Get() const noexcept { return m_pointer; }
    T* operator->() const noexcept { return m_pointer; }
    T& operator*() const noexcept { return *m_pointer; }
    explicit operator bool() const noexcept { return m_pointer != nullptr; }

    // Forgets the pointer before it gives the reference back: the object may call back meanwhile.
    void Reset() noexcept {
        T* const released = Detach();
        if (released) released->Release();
    }
    // Hands the reference to the caller.
    T* Detach() noexcept { return std::exchange(m_pointer, nullptr); }
    void Swap(CComPtr& other) noexcept { std::swap(m_pointer, other.m_pointer); }

    // Where a call puts a new reference; what was held is given back first.
    T** Put() noexcept {
        Reset();
        return &m_pointer;
    }
    void** PutVoid() noexcept { return reinterpret_cast<void**>(Put()); }

private:
    T* m_pointer = nullptr;
};

// The interface of an object; null when the object is null or does not give it. What a failing
// object leaves behind is not taken for a reference.
template <class T>
CComPtr<T> QueryFor(IUnknown* object, REFIID iid) {
    CComPtr<T> found;
    if (object && FAILED(object->QueryInterface(iid, found.PutVoid()))) found.Detach();
    return found;
}

} // namespace tsl
