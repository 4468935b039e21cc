#include "console/Output.h"

#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <string>

#include "console/Text.h"

namespace tsl {

namespace {

void Write(std::FILE* stream, std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stream);
    std::fflush(stream);
}

// A terminal that does not know the escape sequences would show them.
bool ShowsColours() {
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (GetEnvironmentVariableW(L"NO_COLOR", nullptr, 0) > 1 || !GetConsoleMode(output, &mode))
        return false;
    return (mode & ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0 ||
           SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

const char* EscapeOf(Colour colour) noexcept {
    switch (colour) {
    case Colour::Green:
        return "\x1b[32m";
    case Colour::Yellow:
        return "\x1b[33m";
    default:
        return "\x1b[31m";
    }
}

} // namespace

void PrepareOutput() {
    SetConsoleOutputCP(CP_UTF8);
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
}

size_t OutputWidth() {
    constexpr size_t kDefaultWidth = 80;
    CONSOLE_SCREEN_BUFFER_INFO screen{};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &screen)) return kDefaultWidth;
    const int width = screen.srWindow.Right - screen.srWindow.Left + 1;
    return width > 0 ? static_cast<size_t>(width) : kDefaultWidth;
}

void PrintLine(std::string_view line) {
    Write(stdout, OneLine(line).append("\n"));
}

void PrintHelp(std::string_view text) {
    std::string lines(text);
    Write(stdout, lines.append("\n"));
}

std::string Coloured(std::string_view text, Colour colour) {
    std::string coloured(text);
    if (!ShowsColours()) return coloured;
    return EscapeOf(colour) + coloured + "\x1b[0m";
}

void PrintLine(std::string_view word, Colour colour, std::string_view rest) {
    Write(stdout, Coloured(word, colour).append(OneLine(rest)).append("\n"));
}

void PrintError(std::string_view message) {
    std::string text("tslhost: ");
    Write(stderr, text.append(Abridged(OneLine(message), kLongestMessage)).append("\n"));
}

CProgress::CProgress() : m_terminal(_isatty(_fileno(stderr)) != 0) {}

void CProgress::Show(std::string_view text) {
    constexpr unsigned long long kIntervalMilliseconds = 100;
    const unsigned long long now = GetTickCount64();
    if (!m_terminal || now < m_nextMilliseconds) return;
    m_nextMilliseconds = now + kIntervalMilliseconds;
    std::string rewritten("\r");
    Write(stderr, rewritten.append(OneLine(text)));
    m_shown = true;
}

void CProgress::Clear() {
    if (m_shown) Write(stderr, "\r\x1b[K");
    m_shown = false;
}

} // namespace tsl
