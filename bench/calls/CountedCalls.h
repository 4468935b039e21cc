// Functions that count how often they are called and go on to the one they stand for. The counting
// changes no register and no argument. Used by one thread but for the calls themselves.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <string>

namespace tsl::bench {

using CallCounts = std::map<std::string, std::uint64_t>;

class CCountedCalls {
public:
    CCountedCalls();
    CCountedCalls(const CCountedCalls&) = delete;
    CCountedCalls& operator=(const CCountedCalls&) = delete;
    ~CCountedCalls();

    // What to call instead of the function, while this lives; the same for the same name and
    // function.
    void* Count(const std::string& name, void* function);

    // How often each was called since the last time; those that were not called are left out.
    CallCounts Take();

private:
    struct Thunk;

    Thunk* m_thunks;
    std::map<std::pair<std::string, void*>, Thunk*> m_used;
};

} // namespace tsl::bench
