// A whole store in the machine's folders, to be damaged and examined.
#pragma once

#include <ostream>

#include "files/AccessRights.h"
#include "tests/support/PluginFixture.h"
#include "tests/upkeep/DamagedStore.h"
#include "tests/upkeep/Examination.h"

namespace tsl {

// For the messages of tests.
inline void PrintTo(const Finding& finding, std::ostream* out) {
    constexpr const char* kNames[] = {"ok", "warning", "error"};
    *out << kNames[static_cast<size_t>(finding.level)] << (finding.damage ? " (damage) " : " ")
         << finding.subject << ": " << finding.text << " / " << finding.remedy;
}

} // namespace tsl

namespace tsl::test {

class DoctorTest : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        m_store = MachineStore();
        // As the component makes them.
        for (const std::filesystem::path file : {m_store.counter, m_store.userIds})
            ASSERT_TRUE(GrantFolderAccess(file.parent_path().wstring()));
        MakeSampleStore(m_store);
    }

    const StorePaths& Store() const { return m_store; }

    // Examines the store and proves that nothing of it was changed by that.
    Findings ExamineUnchanged() const {
        const auto folder = StoreFolder().parent_path();
        const FolderState before = StateOf(folder);
        Findings findings = Examine(m_store);
        EXPECT_TRUE(before == StateOf(folder)) << "the examination has changed the store";
        return findings;
    }
    Finding Worst(std::string_view subject) const { return WorstOf(ExamineUnchanged(), subject); }

private:
    StorePaths m_store;
};

// Level and damage of a finding, and a part of its text.
#define EXPECT_OK(finding)                                                                         \
    EXPECT_EQ(Level::Ok, (finding).level) << ::testing::PrintToString(finding)
#define EXPECT_WARNING(finding, part) ExpectFinding(finding, Level::Warning, /*damage=*/false, part)
#define EXPECT_DAMAGE(finding, part) ExpectFinding(finding, Level::Error, /*damage=*/true, part)

inline void ExpectFinding(const Finding& finding, Level level, bool damage,
                          const std::string& part) {
    const std::string shown = ::testing::PrintToString(finding);
    EXPECT_EQ(level, finding.level) << shown;
    EXPECT_EQ(damage, finding.damage) << shown;
    EXPECT_NE(std::string::npos, finding.text.find(part)) << shown;
}

} // namespace tsl::test
