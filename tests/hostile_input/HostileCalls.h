// The arguments of random calls: requests that are well formed, and results that a host hands in
// without having cleared them.
#pragma once

#include "tests/hostile_input/HostileValues.h"
#include "tests/support/Containers.h"

namespace tsl::test {

enum class Method { Notify, Request, Delete };

struct Command {
    Method method = Method::Notify;
    UINT64 code = 0;

    bool operator==(const Command&) const = default;
    // Whether the method knows the code.
    bool IsKnown() const;
};

// Mostly a known one.
Command AnyCommand(Chance& chance);

// A container with what any of the commands asks for. All values are of the right type, but may be
// extreme; few ids and users are used, so that the tables stay small.
ContainerBuilder AnyRequest(Chance& chance);

// A VARIANT for an answer, which holds something already. Clears whatever it holds when it goes.
class UsedResult {
public:
    UsedResult(HostileValues& values, Chance& chance);
    UsedResult(const UsedResult&) = delete;
    UsedResult& operator=(const UsedResult&) = delete;
    ~UsedResult();

    VARIANT* Address() { return &m_value; }
    VARTYPE Type() const { return m_value.vt; }
    bool IsAsBefore() const;
    // Some systems forget what they fail to clear.
    bool WasLost() const { return m_locked && Type() == VT_EMPTY; }
    // Whether an answer can take the place of what it held.
    bool CanBeReplaced() const { return m_replaceable; }

private:
    VARIANT m_value{};
    VARIANT m_before{};
    SAFEARRAY* m_locked = nullptr;
    bool m_replaceable = true;
};

} // namespace tsl::test
