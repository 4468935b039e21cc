// A host of which each method first runs what a test wants: it calls back into the component, or
// looks at what the component holds meanwhile.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "component/host/ITslHost.h"
#include "console/ParamContainer.h"
#include "tests/support/ContentStoreDouble.h"
#include "tests/support/HostContainers.h"

namespace tsl::test {

enum class HostMethod {
    QueryInterface,
    GetValue,
    GetKeys,
    SetCommandCode,
    SetValue,
    CreateInstance,
    PutText,
    FindItems,
    GetItemProperties,
    SetItemProperties,
    ReleaseHost, // the last Release of the host object
};
inline constexpr HostMethod kHostMethods[] = {
    HostMethod::QueryInterface,    HostMethod::GetValue,    HostMethod::GetKeys,
    HostMethod::SetCommandCode,    HostMethod::SetValue,    HostMethod::CreateInstance,
    HostMethod::PutText,           HostMethod::FindItems,   HostMethod::GetItemProperties,
    HostMethod::SetItemProperties, HostMethod::ReleaseHost,
};
const char* NameOf(HostMethod method) noexcept;

// Registers the host's classes while it lives. REQUIRES: COM is initialised on the thread, and no
// other host of it is alive.
class CallingHost {
public:
    CallingHost();
    CallingHost(const CallingHost&) = delete;
    CallingHost& operator=(const CallingHost&) = delete;
    ~CallingHost() = default;

    // Runs at the beginning of each method, but for those that are called while it runs.
    std::function<void(HostMethod)> onCall;
    void Enter(HostMethod method);

    // An argument with these values whose methods are the host's.
    CComPtr<ITslParamContainer> Argument(CComPtr<CTslParamContainer> values);
    // For SetHost. The caller's is the only reference.
    CComPtr<ITslHost> HostObject();

    // Creations answer success and give no object.
    bool givesNoObject = false;

    ContentStoreDouble contentStore;
    // What went to the property sink.
    std::string sunk;

    // While it lives, no host's methods run anything: it is the test that calls them.
    class Quiet {
    public:
        Quiet() { ++s_quiet; }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;
        ~Quiet() { --s_quiet; }
    };

private:
    HRESULT CreateContainer(REFIID iid, void** result);

    class Factory;
    struct Classes;
    std::shared_ptr<Classes> m_classes;
    bool m_isInside = false;
    static inline int s_quiet = 0;
};

// The answer of a command: each container with its values, in order.
std::string AnswerText(const VARIANT& answer);

} // namespace tsl::test
