// What the console host writes: UTF-8, results to the standard output, the rest to the error
// output.
#pragma once

#include <string>
#include <string_view>

namespace tsl {

// Makes all streams carry the bytes as they are, and a terminal show them as UTF-8.
void PrepareOutput();

// Columns of the terminal; 80 when the results go elsewhere.
size_t OutputWidth();

// One line of results.
void PrintLine(std::string_view line);

enum class Colour { Green, Yellow, Red };

// The text in the colour where results go to a terminal that shows colours, unless the environment
// variable NO_COLOR holds anything; else the text as it is.
std::string Coloured(std::string_view text, Colour colour);

// One line for the person: "tslhost: message".
void PrintError(std::string_view message);

// A counter that is rewritten in place on a terminal, and never shown elsewhere.
class CProgress {
public:
    CProgress();
    CProgress(const CProgress&) = delete;
    CProgress& operator=(const CProgress&) = delete;
    ~CProgress() { Clear(); }

    // Shows the text, at most every tenth of a second.
    void Show(std::string_view text);
    // Makes room for other lines.
    void Clear();

private:
    bool m_terminal;
    bool m_shown = false;
    unsigned long long m_nextMilliseconds = 0;
};

} // namespace tsl
