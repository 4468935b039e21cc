// The lines of a file of actions.
#pragma once

#include <istream>
#include <stdexcept>
#include <string>

namespace tsl {

// Reads them one after the other; blank ones are passed over.
class CActionLines {
public:
    // The name is that of messages. The stream is not owned.
    CActionLines(std::istream& input, std::string name) : m_input(input), m_name(std::move(name)) {}

    // False at the end. Throws CFailure when the stream cannot be read.
    bool Next();

    // Throws std::invalid_argument for a line that was too long to be read whole.
    const std::string& Text() const;
    // "file:17: "
    std::string Place() const { return m_name + ":" + std::to_string(m_number) + ": "; }

private:
    bool Read();
    void Trim();

    std::istream& m_input;
    const std::string m_name;
    std::string m_text;
    size_t m_number = 0;
    bool m_isTooLong = false;
};

} // namespace tsl
