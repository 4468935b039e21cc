#include "query/IdListStatement.h"

#include "store/Schema.h"

namespace tsl {

std::wstring IdListStatement(const std::wstring& table, size_t count) {
    std::wstring text = L"SELECT * FROM " + table + L" WHERE " + kActionLogIdColumn + L" IN(";
    text.reserve(text.size() + 2 * count + 1);
    for (size_t index = 0; index < count; ++index)
        text += index == 0 ? L"?" : L",?";
    return text += L')';
}

} // namespace tsl
