#include "tests/integration/PeFile.h"

#include <cstring>
#include <stdexcept>

namespace tsl::test {

PeFile::PeFile(const std::filesystem::path& path) : m_bytes(ReadBytes(path)) {
    m_headers = static_cast<size_t>(At<IMAGE_DOS_HEADER>(0).e_lfanew);
    const auto& headers = At<IMAGE_NT_HEADERS64>(m_headers);
    if (headers.Signature != IMAGE_NT_SIGNATURE ||
        headers.OptionalHeader.Magic != IMAGE_NT_OPTIONAL_HDR64_MAGIC) {
        throw std::runtime_error("no 64-bit PE file");
    }
}

template <class T>
const T& PeFile::At(size_t offset) const {
    if (m_bytes.size() < sizeof(T) || offset > m_bytes.size() - sizeof(T)) {
        throw std::runtime_error("PE file is cut short");
    }
    return *reinterpret_cast<const T*>(m_bytes.data() + offset);
}

const IMAGE_NT_HEADERS64& PeFile::Headers() const {
    return At<IMAGE_NT_HEADERS64>(m_headers);
}

std::vector<IMAGE_SECTION_HEADER> PeFile::Sections() const {
    const size_t first = m_headers + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) +
                         Headers().FileHeader.SizeOfOptionalHeader;
    std::vector<IMAGE_SECTION_HEADER> sections;
    for (size_t index = 0; index < Headers().FileHeader.NumberOfSections; ++index) {
        sections.push_back(At<IMAGE_SECTION_HEADER>(first + index * sizeof(IMAGE_SECTION_HEADER)));
    }
    return sections;
}

// Where in the file the image's address lies.
size_t PeFile::OffsetOf(DWORD address) const {
    for (const IMAGE_SECTION_HEADER& section : Sections()) {
        if (address >= section.VirtualAddress &&
            address - section.VirtualAddress < section.SizeOfRawData) {
            return section.PointerToRawData + (address - section.VirtualAddress);
        }
    }
    throw std::runtime_error("address outside of every section");
}

std::string PeFile::Text(DWORD address) const {
    std::string text;
    for (size_t offset = OffsetOf(address); At<char>(offset) != '\0'; ++offset)
        text += At<char>(offset);
    return text;
}

IMAGE_DATA_DIRECTORY PeFile::Directory(size_t index) const {
    return Headers().OptionalHeader.DataDirectory[index];
}

template <class Descriptor>
void PeFile::AddModules(size_t directory, DWORD Descriptor::* name,
                        std::vector<std::string>& modules) const {
    const DWORD address = Directory(directory).VirtualAddress;
    if (address == 0) return;
    for (size_t offset = OffsetOf(address); At<Descriptor>(offset).*name != 0;
         offset += sizeof(Descriptor)) {
        modules.push_back(Text(At<Descriptor>(offset).*name));
    }
}

std::vector<std::string> PeFile::ImportedModules() const {
    std::vector<std::string> modules;
    AddModules(IMAGE_DIRECTORY_ENTRY_IMPORT, &IMAGE_IMPORT_DESCRIPTOR::Name, modules);
    AddModules(IMAGE_DIRECTORY_ENTRY_DELAY_IMPORT, &IMAGE_DELAYLOAD_DESCRIPTOR::DllNameRVA,
               modules);
    return modules;
}

DWORD PeFile::AddressOf(const std::string& symbol) const {
    const size_t table = Headers().FileHeader.PointerToSymbolTable;
    const size_t count = Headers().FileHeader.NumberOfSymbols;
    const size_t names = table + count * IMAGE_SIZEOF_SYMBOL;
    const auto nameOf = [&](const IMAGE_SYMBOL& entry) {
        if (entry.N.Name.Short == 0) return std::string(&At<char>(names + entry.N.Name.Long));
        const auto* const first = reinterpret_cast<const char*>(entry.N.ShortName);
        return std::string(first, strnlen(first, sizeof entry.N.ShortName));
    };
    for (size_t index = 0; index < count; ++index) {
        const auto& entry = At<IMAGE_SYMBOL>(table + index * IMAGE_SIZEOF_SYMBOL);
        if (entry.SectionNumber > 0 && nameOf(entry) == symbol) {
            return Sections().at(static_cast<size_t>(entry.SectionNumber) - 1).VirtualAddress +
                   entry.Value;
        }
        index += entry.NumberOfAuxSymbols;
    }
    return 0;
}

size_t PeFile::CallsOf(const std::string& function) const {
    constexpr unsigned char kCall = 0xE8; // and how far away, from the next instruction on
    constexpr size_t kLength = 1 + sizeof(INT32);
    const DWORD wanted = AddressOf(function);
    size_t calls = 0;
    for (const IMAGE_SECTION_HEADER& section : Sections()) {
        if (wanted == 0 || !(section.Characteristics & IMAGE_SCN_MEM_EXECUTE)) continue;
        for (size_t offset = 0; offset + kLength <= section.SizeOfRawData; ++offset) {
            const size_t place = section.PointerToRawData + offset;
            if (At<unsigned char>(place) != kCall) continue;
            INT32 distance = 0;
            std::memcpy(&distance, &At<unsigned char>(place + 1), sizeof distance);
            const size_t next = section.VirtualAddress + offset + kLength;
            if (next + static_cast<size_t>(static_cast<INT64>(distance)) == wanted) ++calls;
        }
    }
    return calls;
}

std::vector<std::string> PeFile::ExportedNames() const {
    std::vector<std::string> names;
    const DWORD address = Directory(IMAGE_DIRECTORY_ENTRY_EXPORT).VirtualAddress;
    if (address == 0) return names;
    const auto& exports = At<IMAGE_EXPORT_DIRECTORY>(OffsetOf(address));
    if (exports.NumberOfFunctions != exports.NumberOfNames) {
        throw std::runtime_error("an export has no name");
    }
    for (DWORD index = 0; index < exports.NumberOfNames; ++index) {
        names.push_back(Text(At<DWORD>(OffsetOf(exports.AddressOfNames) + index * sizeof(DWORD))));
    }
    return names;
}

} // namespace tsl::test
