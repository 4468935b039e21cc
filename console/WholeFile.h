// A file that is written whole or not at all: what was there before stays until then.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace tsl {

class CWholeFile {
public:
    // Throws CFailure when it cannot be made.
    explicit CWholeFile(const std::string& path);
    CWholeFile(const CWholeFile&) = delete;
    CWholeFile& operator=(const CWholeFile&) = delete;
    // Without Commit nothing is left of it.
    ~CWholeFile();

    std::ostream& Stream() { return m_stream; }

    // Puts it in its place. Throws CFailure when something of it could not be written.
    void Commit();

private:
    std::filesystem::path m_path;
    std::filesystem::path m_made;
    std::ofstream m_stream;
};

} // namespace tsl
