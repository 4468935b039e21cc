// Links as somebody would plant them in a folder that anyone may write, and what they lead to.
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

enum class LinkKind { Symbolic, Dangling, Hard };
inline constexpr LinkKind kLinkKinds[] = {LinkKind::Symbolic, LinkKind::Dangling, LinkKind::Hard};
const char* NameOf(LinkKind kind);

// A symbolic link. Under Wine one of the system below, which it follows as Windows follows its own.
// Throws std::runtime_error when it cannot be made.
void MakeSymbolicLink(const std::filesystem::path& link, const std::filesystem::path& target);

// One to something that is not there.
void MakeDanglingLink(const std::filesystem::path& link, const std::filesystem::path& target);

// Removes the link itself, whatever it leads to, which a Windows program under Wine cannot.
void RemoveLink(const std::filesystem::path& link);

// Somebody else's folder outside the store, with one file in it. Gone with this.
class ForeignFolder {
public:
    explicit ForeignFolder(const Bytes& secret);
    // With a tree of folders in it as each of the store's folders may hold.
    explicit ForeignFolder(bool hasTree = false);
    ForeignFolder(const ForeignFolder&) = delete;
    ForeignFolder& operator=(const ForeignFolder&) = delete;
    ~ForeignFolder();

    const std::filesystem::path& Path() const { return m_folder; }
    std::filesystem::path Secret() const { return m_folder / L"secret"; }

    // Puts a link in the place of the file, to the secret or to nothing.
    void PlantAt(const std::filesystem::path& place, LinkKind kind) const;

    // Whether all files and their bytes are as they were, and none was opened to everyone.
    void ExpectUntouched() const;

private:
    std::map<std::filesystem::path, Bytes> Content() const;

    std::filesystem::path m_folder;
    std::map<std::filesystem::path, Bytes> m_content;
};

} // namespace tsl::test
