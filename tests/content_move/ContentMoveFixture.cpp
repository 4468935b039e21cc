#include "tests/content_move/ContentMoveFixture.h"

namespace tsl::test {

namespace {

CVariant TextOrNull(const std::optional<std::wstring>& text) {
    return text ? CVariant::FromText(std::wstring_view(*text)) : CVariant();
}

} // namespace

HRESULT ContentMoveTest::Move() {
    const CVariant oldValues[] = {TextOrNull(oldTexts[0]), TextOrNull(oldTexts[1])};
    const CVariant newValues[] = {TextOrNull(newTexts[0]), TextOrNull(newTexts[1])};
    return UpdateContentItems(*m_kept, {{oldValues[0].Get().bstrVal, oldValues[1].Get().bstrVal},
                                        {newValues[0].Get().bstrVal, newValues[1].Get().bstrVal},
                                        number.Get()});
}

HRESULT ContentMoveTest::Move(std::wstring_view first, std::wstring_view second) {
    oldTexts[0] = first;
    oldTexts[1] = second;
    return Move();
}

} // namespace tsl::test
