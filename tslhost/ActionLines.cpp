#include "tslhost/ActionLines.h"

#include <string_view>

#include "console/Failure.h"

namespace tsl {

bool CActionLines::Next() {
    while (std::getline(m_input, m_text)) {
        ++m_number;
        Trim();
        if (m_text.find_first_not_of(" \t") != std::string::npos) return true;
    }
    if (m_input.bad()) throw CFailure(ExitCode::Denied, "cannot read " + m_name);
    return false;
}

// Windows editors leave a byte order mark before the first line and a CR at the end of each.
void CActionLines::Trim() {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (m_number == 1 && m_text.starts_with(kByteOrderMark)) m_text.erase(0, kByteOrderMark.size());
    if (m_text.ends_with('\r')) m_text.pop_back();
}

} // namespace tsl
