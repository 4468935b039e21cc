// Reads headers, the import and export tables and the symbols of a 64-bit PE file, without loading
// it.
#pragma once

#include <string>
#include <vector>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

class PeFile {
public:
    // Throws std::runtime_error when the file is no 64-bit PE file.
    explicit PeFile(const std::filesystem::path& path);

    // Names of the DLLs that it imports from, at its load or on first use.
    std::vector<std::string> ImportedModules() const;
    // Names that it exports. Throws when it exports anything without a name.
    std::vector<std::string> ExportedNames() const;
    // How many calls there are of a function; none when the file has no symbols, or none of that
    // name.
    size_t CallsOf(const std::string& function) const;
    // The headers that speak of the file as a whole, and of each of its sections.
    const IMAGE_NT_HEADERS64& Headers() const;
    std::vector<IMAGE_SECTION_HEADER> Sections() const;

private:
    template <class T>
    const T& At(size_t offset) const;
    size_t OffsetOf(DWORD address) const;
    // Addresses in the image; 0 for a symbol that is not there.
    DWORD AddressOf(const std::string& symbol) const;
    std::string Text(DWORD address) const;
    IMAGE_DATA_DIRECTORY Directory(size_t index) const;
    template <class Descriptor>
    void AddModules(size_t directory, DWORD Descriptor::* name,
                    std::vector<std::string>& modules) const;

    Bytes m_bytes;
    size_t m_headers = 0;
};

} // namespace tsl::test
