// The lines of a file of actions.
#pragma once

#include <istream>
#include <string>

namespace tsl {

// Reads them one after the other; blank ones are passed over.
class CActionLines {
public:
    // The name is that of messages. The stream is not owned.
    CActionLines(std::istream& input, std::string name) : m_input(input), m_name(std::move(name)) {}

    // False at the end. Throws CFailure when the stream cannot be read.
    bool Next();

    const std::string& Text() const noexcept { return m_text; }
    // "file:17: "
    std::string Place() const { return m_name + ":" + std::to_string(m_number) + ": "; }

private:
    void Trim();

    std::istream& m_input;
    const std::string m_name;
    std::string m_text;
    size_t m_number = 0;
};

} // namespace tsl
