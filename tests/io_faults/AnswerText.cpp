#include "tests/io_faults/AnswerText.h"

#include <gtest/gtest.h>

#include "base/ArrayView.h"
#include "component/host/ITslParamContainer.h"

namespace tsl::test {

std::wstring AnswerText(CVariant& answer) {
    std::wstring text;
    CValueView<IUnknown*> containers;
    EXPECT_EQ(S_OK, containers.Open(*answer.Address()));
    for (IUnknown* const element : containers.Values()) {
        auto& container = *static_cast<ITslParamContainer*>(element);
        CVariant keys;
        CValueView<ULONGLONG> keyView;
        EXPECT_EQ(S_OK, container.GetKeys(keys.Address()));
        EXPECT_EQ(S_OK, keyView.Open(*keys.Address()));
        text += L'[';
        for (const ULONGLONG key : keyView.Values()) {
            CVariant value;
            EXPECT_EQ(S_OK, container.GetValue(key, value.Address()));
            text += std::to_wstring(key) + L'=' + TextOf(value.Get()).value_or(L"?") + L' ';
        }
        text += L']';
    }
    return text;
}

} // namespace tsl::test
