// What an examination of a store has found: one line for a person, or one object for a program.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tsl {

enum class Level { Ok, Warning, Error };

struct Finding {
    Level level = Level::Ok;
    std::string subject; // what was looked at
    std::string text;    // what it is, and what that means
    std::string remedy;  // the command, or the step, that mends it; may be empty
    bool damage = false; // something has to be mended before the store can be trusted
};

using Findings = std::vector<Finding>;

// All is well.
inline Finding Fine(std::string subject, std::string text) {
    return {Level::Ok, std::move(subject), std::move(text), {}, false};
}

// Not as it usually is; nothing is lost by it.
inline Finding Odd(std::string subject, std::string text, std::string remedy = {}) {
    return {Level::Warning, std::move(subject), std::move(text), std::move(remedy), false};
}

// The component cannot work with it, but nothing in it is wrong: rights, or another program.
inline Finding Barred(std::string subject, std::string text, std::string remedy = {}) {
    return {Level::Error, std::move(subject), std::move(text), std::move(remedy), false};
}

inline Finding Damaged(std::string subject, std::string text, std::string remedy = {}) {
    return {Level::Error, std::move(subject), std::move(text), std::move(remedy), true};
}

// The command that makes whole databases, and the counter that goes with them.
inline constexpr char kRecover[] = "tslhost recover";

// For what only a person can mend.
inline constexpr char kRestore[] = "end all hosts and copy UserIdList.dat alone out of a backup; "
                                   "tslhost restore would replace the "
                                   "records too";
inline constexpr char kRepair[] = "repair the installation";

} // namespace tsl
