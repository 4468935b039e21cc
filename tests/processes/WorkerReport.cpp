#include "tests/processes/WorkerReport.h"

#include <sstream>
#include <stdexcept>

namespace tsl::test {

void ReportWriter::Add(const WorkerCall& call) {
    std::ostringstream line;
    line << call.operation << ' ' << call.recordId << ' ' << call.result << ' ' << call.microseconds
         << '\n';
    m_file << line.str() << std::flush;
    if (!m_file) throw std::runtime_error("a worker cannot write its report");
}

std::vector<WorkerCall> ReadReport(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::vector<WorkerCall> calls;
    for (std::string line; std::getline(file, line) && !file.eof();) {
        std::istringstream fields(line);
        WorkerCall call;
        if (!(fields >> call.operation >> call.recordId >> call.result >> call.microseconds)) {
            throw std::runtime_error("a report cannot be read: " + line);
        }
        calls.push_back(call);
    }
    return calls;
}

} // namespace tsl::test
