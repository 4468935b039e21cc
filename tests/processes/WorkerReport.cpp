#include "tests/processes/WorkerReport.h"

#include <fstream>
#include <stdexcept>

namespace tsl::test {

void WriteReport(const std::filesystem::path& path, const std::vector<WorkerCall>& calls) {
    std::ofstream file(path);
    for (const WorkerCall& call : calls) {
        file << call.operation << ' ' << call.recordId << ' ' << call.result << ' '
             << call.microseconds << '\n';
    }
    file.close();
    if (!file) throw std::runtime_error("a worker cannot write its report");
}

std::vector<WorkerCall> ReadReport(const std::filesystem::path& path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("a worker left no report");
    std::vector<WorkerCall> calls;
    WorkerCall call;
    while (file >> call.operation >> call.recordId >> call.result >> call.microseconds)
        calls.push_back(call);
    return calls;
}

} // namespace tsl::test
