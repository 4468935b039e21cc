// What a worker process tells about its calls: a line each, "operation id result microseconds",
// written when the call has returned, so that the report of a killed process is true as far as it
// goes.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace tsl::test {

struct WorkerCall {
    std::string operation;
    UINT32 recordId = 0;
    HRESULT result = S_OK;
    std::int64_t microseconds = 0;
};

class ReportWriter {
public:
    explicit ReportWriter(const std::filesystem::path& path) : m_file(path) {}

    // Throws std::runtime_error.
    void Add(const WorkerCall& call);

private:
    std::ofstream m_file;
};

// The calls of the whole lines; none where there is no file.
std::vector<WorkerCall> ReadReport(const std::filesystem::path& path);

} // namespace tsl::test
