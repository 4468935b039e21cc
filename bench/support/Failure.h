// How the benchmark programs end when something fails: one line on stderr and exit code 1.
#pragma once

#include <exception>
#include <iostream>

#include "base/Hresult.h"

namespace tsl::bench {

template <class Run>
int RunAndTellFailure(const char* program, Run run) {
    try {
        run();
        return 0;
    } catch (const CHresultError& error) {
        std::cerr << program << ": failed with 0x" << std::hex
                  << static_cast<unsigned long>(error.Result()) << std::endl;
    } catch (const std::exception& error) {
        std::cerr << program << ": " << error.what() << std::endl;
    }
    return 1;
}

} // namespace tsl::bench
