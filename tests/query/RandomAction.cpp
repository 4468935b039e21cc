#include "tests/query/RandomAction.h"

#include <algorithm>

namespace tsl::test {

namespace {

std::wstring Encoded(const std::wstring& text) {
    constexpr std::wstring_view reserved = L" !\"#$%&'()*+,/:;<=>?@[\\]^`{|}~";
    constexpr wchar_t digits[] = L"0123456789abcdef";
    std::wstring encoded;
    for (const wchar_t unit : text) {
        if (reserved.find(unit) == std::wstring_view::npos) {
            encoded += unit;
        } else {
            encoded += {L'%', digits[unit / 16], digits[unit % 16]};
        }
    }
    return encoded;
}

// Six decimals of a number of 64ths, which are exact.
std::wstring DecimalsOf64ths(int number) {
    const std::wstring fraction = std::to_wstring(std::abs(number) % 64 * 15625);
    return (number < 0 ? L"-" : L"") + std::to_wstring(std::abs(number) / 64) + L"." +
           std::wstring(6 - fraction.size(), L'0') + fraction;
}

void AppendGroup(std::wstring& parameters, const wchar_t* name,
                 const std::vector<std::wstring>& values) {
    if (values.empty()) return;
    if (!parameters.empty()) parameters += L'&';
    parameters.append(name).append(L"={");
    for (size_t index = 0; index < values.size(); ++index)
        parameters.append(index > 0 ? L"," : L"").append(values[index]);
    parameters += L'}';
}

} // namespace

std::wstring RandomActions::Text(size_t longest) {
    static const std::wstring units =
        L"abcXYZ019-._ !\"#$%&'()*+,/:;<=>?@[\\]^`{|}~\t\u00e9\u0416\u65e5\uac00\uffee";
    std::wstring text;
    for (size_t left = Below(static_cast<std::uint32_t>(longest) + 1); left > 0; --left) {
        if (Below(20) == 0) {
            text += L"\U0001F3B5";
        } else {
            text += units[Below(static_cast<std::uint32_t>(units.size()))];
        }
    }
    return text;
}

template <class T, class MakeValue, class Format>
std::vector<std::wstring> RandomActions::Numbers(RandomAction& action, UINT64 key,
                                                 MakeValue makeValue, Format format) {
    std::vector<std::wstring> texts;
    if (Below(2) == 0) return texts;
    std::vector<T> values(Below(6));
    for (T& value : values) {
        value = makeValue();
        texts.push_back(format(value));
    }
    CVariant made;
    if (values.size() == 1 && Below(2) == 0) {
        made.Address()->vt = VariantTraits<T>::kType;
        made.Address()->*VariantTraits<T>::kMember = values[0];
    } else {
        made = MakeArray<T>(values);
    }
    action.container.Set(key, std::move(made));
    return texts;
}

std::vector<std::wstring> RandomActions::Texts(RandomAction& action, UINT64 key) {
    std::vector<std::wstring> texts;
    if (Below(2) == 0) return texts;
    for (std::uint32_t left = Below(6); left > 0; --left)
        texts.push_back(Text(12));
    action.container.Set(key, MakeTextArray(texts));
    std::ranges::transform(texts, texts.begin(), Encoded);
    return texts;
}

RandomAction RandomActions::Make(UINT32 id) {
    RandomAction action;
    action.id = id;
    action.user = static_cast<UINT32>(Bits());
    action.app = Below(10) == 0 ? 0 : static_cast<INT32>(Bits());
    action.time = (static_cast<double>(Below(4000000000)) - 1e9) / 7919.0;
    action.name = L"action" + Text(20);
    action.container.Ui4(kKeyRecordId, id)
        .Ui4(kKeyUserId, action.user)
        .Date(kKeyActionTime, action.time)
        .Text(kKeyActionName, action.name);
    if (action.app != 0) action.container.I4(kKeyAppId, action.app);

    const auto decimal = [](auto value) { return std::to_wstring(value); };
    const auto ids =
        Numbers<ULONGLONG>(action, kKeyUllValues, [&] { return Bits() >> Below(64); }, decimal);
    const auto shorts =
        Numbers<USHORT>(action, kKeyUsValues, [&] { return static_cast<USHORT>(Bits()); }, decimal);
    const auto numbers =
        Numbers<LONG>(action, kKeyIntValues, [&] { return static_cast<LONG>(Bits()); }, decimal);
    const auto flags = Numbers<VARIANT_BOOL>(
        action, kKeyBoolValues, [&] { return static_cast<VARIANT_BOOL>(Below(3) - 1); },
        [](VARIANT_BOOL flag) { return flag ? L"1" : L"0"; });
    auto texts = Texts(action, kKeyStringValues);
    const auto moreTexts = Texts(action, kKeyMoreStringValues);
    texts.insert(texts.end(), moreTexts.begin(), moreTexts.end());
    int parts = 0;
    const auto floats = Numbers<FLOAT>(
        action, kKeyFloatValues,
        [&] {
            parts = static_cast<int>(Below(1 << 24)) - (1 << 23);
            return static_cast<FLOAT>(parts) / 64;
        },
        [&](FLOAT) { return DecimalsOf64ths(parts); });

    AppendGroup(action.parameters, L"ullValues", ids);
    AppendGroup(action.parameters, L"usValues", shorts);
    AppendGroup(action.parameters, L"intValues", numbers);
    AppendGroup(action.parameters, L"boolValues", flags);
    AppendGroup(action.parameters, L"stringValues", texts);
    AppendGroup(action.parameters, L"floatValues", floats);
    return action;
}

} // namespace tsl::test
