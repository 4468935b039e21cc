// What each page of a database is known to be used for. One byte a page.
#pragma once

#include <windows.h>

#include <vector>

namespace tsl {

class CPageUse {
public:
    explicit CPageUse(UINT32 pageCount) : m_used(size_t{pageCount} + 1) {}

    // REQUIRES for both: the page is one of the file.
    bool IsUsed(UINT32 page) const { return m_used[page] != 0; }
    void Use(UINT32 page) { m_used[page] = 1; }

private:
    std::vector<unsigned char> m_used;
};

} // namespace tsl
