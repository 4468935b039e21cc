#include "tests/support/Containers.h"

#include "component/host/Identities.h"

namespace tsl::test {

ContainerBuilder& ContainerBuilder::Set(UINT64 key, CVariant value) {
    const HRESULT result = m_container->SetValue(key, value.Address());
    if (FAILED(result)) throw CHresultError(result);
    return *this;
}

ContainerBuilder& ContainerBuilder::I4(UINT64 key, INT32 value) {
    CVariant variant;
    variant.Address()->vt = VT_I4;
    variant.Address()->lVal = value;
    return Set(key, std::move(variant));
}

ContainerBuilder& ContainerBuilder::Ui8(UINT64 key, UINT64 value) {
    CVariant variant;
    variant.Address()->vt = VT_UI8;
    variant.Address()->ullVal = value;
    return Set(key, std::move(variant));
}

ContainerBuilder& ContainerBuilder::Date(UINT64 key, DATE value) {
    CVariant variant;
    variant.Address()->vt = VT_DATE;
    variant.Address()->date = value;
    return Set(key, std::move(variant));
}

ContainerBuilder& ContainerBuilder::Text(UINT64 key, std::wstring_view value) {
    CVariant variant;
    variant.Address()->bstrVal = AllocateBstr(value);
    variant.Address()->vt = VT_BSTR;
    return Set(key, std::move(variant));
}

ContainerBuilder& ContainerBuilder::Texts(UINT64 key, std::initializer_list<std::wstring> values) {
    return Set(key, MakeTextArray(std::span<const std::wstring>(values.begin(), values.size())));
}

ContainerBuilder& ContainerBuilder::Unknown(UINT64 key, IUnknown* value) {
    if (value) value->AddRef();
    return Set(key, CVariant::FromOwnedUnknown(value));
}

ContainerBuilder Action(UINT32 recordId, std::wstring_view name) {
    return ContainerBuilder()
        .Ui4(kKeyRecordId, recordId)
        .Text(kKeyActionName, name)
        .Ui4(kKeyUserId, 7)
        .I4(kKeyAppId, 3);
}

HRESULT ScriptedContainer::QueryInterface(REFIID iid, void** result) {
    const bool known = iid == IID_IUnknown || iid == IID_ITslParamContainer;
    *result = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
}

HRESULT ScriptedContainer::GetCommandCode(UINT64* commandCode) {
    return m_inner->GetCommandCode(commandCode);
}

HRESULT ScriptedContainer::SetCommandCode(UINT64 commandCode) {
    return setCommandCodeResult == S_OK ? m_inner->SetCommandCode(commandCode)
                                        : setCommandCodeResult;
}

HRESULT ScriptedContainer::GetValue(UINT64 key, VARIANT* value) {
    keysRead.push_back(key);
    const auto scripted = getResults.find(key);
    return scripted == getResults.end() ? m_inner->GetValue(key, value) : scripted->second;
}

HRESULT ScriptedContainer::SetValue(UINT64 key, VARIANT* value) {
    return setValueResult == S_OK ? m_inner->SetValue(key, value) : setValueResult;
}

HRESULT ScriptedContainer::RemoveValue(UINT64 key) {
    return m_inner->RemoveValue(key);
}

HRESULT ScriptedContainer::GetKeys(VARIANT* keys) {
    return getKeysResult == S_OK ? m_inner->GetKeys(keys) : getKeysResult;
}

} // namespace tsl::test
