// recover_damaged FOLDER COUNT: makes a sample store in the folder, damages its databases in COUNT
// ways, and recovers each. NAME/whole.db, NAME/000.db (damaged), NAME/000.recovered.db and
// NAME/kinds.txt (one line a file) are left for another program to compare; NAME is the database's.
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/upkeep/DamagedStore.h"
#include "upkeep/recovery/Recovery.h"

namespace tsl::test {

namespace {

namespace fs = std::filesystem;

std::wstring Number(size_t number) {
    const std::wstring digits = std::to_wstring(number);
    return std::wstring(3 - std::min<size_t>(3, digits.size()), L'0') + digits;
}

// Recovers it as the only database of a store in a folder of its own.
void RecoverAlone(const DamagedFile& file, const wchar_t* name, const fs::path& folder,
                  const fs::path& result) {
    const fs::path place = folder / L"place";
    fs::remove_all(place);
    fs::create_directories(place);
    PutInPlace(file, place / name);
    RecoverOptions options;
    options.force = true;
    RecoverStore(StoreIn(place.wstring()), options);
    fs::rename(place / name, result);
    fs::remove_all(place);
}

void RecoverAll(const fs::path& whole, const wchar_t* name, size_t count) {
    const fs::path folder = whole.parent_path() / fs::path(name).stem();
    fs::create_directories(folder);
    const Bytes bytes = ReadBytes(whole);
    WriteBytes(folder / L"whole.db", bytes);
    std::ofstream kinds(folder / L"kinds.txt", std::ios::binary);
    const std::vector<DamagedFile> damaged = DamagedDatabases(bytes, count);
    for (size_t number = 0; number < damaged.size(); ++number) {
        const std::wstring base = Number(number);
        PutInPlace(damaged[number], folder / (base + L".db"));
        RecoverAlone(damaged[number], name, folder, folder / (base + L".recovered.db"));
        kinds << damaged[number].how << '\n';
    }
    std::cout << damaged.size() << " files of " << fs::path(name).string() << std::endl;
}

} // namespace

} // namespace tsl::test

int main(int count, char** arguments) {
    using namespace tsl;
    using namespace tsl::test;
    if (count != 3) return 2;
    try {
        const std::filesystem::path folder = arguments[1];
        std::filesystem::create_directories(folder);
        const StorePaths store = StoreIn(folder.wstring());
        MakeSampleStore(store);
        const size_t files = std::stoul(arguments[2]);
        RecoverAll(store.actionLog, kActionLogFileName, files);
        RecoverAll(store.replayLog, kReplayFileName, files / 4);
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 1;
    }
    return 0;
}
