// The host's content store for a test: holds items, notes every call with its arguments, counts its
// references, and answers, fails or calls back as the test tells it.
#pragma once

#include <functional>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "base/ComPtr.h"
#include "console/ContentStoreBase.h"
#include "tests/support/OneObjectClass.h"

namespace tsl::test {

// One reference is the test's own, which keeps it; it is never deleted.
class ContentStoreDouble final : public CContentStoreBase {
public:
    // Properties are containers, or whatever else a careless host has among them.
    struct Item {
        UINT64 id = 0;
        std::vector<CComPtr<IUnknown>> properties;
    };
    // Fills an answer, which is empty, and says what the call returns. The caller clears it.
    using Answer = std::function<HRESULT(VARIANT& answer)>;

    // All of them are found by any text, in this order. What is written replaces the properties.
    std::vector<Item> items;
    // If set, the answer to FindItems.
    Answer foundItems;
    // The answers for items whose properties are asked for, where they are not those held.
    std::map<UINT64, Answer> itemProperties;
    // What the calls of these numbers return; they are counted from 1 over all methods. A call that
    // fails does nothing else.
    std::map<size_t, HRESULT> results;
    // What the query for the interface of a content store answers.
    HRESULT queryResult = S_OK;

    // Run inside each call of a method, and inside each Release before the count goes down.
    std::function<void()> onCall;
    std::function<void()> onRelease;

    // "find 'text'", "get 7" and "set 7 {…}{…}", in order. A property that is written shows its
    // command code, then each key with its value: {code: key=value key=value}, keys in hexadecimal.
    std::vector<std::wstring> calls;

    void Hold(UINT64 id, std::initializer_list<IUnknown*> properties);
    // References that others hold.
    ULONG Held() const { return m_references - 1; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return ++m_references; }
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE FindItems(BSTR text, VARIANT* itemIds) override;
    HRESULT STDMETHODCALLTYPE GetItemProperties(UINT64 itemId, VARIANT* properties) override;
    HRESULT STDMETHODCALLTYPE SetItemProperties(UINT64 itemId, VARIANT* properties) override;

private:
    HRESULT Note(std::wstring call);
    Item* Find(UINT64 itemId);

    ULONG m_references = 1;
};

// The class of a content store.
class ContentStoreClass final : public OneObjectClass {
public:
    explicit ContentStoreClass(IUnknown& store) : m_store(store) {}

protected:
    IUnknown& TheObject() override { return m_store; }

private:
    IUnknown& m_store;
};

} // namespace tsl::test
