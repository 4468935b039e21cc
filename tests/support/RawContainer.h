// A container that hands out VARIANTs exactly as a test makes them: careless hosts do too.
#pragma once

#include <functional>
#include <map>
#include <vector>

#include "tests/support/Containers.h"
#include "tests/support/ForwardingContainer.h"

namespace tsl::test {

class RawContainer final : public ForwardingContainer {
public:
    // Fills the value, which is empty, and says what GetValue returns. The caller clears the value.
    using Maker = std::function<HRESULT(VARIANT&)>;

    // Keys without a maker are answered by the other container.
    explicit RawContainer(CComPtr<CTslParamContainer> others)
        : ForwardingContainer(std::move(others)) {}

    RawContainer& Make(UINT64 key, Maker maker) {
        m_makers[key] = std::move(maker);
        return *this;
    }

    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        const auto maker = m_makers.find(key);
        return maker == m_makers.end() ? ForwardingContainer::GetValue(key, value)
                                       : maker->second(*value);
    }

private:
    std::map<UINT64, Maker> m_makers;
};

} // namespace tsl::test
