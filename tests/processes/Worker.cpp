// A host process of these tests: process_worker MODE AMOUNT NUMBER REPORT
//   write   takes an id, records an action of user NUMBER and fetches it back
//   read    asks for all ids of user NUMBER by time
//   delete  records an action of user NUMBER, deletes it by its id and sees that it is gone
//   keep    records the deletion of an item, whose record can then be taken
//   take    takes the records with the ids from NUMBER on
//   own     asks for the kept records of the current user, whom it looks up in the user id list
// AMOUNT is how often, or with an "s" behind it for how many seconds.
#include <chrono>
#include <functional>
#include <map>
#include <stdexcept>

#include "component/host/CommandCodes.h"
#include "console/PluginLibrary.h"
#include "tests/processes/WorkerReport.h"
#include "tests/support/ComSession.h"
#include "tests/support/Containers.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

using Clock = std::chrono::steady_clock;

class Worker {
public:
    Worker(UINT32 number, const char* report)
        : m_number(number), m_report(report), m_plugin(m_library.CreatePlugin()) {
        m_plugin->SetRecordingEnabled(1);
    }

    // So that others see that it begins.
    void Start() { m_report.Add({"start", 0, S_OK, 0}); }

    void Write() {
        const UINT32 id = TimeId();
        if (id == 0) return;
        Time("notify", id, [&] { return Record(id, L"playItem"); });
        Time("fetch", id, [&] { return Fetch(id); });
    }

    void Read() {
        Time("read", 0, [&] {
            CVariant answer;
            const HRESULT result =
                m_plugin->Request(kCommandQueryIds, ContainerBuilder().Ui4(kKeyUserId, m_number),
                                  nullptr, answer.Address());
            return result == E_INVALIDARG ? S_OK : result; // there are none yet
        });
    }

    void Delete() {
        const UINT32 id = TimeId();
        if (id == 0) return;
        Time("notify", id, [&] { return Record(id, L"skipForwardItem"); });
        Time("delete", id, [&] {
            return m_plugin->Delete(kCommandDeleteRecords, ContainerBuilder()
                                                               .Ui4(kKeyUserId, m_number)
                                                               .Ui4(kKeyFirstRecordId, id)
                                                               .Ui4(kKeyLastRecordId, id));
        });
        Time("look", id, [&] {
            const HRESULT found = Fetch(id);
            return found == S_FALSE ? S_OK : FAILED(found) ? found : E_UNEXPECTED;
        });
    }

    void Keep() {
        const UINT32 id = TimeId();
        Time("notify", id, [&] { return Record(id, L"deleteItem"); });
    }

    void Take() {
        const UINT32 id = m_number++;
        Time("take", id, [&] {
            CVariant answer;
            const HRESULT result =
                m_plugin->Request(kCommandTakeRecord, ContainerBuilder().Ui8(kKeyRecordToTake, id),
                                  nullptr, answer.Address());
            return result == S_OK && answer.Type() == VT_EMPTY ? S_FALSE : result;
        });
    }

    void Own() {
        m_plugin->SetRecordingEnabled(2);
        Time("own", 0, [&] {
            CVariant answer;
            const HRESULT result = m_plugin->Request(kCommandQueryAllIds, ContainerBuilder(),
                                                     nullptr, answer.Address());
            return result == E_INVALIDARG ? S_OK : result; // there are none
        });
    }

private:
    void Time(const char* operation, const UINT32& id, const std::function<HRESULT()>& run) {
        const auto start = Clock::now();
        const HRESULT result = run();
        const auto taken = Clock::now() - start;
        m_report.Add({operation, id, result,
                      std::chrono::duration_cast<std::chrono::microseconds>(taken).count()});
    }

    // 0 when there was none.
    UINT32 TimeId() {
        UINT32 id = 0;
        Time("id", id, [&] { return TakeId(id); });
        return id;
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

    HRESULT Record(UINT32 id, const wchar_t* name) {
        return m_plugin->Notify(kCommandRecordAction,
                                Action(id, name)
                                    .Ui4(kKeyUserId, m_number)
                                    .Array<ULONGLONG>(kKeyUllValues, {ULONGLONG{id}, 7}));
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

    UINT32 m_number;
    ReportWriter m_report;
    ComSession m_session;
    CPluginLibrary m_library{(ProgramFolder() / L"TslIfDbActionLog.dll").wstring()};
    CComPtr<ITslPluginDb2> m_plugin;
};

using Mode = void (Worker::*)();
const std::map<std::string, Mode> kModes = {{"write", &Worker::Write},   {"read", &Worker::Read},
                                            {"delete", &Worker::Delete}, {"keep", &Worker::Keep},
                                            {"take", &Worker::Take},     {"own", &Worker::Own}};

void Run(Worker& worker, Mode mode, const std::string& amount) {
    const int number = std::stoi(amount);
    if (amount.ends_with('s')) {
        const auto end = Clock::now() + std::chrono::seconds(number);
        while (Clock::now() < end)
            (worker.*mode)();
    } else {
        for (int call = 0; call < number; ++call)
            (worker.*mode)();
    }
}

} // namespace

} // namespace tsl::test

int main(int count, char** arguments) {
    using namespace tsl::test;
    if (count != 5) return 2;
    try {
        Worker worker(static_cast<UINT32>(std::stoul(arguments[3])), arguments[4]);
        worker.Start();
        Run(worker, kModes.at(arguments[1]), arguments[2]);
        return 0;
    } catch (const std::exception&) {
        return 1;
    }
}
