#include "recording/ContentProperties.h"

#include <cwchar>

#include "base/SameWords.h"
#include "component/host/CommandCodes.h"
#include "component/host/ParamKeys.h"
#include "query/AnswerContainer.h"
#include "query/ResultArray.h"

namespace tsl {

namespace {

CVariant ReadAnyValue(ITslParamContainer& container, UINT64 key) {
    CVariant value;
    return container.GetValue(key, value.Address()) == S_OK ? std::move(value) : CVariant();
}

bool FirstTextMatches(const ContentProperty& property, const std::wstring& wanted) {
    const std::optional<std::wstring> text = TextOf(property.firstText.Get());
    return text && SameWords(*text, wanted);
}

bool SecondTextMatches(const ContentProperty& property, const std::wstring& wanted) {
    if (property.secondText.Type() == VT_EMPTY) return true;
    if (property.secondText.Type() != VT_BSTR) return false;
    const std::wstring text(BstrView(property.secondText.Get().bstrVal));
    return _wcsicmp(text.c_str(), wanted.c_str()) == 0;
}

void SetIfPresent(CContainerFiller& filler, UINT64 key, CVariant value) {
    if (value.Type() != VT_EMPTY) filler.Set(key, std::move(value));
}

HRESULT MakeContainer(ContentProperty property, CComPtr<ITslParamContainer>& container) {
    const HRESULT created = CreateContainer(kCommandContentProperty, container);
    if (FAILED(created)) return created;
    CContainerFiller filler(*container);
    SetIfPresent(filler, kKeyPropertyFirstText, std::move(property.firstText));
    SetIfPresent(filler, kKeyPropertySecondText, std::move(property.secondText));
    SetIfPresent(filler, kKeyPropertyNumber, std::move(property.number));
    return filler.Result();
}

} // namespace

ContentProperty ReadContentProperty(ITslParamContainer& container) {
    ContentProperty property;
    property.firstText = ReadAnyValue(container, kKeyPropertyFirstText);
    property.secondText = ReadAnyValue(container, kKeyPropertySecondText);
    property.number = ReadAnyValue(container, kKeyPropertyNumber);
    return property;
}

bool MatchesTexts(const ContentProperty& property, const std::wstring& firstText,
                  const std::wstring& secondText) {
    return FirstTextMatches(property, firstText) && SecondTextMatches(property, secondText);
}

HRESULT PackContentProperties(std::vector<ContentProperty> properties, VARIANT* result) {
    ContainerList containers;
    for (ContentProperty& property : properties) {
        CComPtr<ITslParamContainer> container;
        const HRESULT made = MakeContainer(std::move(property), container);
        if (FAILED(made)) return made;
        containers.push_back(std::move(container));
    }
    return PackContainers(std::move(containers), result);
}

} // namespace tsl
