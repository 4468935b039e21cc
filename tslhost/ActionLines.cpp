#include "tslhost/ActionLines.h"

#include <iterator>
#include <limits>
#include <string_view>

#include "console/Failure.h"

namespace tsl {

namespace {

// More than any action has; a line is held in memory.
constexpr size_t kLongestLine = 16 << 20;

} // namespace

bool CActionLines::Next() {
    while (Read()) {
        ++m_number;
        Trim();
        if (m_isTooLong || m_text.find_first_not_of(" \t") != std::string::npos) return true;
    }
    if (m_input.bad()) throw CFailure(ExitCode::Denied, "cannot read " + m_name);
    return false;
}

const std::string& CActionLines::Text() const {
    if (m_isTooLong) throw std::invalid_argument("the line is longer than 16 MB");
    return m_text;
}

// The next line without its end, in parts until it is known to be short enough. False when there is
// none.
bool CActionLines::Read() {
    m_text.clear();
    m_isTooLong = false;
    char part[1 << 14];
    for (;;) {
        m_input.getline(part, std::size(part));
        const auto count = static_cast<size_t>(m_input.gcount());
        const bool isWhole = m_input.good();
        m_text.append(part, isWhole ? count - 1 : count); // the line end is counted
        m_isTooLong = m_text.size() > kLongestLine;
        if (isWhole || m_input.eof() || m_input.bad()) return isWhole || !m_text.empty();
        m_input.clear(); // of a part that was filled
        if (m_isTooLong) break;
    }
    m_input.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    return true;
}

// Windows editors leave a byte order mark before the first line and a CR at the end of each.
void CActionLines::Trim() {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    if (m_number == 1 && m_text.starts_with(kByteOrderMark)) m_text.erase(0, kByteOrderMark.size());
    if (m_text.ends_with('\r')) m_text.pop_back();
}

} // namespace tsl
