// Copies of the component, and the export table in an engine's file.
#include "tests/support/ComponentCopy.h"

#include <cstring>
#include <stdexcept>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr wchar_t kComponent[] = L"TslIfDbActionLog.dll";
constexpr wchar_t kAssembly[] = L"Corvane.Nimbra.SQLiteEngine";

// The bytes of a library's file, read by the addresses that they will have in memory.
class LibraryFile {
public:
    explicit LibraryFile(fs::path path) : m_path(std::move(path)), m_bytes(ReadBytes(m_path)) {
        const auto header = static_cast<size_t>(Read<IMAGE_DOS_HEADER>(0).e_lfanew);
        m_headers = Read<IMAGE_NT_HEADERS64>(header);
        m_sections = header + offsetof(IMAGE_NT_HEADERS64, OptionalHeader) +
                     m_headers.FileHeader.SizeOfOptionalHeader;
    }

    IMAGE_EXPORT_DIRECTORY Exports() const {
        const auto& directories = m_headers.OptionalHeader.DataDirectory;
        return ReadAt<IMAGE_EXPORT_DIRECTORY>(
            directories[IMAGE_DIRECTORY_ENTRY_EXPORT].VirtualAddress);
    }

    template <class T>
    T ReadAt(DWORD address) const {
        return Read<T>(Offset(address));
    }

    char* Text(DWORD address) { return reinterpret_cast<char*>(&m_bytes.at(Offset(address))); }

    void Save() const { WriteBytes(m_path, m_bytes); }

private:
    template <class T>
    T Read(size_t offset) const {
        T value;
        std::memcpy(&value, &m_bytes.at(offset), sizeof value);
        return value;
    }

    size_t Offset(DWORD address) const {
        for (size_t index = 0; index < m_headers.FileHeader.NumberOfSections; ++index) {
            const auto section =
                Read<IMAGE_SECTION_HEADER>(m_sections + index * sizeof(IMAGE_SECTION_HEADER));
            if (address >= section.VirtualAddress &&
                address < section.VirtualAddress + section.SizeOfRawData) {
                return address - section.VirtualAddress + section.PointerToRawData;
            }
        }
        throw std::runtime_error("address in no section");
    }

    fs::path m_path;
    Bytes m_bytes;
    IMAGE_NT_HEADERS64 m_headers{};
    size_t m_sections = 0;
};

// The name with another last letter that sorts between the neighbours, as names are searched by
// their order.
std::string NameBetween(const std::string& before, std::string name, const std::string& after) {
    const std::string original = name;
    for (char letter = '0'; letter <= 'z'; ++letter) {
        name.back() = letter;
        if (name != original && before < name && name < after) return name;
    }
    throw std::runtime_error("no other name sorts in the place of " + original);
}

} // namespace

ComponentCopy::ComponentCopy() {
    static unsigned serial = 0;
    m_folder =
        fs::temp_directory_path() / ("component_copy_" + std::to_string(GetCurrentProcessId()) +
                                     "_" + std::to_string(++serial));
    fs::remove_all(m_folder); // of an earlier process of the same number
    fs::create_directories(m_folder);
    fs::copy_file(ProgramFolder() / kComponent, m_folder / kComponent);
    m_module = LoadLibraryW((m_folder / kComponent).c_str());
    if (!m_module) throw std::runtime_error("the copied component cannot be loaded");
}

ComponentCopy::~ComponentCopy() {
    FreeLibrary(m_module);
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

fs::path ComponentCopy::EngineLibrary() const {
    return m_folder / kAssembly / L"SQLite3.dll";
}

void ComponentCopy::AddEngine() const {
    fs::copy(ProgramFolder() / kAssembly, m_folder / kAssembly);
}

void ComponentCopy::RenameEngineExport(const std::string& name) const {
    LibraryFile library(EngineLibrary());
    const IMAGE_EXPORT_DIRECTORY exports = library.Exports();
    const auto nameAt = [&](DWORD index) -> char* {
        const auto slot = static_cast<DWORD>(exports.AddressOfNames + index * sizeof(DWORD));
        return library.Text(library.ReadAt<DWORD>(slot));
    };
    for (DWORD index = 1; index + 1 < exports.NumberOfNames; ++index) {
        if (nameAt(index) != name) continue;
        const std::string changed = NameBetween(nameAt(index - 1), name, nameAt(index + 1));
        std::memcpy(nameAt(index), changed.data(), changed.size());
        library.Save();
        return;
    }
    throw std::runtime_error(name + " is not exported");
}

} // namespace tsl::test
