// A host process of the contention tests: worker MODE COUNT USER REPORT
//   write   takes an id, records an action and fetches it back, COUNT times
//   read    asks for all ids of the user by time, COUNT times
#include <chrono>
#include <cstdlib>
#include <functional>
#include <stdexcept>

#include "component/host/CommandCodes.h"
#include "console/PluginLibrary.h"
#include "tests/processes/WorkerReport.h"
#include "tests/support/ComSession.h"
#include "tests/support/Containers.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

class Worker {
public:
    explicit Worker(UINT32 user) : m_user(user), m_plugin(m_library.CreatePlugin()) {
        m_plugin->SetRecordingEnabled(1);
    }

    void Write() {
        UINT32 id = 0;
        Time("id", id, [&] { return TakeId(id); });
        Time("notify", id, [&] {
            return m_plugin->Notify(kCommandRecordAction,
                                    Action(id, L"playItem").Ui4(kKeyUserId, m_user));
        });
        Time("fetch", id, [&] { return Fetch(id); });
    }

    void Read() {
        UINT32 none = 0;
        Time("read", none, [&] {
            CVariant answer;
            const HRESULT result =
                m_plugin->Request(kCommandQueryIds, ContainerBuilder().Ui4(kKeyUserId, m_user),
                                  nullptr, answer.Address());
            return result == E_INVALIDARG ? S_OK : result; // there are none yet
        });
    }

    const std::vector<WorkerCall>& Calls() const { return m_calls; }

private:
    void Time(const char* operation, UINT32& id, const std::function<HRESULT()>& run) {
        const auto start = std::chrono::steady_clock::now();
        const HRESULT result = run();
        const auto taken = std::chrono::steady_clock::now() - start;
        m_calls.push_back({operation, id, result,
                           std::chrono::duration_cast<std::chrono::microseconds>(taken).count()});
    }

    HRESULT TakeId(UINT32& id) {
        CVariant answer;
        const HRESULT result =
            m_plugin->Request(kCommandNextRecordId, ContainerBuilder(), nullptr, answer.Address());
        if (FAILED(result)) return result;
        CVariant value;
        static_cast<ITslParamContainer*>(answer.Get().punkVal)
            ->GetValue(kKeyRecordId, value.Address());
        id = value.Get().ulVal;
        return S_OK;
    }

    // S_FALSE when the record is not there.
    HRESULT Fetch(UINT32 id) {
        CVariant answer;
        const HRESULT result = m_plugin->Request(
            kCommandQueryRecords,
            ContainerBuilder().Array<ULONG>(kKeyRecordIds, {static_cast<ULONG>(id)}), nullptr,
            answer.Address());
        return result == S_OK && answer.Type() == VT_EMPTY ? S_FALSE : result;
    }

    UINT32 m_user;
    ComSession m_session;
    CPluginLibrary m_library{(ProgramFolder() / L"TslIfDbActionLog.dll").wstring()};
    CComPtr<ITslPluginDb2> m_plugin;
    std::vector<WorkerCall> m_calls;
};

int Run(const std::string& mode, int count, UINT32 user, const char* report) {
    Worker worker(user);
    for (int call = 0; call < count; ++call) {
        if (mode == "write") {
            worker.Write();
        } else if (mode == "read") {
            worker.Read();
        } else {
            throw std::runtime_error("no such mode");
        }
    }
    WriteReport(report, worker.Calls());
    return 0;
}

} // namespace

} // namespace tsl::test

int main(int count, char** arguments) {
    if (count != 5) return 2;
    try {
        return tsl::test::Run(arguments[1], std::atoi(arguments[2]),
                              static_cast<UINT32>(std::atoi(arguments[3])), arguments[4]);
    } catch (const std::exception&) {
        return 1;
    }
}
