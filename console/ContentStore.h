// The console host's content store: holds content items in memory for the component to find, read
// and write. Used by one thread.
#pragma once

#include "console/ContentItems.h"
#include "console/ContentStoreBase.h"

namespace tsl {

// References are not counted: whoever makes the store owns it.
class CContentStore final : public CContentStoreBase {
public:
    explicit CContentStore(std::vector<ContentItem> items) : m_items(std::move(items)) {}

    const std::vector<ContentItem>& Items() const { return m_items; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    // The items with a property whose first text is this one, in any case.
    HRESULT STDMETHODCALLTYPE FindItems(BSTR text, VARIANT* itemIds) override;
    // Both E_INVALIDARG for an unknown item.
    HRESULT STDMETHODCALLTYPE GetItemProperties(UINT64 itemId, VARIANT* properties) override;
    HRESULT STDMETHODCALLTYPE SetItemProperties(UINT64 itemId, VARIANT* properties) override;

private:
    ContentItem* Find(UINT64 itemId);

    std::vector<ContentItem> m_items;
};

} // namespace tsl
