// tslhost take
#include <atomic>
#include <nlohmann/json.hpp>

#include "component/host/CommandCodes.h"
#include "component/host/ITslContentPropertySink.h"
#include "component/host/ParamKeys.h"
#include "console/HostSession.h"
#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/Text.h"
#include "tslhost/Commands.h"

namespace tsl {

namespace {

// Receives the second text of a taken record and keeps it for printing.
class CContentPropertySink final : public ITslContentPropertySink {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        if (!result) return E_POINTER;
        const bool known = iid == IID_IUnknown || iid == IID_ITslContentPropertySink;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE PutText(UINT64 /*itemId*/, BSTR text) override {
        return AtBoundary([&] {
            received = BstrView(text);
            return S_OK;
        });
    }

    std::optional<std::wstring> received;
};

// One for the process: the component creates it by its class.
CContentPropertySink& Sink() {
    static CContentPropertySink sink;
    return sink;
}

HRESULT CreateSink(REFIID iid, void** result) {
    return Sink().QueryInterface(iid, result);
}

using Json = nlohmann::ordered_json;

// Adds the value of a key, if the container has it.
void AddValue(ITslParamContainer& container, UINT64 key, const char* name, Json& object) {
    CVariant value;
    if (container.GetValue(key, value.Address()) != S_OK) return;
    switch (value.Type()) {
    case VT_UI8:
        object[name] = value.Get().ullVal;
        break;
    case VT_I4:
        object[name] = value.Get().lVal;
        break;
    case VT_BSTR:
        object[name] = ToUtf8(BstrView(value.Get().bstrVal));
        break;
    default:
        break;
    }
}

Json ToJson(UINT64 recordId, ITslParamContainer& container) {
    Json taken = {{"id", recordId}};
    AddValue(container, kKeyItemId, "firstUll", taken);
    AddValue(container, kKeySecondId, "secondUll", taken);
    AddValue(container, kKeyFirstNumber, "firstInt", taken);
    AddValue(container, kKeySecondNumber, "secondInt", taken);
    AddValue(container, kKeyThirdNumber, "thirdInt", taken);
    AddValue(container, kKeyFirstText, "firstText", taken);
    if (const auto& received = Sink().received) taken["textHandedOn"] = ToUtf8(*received);
    return taken;
}

} // namespace

ExitCode RunTake(const TakeOptions& options, const CommandContext& context) {
    CHostSession session(context.pluginPath);
    const CHostClassRegistration sinkClass(CLSID_TslContentPropertySink, CreateSink);
    session.SetLogKind(options.kind);
    const CComPtr<CTslParamContainer> arguments = CTslParamContainer::Create();
    SetValue(*arguments, kKeyRecordToTake, CVariant::FromUi8(options.id));
    const CHostSession::Answer answer = session.Query(kCommandTakeRecord, *arguments);
    if (answer.empty()) return ExitCode::NothingFound;
    for (const auto& container : answer) {
        const Json taken = ToJson(options.id, *container);
        if (context.json) {
            PrintLine(ToJsonLine(taken));
            continue;
        }
        for (const auto& [name, value] : taken.items()) {
            PrintLine(name + ": " + (value.is_string() ? value.get<std::string>() : value.dump()));
        }
    }
    return ExitCode::Fine;
}

} // namespace tsl
