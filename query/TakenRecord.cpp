#include "query/TakenRecord.h"

#include "base/PercentEncoding.h"
#include "component/host/CommandCodes.h"
#include "component/host/ITslContentPropertySink.h"
#include "component/host/Identities.h"
#include "component/host/ParamKeys.h"
#include "query/AnswerContainer.h"
#include "query/ParameterDecoder.h"

namespace tsl {

namespace {

struct TakenValues {
    std::vector<UINT64> ids;
    std::vector<std::wstring> texts;
    std::vector<INT32> numbers;
};

// The taken item's text goes back to the host's content; its failures are the host's own business.
void HandToSink(UINT64 itemId, const std::wstring& encodedText) {
    CComPtr<ITslContentPropertySink> sink;
    if (FAILED(CreateHostObject(CLSID_TslContentPropertySink, IID_ITslContentPropertySink, sink))) {
        return;
    }
    const CVariant text = CVariant::FromText(PercentDecode(encodedText));
    sink->PutText(itemId, text.Get().bstrVal);
}

// Keys are set in this order, and only those that have a value.
HRESULT Fill(ITslParamContainer& container, const TakenValues& values) {
    CContainerFiller filler(container);
    filler.Set(kKeyTextHandedOn, CVariant::FromBool(values.texts.size() >= 2))
        .Set(kKeyTaken, CVariant::FromBool(true))
        .Set(kKeyItemId, CVariant::FromUi8(values.ids[0]));
    const bool hasNumbers = values.numbers.size() >= 3;
    if (hasNumbers) {
        filler.Set(kKeyFirstNumber, CVariant::FromI4(values.numbers[0]))
            .Set(kKeySecondNumber, CVariant::FromI4(values.numbers[1]))
            .Set(kKeyThirdNumber, CVariant::FromI4(values.numbers[2]));
    }
    filler.Set(kKeySecondId, CVariant::FromUi8(values.ids[1]));
    if (!values.texts.empty()) {
        filler.Set(kKeyFirstText, CVariant::FromText(values.texts[0]));
    }
    return filler.Result();
}

} // namespace

HRESULT AppendTakenRecord(const std::wstring& parameters, ContainerList& records) {
    TakenValues values;
    DecodeUllValues(parameters, values.ids);
    if (values.ids.size() < 2) return E_INVALIDARG;
    DecodeStringValues(parameters, values.texts);
    if (values.texts.size() >= 2) HandToSink(values.ids[0], values.texts[1]);
    DecodeIntValues(parameters, values.numbers);

    CComPtr<ITslParamContainer> record;
    HRESULT status = CreateContainer(kCommandTakeRecord, record);
    if (SUCCEEDED(status)) status = Fill(*record.Get(), values);
    if (SUCCEEDED(status)) records.push_back(std::move(record));
    return SUCCEEDED(status) ? S_OK : status;
}

} // namespace tsl
