// What the console host writes: UTF-8, results to the standard output, the rest to the error
// output. Lines may hold what others have written into files: characters that would steer the
// terminal are blanks in them (OneLine in Text.h).
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

// Several lines that hold nothing but what this program says itself.
void PrintHelp(std::string_view text);

enum class Colour { Green, Yellow, Red };

// The text in the colour where results go to a terminal that shows colours, unless the environment
// variable NO_COLOR holds anything; else the text as it is.
std::string Coloured(std::string_view text, Colour colour);

// One line of results that begins with a word of this program's own, in the colour.
void PrintLine(std::string_view word, Colour colour, std::string_view rest);

// In UTF-16 units: room for a path of many folders, and what else a message says.
inline constexpr size_t kLongestMessage = 2000;

// One line for the person: "tslhost: message". Of a longer one the middle is left out.
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
