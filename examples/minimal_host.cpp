// A complete host of the action log in one file: it has a parameter container, loads the component,
// takes a record id, records an action and reads it back. It needs the headers of component/host
// and nothing else of this project.
//
//   minimal_host [path of TslIfDbActionLog.dll]
#include <windows.h>

#include <cstdio>
#include <map>
#include <new>

#include "component/host/CommandCodes.h"
#include "component/host/ITslParamContainer.h"
#include "component/host/ITslPluginDb.h"
#include "component/host/Identities.h"
#include "component/host/ParamKeys.h"

namespace {

// The host's parameter container. The component creates containers of this class for its answers.
class Container final : public tsl::ITslParamContainer {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown || iid == tsl::IID_ITslParamContainer;
        *result = known ? this : nullptr;
        if (known) AddRef();
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override {
        return static_cast<ULONG>(InterlockedIncrement(&m_references));
    }
    ULONG STDMETHODCALLTYPE Release() override {
        const LONG references = InterlockedDecrement(&m_references);
        if (references == 0) delete this;
        return static_cast<ULONG>(references);
    }

    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* code) override {
        *code = m_code;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 code) override {
        m_code = code;
        return S_OK;
    }
    // S_FALSE, and the value untouched, for a key that is absent.
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        const auto found = m_values.find(key);
        return found == m_values.end() ? S_FALSE : VariantCopy(value, &found->second);
    }
    // A deep copy.
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 key, VARIANT* value) override {
        VARIANT copy{};
        const HRESULT copied = VariantCopyInd(&copy, value);
        if (FAILED(copied)) return copied;
        try {
            VARIANT& kept = m_values[key];
            VariantClear(&kept);
            kept = copy;
        } catch (const std::bad_alloc&) { // no exception may cross an interface
            VariantClear(&copy);
            return E_OUTOFMEMORY;
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 key) override {
        const auto found = m_values.find(key);
        if (found == m_values.end()) return S_FALSE;
        VariantClear(&found->second);
        m_values.erase(found);
        return S_OK;
    }
    // VT_ARRAY of VT_UI8 with lower bound 0.
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override {
        SAFEARRAY* const array =
            SafeArrayCreateVector(VT_UI8, 0, static_cast<ULONG>(m_values.size()));
        if (!array) return E_OUTOFMEMORY;
        LONG index = 0;
        for (const auto& [key, value] : m_values) {
            UINT64 copy = key;
            SafeArrayPutElement(array, &index, &copy);
            ++index;
        }
        keys->vt = VT_ARRAY | VT_UI8;
        keys->parray = array;
        return S_OK;
    }

private:
    ~Container() {
        for (auto& [key, value] : m_values)
            VariantClear(&value);
    }

    LONG m_references = 1;
    UINT64 m_code = 0;
    std::map<UINT64, VARIANT> m_values; // a new VARIANT of a map is zeroed, which is VT_EMPTY
};

