#include "upkeep/doctor/LockCheck.h"

namespace tsl {

Finding TellLock(const CStoreLock& lock, const std::string& subject) {
    const std::string waited = std::to_string(lock.WaitedMilliseconds()) + " ms";
    if (lock.IsRestricted()) {
        return Odd(
            subject,
            std::string("made with restricted rights: hosts that may not open it work "
                        "without it") +
                (lock.State() == LockState::Held ? "; held for the whole wait of " + waited : ""),
            "find the program that made it so; end all hosts once");
    }
    switch (lock.State()) {
    case LockState::Free:
        return Fine(subject, "free; waited " + waited);
    case LockState::Abandoned:
        return Odd(subject,
                   "abandoned: a host was ended while it held it; it is free again; waited " +
                       waited,
                   "end all hosts once if they have become slow");
    case LockState::Held:
        return Odd(subject,
                   "held by another process for the whole wait of " + waited +
                       ": a host is at work, or got it from one that was ended",
                   "tslhost doctor again; if it stays so, end all hosts once");
    default:
        return Barred(subject, "can be neither made nor opened: hosts work without it",
                      "find the program that made an object of its name; end all hosts once");
    }
}

} // namespace tsl
