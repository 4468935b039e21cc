// What a worker process tells about its calls: a line each, "operation id result microseconds".
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace tsl::test {

struct WorkerCall {
    std::string operation;
    UINT32 recordId = 0;
    HRESULT result = S_OK;
    std::int64_t microseconds = 0;
};

// Throw std::runtime_error.
void WriteReport(const std::filesystem::path& path, const std::vector<WorkerCall>& calls);
std::vector<WorkerCall> ReadReport(const std::filesystem::path& path);

} // namespace tsl::test