// By this the component's CoCreateInstance finds the container class in this process.
class ContainerFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override {
        if (outer) return CLASS_E_NOAGGREGATION;
        auto* const container = new Container;
        const HRESULT status = container->QueryInterface(iid, result);
        container->Release();
        return status;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

void Check(HRESULT status, const char* what) {
    if (SUCCEEDED(status)) return;
    std::printf("%s failed: 0x%08lX\n", what, static_cast<unsigned long>(status));
    std::exit(1);
}

VARIANT Number(VARTYPE type, UINT64 number) {
    VARIANT value{};
    value.vt = type;
    value.ullVal = number;
    return value;
}

void SetText(Container& container, UINT64 key, const wchar_t* text) {
    VARIANT value{};
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocString(text);
    Check(container.SetValue(key, &value), "SetValue");
    VariantClear(&value);
}

void SetNumber(Container& container, UINT64 key, VARTYPE type, UINT64 number) {
    VARIANT value = Number(type, number);
    Check(container.SetValue(key, &value), "SetValue");
}

tsl::ITslPluginDb2* CreatePlugin(const char* path) {
    const HMODULE library = LoadLibraryA(path);
    if (!library) Check(HRESULT_FROM_WIN32(GetLastError()), path);
    const auto getClassObject = reinterpret_cast<decltype(&DllGetClassObject)>(
        reinterpret_cast<void*>(GetProcAddress(library, "DllGetClassObject")));
    if (!getClassObject) Check(HRESULT_FROM_WIN32(GetLastError()), "DllGetClassObject");
    IClassFactory* factory = nullptr;
    Check(
        getClassObject(tsl::CLSID_PluginDb, IID_IClassFactory, reinterpret_cast<void**>(&factory)),
        "DllGetClassObject");
    tsl::ITslPluginDb2* plugin = nullptr;
    Check(
        factory->CreateInstance(nullptr, tsl::IID_ITslPluginDb2, reinterpret_cast<void**>(&plugin)),
        "CreateInstance");
    factory->Release();
    return plugin;
}

// The container that an answer holds; the caller releases it.
tsl::ITslParamContainer* ContainerOf(IUnknown* answer) {
    tsl::ITslParamContainer* container = nullptr;
    Check(answer->QueryInterface(tsl::IID_ITslParamContainer, reinterpret_cast<void**>(&container)),
          "asking the answer for its container");
    return container;
}

// The answer is a container that holds the id.
UINT32 TakeRecordId(tsl::ITslPluginDb2& plugin) {
    auto* const request = new Container;
    VARIANT answer{};
    Check(plugin.Request(tsl::kCommandNextRecordId, request, nullptr, &answer), "taking an id");
    tsl::ITslParamContainer* const container = ContainerOf(answer.punkVal);
    VARIANT id{};
    container->GetValue(tsl::kKeyRecordId, &id);
    container->Release();
    VariantClear(&answer);
    request->Release();
    return id.ulVal;
}

void RecordAction(tsl::ITslPluginDb2& plugin, UINT32 recordId) {
    auto* const action = new Container;
    SetNumber(*action, tsl::kKeyRecordId, VT_UI4, recordId);
    SetText(*action, tsl::kKeyActionName, L"playItem");
    SetNumber(*action, tsl::kKeyUserId, VT_UI4, 1);
    SetNumber(*action, tsl::kKeyAppId, VT_I4, 3);
    // A single value counts as a list of one.
    SetNumber(*action, tsl::kKeyUllValues, VT_UI8, 4711);
    SetText(*action, tsl::kKeyStringValues, L"Summer, 2026");
    Check(plugin.Notify(tsl::kCommandRecordAction, action), "recording");
    action->Release();
}

// The answer is an array of containers, or empty when there is no such record.
void PrintRecord(tsl::ITslPluginDb2& plugin, UINT32 recordId) {
    auto* const request = new Container;
    VARIANT ids{};
    ids.vt = VT_ARRAY | VT_UI4;
    ids.parray = SafeArrayCreateVector(VT_UI4, 0, 1);
    LONG index = 0;
    SafeArrayPutElement(ids.parray, &index, &recordId);
    Check(request->SetValue(tsl::kKeyRecordIds, &ids), "SetValue");
    VARIANT answer{};
    Check(plugin.Request(tsl::kCommandQueryRecords, request, nullptr, &answer), "reading");
    if (answer.vt == (VT_ARRAY | VT_UNKNOWN)) {
        IUnknown* element = nullptr;
        SafeArrayGetElement(answer.parray, &index, &element);
        tsl::ITslParamContainer* const record = ContainerOf(element);
        VARIANT name{};
        VARIANT parameters{};
        record->GetValue(tsl::kKeyActionName, &name);
        record->GetValue(tsl::kKeyParameterText, &parameters);
        std::printf("%ls: %ls\n", name.bstrVal, parameters.bstrVal);
        VariantClear(&name);
        VariantClear(&parameters);
        record->Release();
        element->Release();
    }
    VariantClear(&answer);
    VariantClear(&ids);
    request->Release();
}

} // namespace

int main(int count, char** arguments) {
    Check(CoInitializeEx(nullptr, COINIT_MULTITHREADED), "CoInitializeEx");
    static ContainerFactory factory;
    DWORD cookie = 0;
    Check(CoRegisterClassObject(tsl::CLSID_TslParamContainer, &factory, CLSCTX_INPROC_SERVER,
                                REGCLS_MULTIPLEUSE, &cookie),
          "registering the container class");

    tsl::ITslPluginDb2* const plugin =
        CreatePlugin(count > 1 ? arguments[1] : "TslIfDbActionLog.dll");
    Check(plugin->SetRecordingEnabled(1), "switching recording on");
    const UINT32 recordId = TakeRecordId(*plugin);
    RecordAction(*plugin, recordId);
    PrintRecord(*plugin, recordId);
    plugin->Release();

    CoRevokeClassObject(cookie);
    CoUninitialize();
    return 0;
}
