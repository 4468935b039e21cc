#include "recording/ParameterText.h"

#include <optional>
#include <string_view>
#include <vector>

#include "query/ContainerValues.h"
#include "recording/ActionNames.h"
#include "recording/LinkedItem.h"
#include "recording/ValueEncoders.h"
#include "recording/ValueList.h"
#include "recording/XmlDateTime.h"
#include "store/LogKinds.h"

namespace tsl {

namespace {

// What the name of an action means for its text.
enum class ActionClass { Ordinary, UserLocation, ExternalLog, Delete, Link };

struct ClassifiedName {
    std::wstring_view name;
    ActionClass actionClass;
};

constexpr ClassifiedName kClassifiedNames[] = {
    {kActionUserLocation, ActionClass::UserLocation},
    {kActionExternalLog, ActionClass::ExternalLog},
    {kActionDeleteItem, ActionClass::Delete},
    {kActionExternalLink, ActionClass::Link},
    {kActionExternalLinkForSns, ActionClass::Link},
    {kActionExternalLinkForMusic, ActionClass::Link},
    {kActionExternalLinkForTv, ActionClass::Link},
};

ActionClass Classify(std::wstring_view actionName) noexcept {
    for (const ClassifiedName& known : kClassifiedNames) {
        if (known.name == actionName) return known.actionClass;
    }
    return ActionClass::Ordinary;
}

// The moment of the action in seconds since 1970: the action's own time, else the time of day.
std::optional<ULONGLONG> MomentOfAction(ITslParamContainer& container) {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    now.wMilliseconds = 0;
    CXmlDateTime moment;
    moment.SetFromSystemTime(now, /*isLocal=*/true);
    if (!moment.IsValid()) return std::nullopt;
    CVariant actionTime;
    ReadValue(container, kKeyActionTime, actionTime);
    if (actionTime.Type() == VT_DATE) {
        moment.SetFromDate(actionTime.Get().date, /*isLocal=*/false);
    }
    INT64 seconds = 0;
    moment.ToTime64(seconds, /*useLocal=*/false);
    return static_cast<ULONGLONG>(seconds);
}

// Builds the text of one action, kind by kind: each list is read and encoded before the next.
class CParameterTextBuilder {
public:
    CParameterTextBuilder(ITslParamContainer& container, std::wstring& output, UINT32 logKind,
                          ActionClass actionClass)
        : m_container(container), m_output(output), m_class(actionClass),
          m_additions(logKind == kLogKindOfSystemUsers) {
        if (m_additions) AppendLinkedItemValues(container, m_linked);
    }

    HRESULT Build() {
        HRESULT result = AppendUllValues();
        if (SUCCEEDED(result)) result = AppendList<USHORT>(kKeyUsValues, EncodeUsValues);
        if (SUCCEEDED(result)) result = AppendIntValues();
        if (SUCCEEDED(result)) result = AppendList<VARIANT_BOOL>(kKeyBoolValues, EncodeBoolValues);
        if (SUCCEEDED(result)) result = AppendStringValues();
        if (SUCCEEDED(result)) result = AppendList<FLOAT>(kKeyFloatValues, EncodeFloatValues);
        return SUCCEEDED(result) ? S_OK : result;
    }

private:
    template <class T>
    using Encoder = HRESULT (*)(std::span<const T>, std::wstring&, bool, bool);

    // An empty list writes nothing and does not stop the others.
    template <class T>
    void Encode(std::span<const T> values, Encoder<T> encode) {
        encode(values, m_output, /*textBefore=*/!m_output.empty(), /*omitName=*/false);
    }

    template <class T>
    HRESULT AppendList(UINT64 key, Encoder<T> encode) {
        CValueList<T> list;
        const HRESULT result = list.Read(m_container, key);
        if (SUCCEEDED(result)) Encode(list.Values(), encode);
        return result;
    }

    // Whether the linked item's values go with the action's own.
    bool TakesLinkedValues() const noexcept {
        return m_additions && m_class != ActionClass::ExternalLog &&
               m_class != ActionClass::Delete && m_class != ActionClass::Link;
    }

    HRESULT AppendUllValues() {
        if (!m_additions || m_class == ActionClass::ExternalLog) {
            return AppendList<ULONGLONG>(kKeyUllValues, EncodeUllValues);
        }
        CValueList<ULONGLONG> list;
        const HRESULT result = list.Read(m_container, kKeyUllValues);
        if (FAILED(result)) return result;
        std::vector<ULONGLONG> values(list.Values().begin(), list.Values().end());
        if (TakesLinkedValues()) {
            values.insert(values.end(), m_linked.ids.begin(), m_linked.ids.end());
        }
        if (const auto moment = MomentOfAction(m_container)) values.push_back(*moment);
        Encode(std::span<const ULONGLONG>(values), EncodeUllValues);
        return S_OK;
    }

    HRESULT AppendIntValues() {
        if (!TakesLinkedValues()) return AppendList<LONG>(kKeyIntValues, EncodeIntValues);
        CValueList<LONG> list;
        const HRESULT result = list.Read(m_container, kKeyIntValues);
        if (FAILED(result)) return result;
        std::vector<LONG> values;
        values.reserve(list.Values().size() + 1);
        values.push_back(static_cast<LONG>(m_linked.ids.size()));
        values.insert(values.end(), list.Values().begin(), list.Values().end());
        Encode(std::span<const LONG>(values), EncodeIntValues);
        return S_OK;
    }

    HRESULT AppendStringValues() {
        CValueList<BSTR> own;
        HRESULT result = own.Read(m_container, kKeyStringValues);
        if (FAILED(result)) return result;
        CValueList<BSTR> more;
        result = more.Read(m_container, kKeyMoreStringValues);
        if (FAILED(result)) return result;

        const size_t linkedCount = TakesLinkedValues() ? m_linked.texts.size() : 0;
        std::vector<std::wstring_view> texts;
        texts.reserve(own.Values().size() + linkedCount + more.Values().size());
        for (const BSTR text : own.Values())
            texts.push_back(BstrView(text));
        texts.insert(texts.end(), m_linked.texts.begin(),
                     m_linked.texts.begin() + static_cast<std::ptrdiff_t>(linkedCount));
        for (const BSTR text : more.Values())
            texts.push_back(BstrView(text));
        EncodeStringValues(texts, m_output, /*textBefore=*/!m_output.empty(), /*omitName=*/false,
                           m_class == ActionClass::UserLocation);
        return S_OK;
    }

    ITslParamContainer& m_container;
    std::wstring& m_output;
    const ActionClass m_class;
    const bool m_additions;
    LinkedItemValues m_linked;
};

} // namespace

HRESULT BuildActionParameters(ITslParamContainer* container, std::wstring& output, UINT32 logKind) {
    if (!container) return E_POINTER;
    CVariant name;
    const HRESULT named = ReadValue(*container, kKeyActionName, name);
    if (named != S_OK || name.Type() != VT_BSTR) return named;
    const ActionClass actionClass = Classify(BstrView(name.Get().bstrVal));
    return CParameterTextBuilder(*container, output, logKind, actionClass).Build();
}

} // namespace tsl
