// Values that a careless host hands in: wrong types, arrays that are not what their VARIANT says.
#include <new>

#include "tests/recording/BuiltText.h"
#include "tests/support/RawContainer.h"

namespace tsl::test {

namespace {

constexpr UINT64 kListKeys[] = {kKeyUllValues,  kKeyUsValues,     kKeyIntValues,
                                kKeyBoolValues, kKeyStringValues, kKeyMoreStringValues,
                                kKeyFloatValues};

VARTYPE ListType(UINT64 key) {
    return ParamKeyType(key);
}

VARTYPE ElementType(UINT64 key) {
    return static_cast<VARTYPE>(ParamKeyType(key) & ~VT_ARRAY);
}

BuiltText BuildRaw(UINT64 key, RawContainer::Maker maker) {
    RawContainer action(NamedAction().Get());
    action.Make(key, std::move(maker));
    return Build(&action);
}

// A VARIANT that says type and holds an array of elementType.
RawContainer::Maker ArrayOf(VARTYPE type, VARTYPE elementType, ULONG count) {
    return [=](VARIANT& value) {
        value.parray = SafeArrayCreateVector(elementType, 0, count);
        value.vt = type;
        return S_OK;
    };
}

// Fills an array, which may have any bounds, with the numbers from 1.
template <class T>
void FillWithNumbers(SAFEARRAY* array, ULONG count) {
    void* data = nullptr;
    ASSERT_EQ(S_OK, SafeArrayAccessData(array, &data));
    for (ULONG index = 0; index < count; ++index)
        static_cast<T*>(data)[index] = static_cast<T>(index + 1);
    SafeArrayUnaccessData(array);
}

// An array without any feature flag, as a host gets it that fills in a bare descriptor.
SAFEARRAY* UndeclaredArray(ULONG elementSize, ULONG count) {
    SAFEARRAY* array = nullptr;
    if (FAILED(SafeArrayAllocDescriptor(1, &array))) throw std::bad_alloc();
    array->cbElements = elementSize;
    array->rgsabound[0] = {count, 0};
    if (FAILED(SafeArrayAllocData(array))) throw std::bad_alloc();
    EXPECT_EQ(0, array->fFeatures & (FADF_HAVEVARTYPE | FADF_BSTR));
    return array;
}

const BuiltText kRefusedText{E_INVALIDARG, L""};

} // namespace

// A zero inside one text must not cut off what follows.
TEST(ParameterBadInput, ATextEndsAtItsFirstZero) {
    ContainerBuilder action = NamedAction();
    action.Texts(kKeyStringValues, {std::wstring(L"x\0y", 3), L"z"});
    action.Array<FLOAT>(kKeyFloatValues, {1.5F});
    EXPECT_EQ(Ok(L"stringValues={x,z}&floatValues={1.500000}"), Build(action));
}

TEST(ParameterBadInput, AValueOfAnotherTypeFails) {
    constexpr VARTYPE kTypes[] = {VT_NULL, VT_I2,    VT_I4,   VT_UI1,     VT_UI2,     VT_UI4,
                                  VT_I8,   VT_UI8,   VT_BOOL, VT_R4,      VT_R8,      VT_CY,
                                  VT_DATE, VT_ERROR, VT_BSTR, VT_UNKNOWN, VT_DISPATCH};
    for (const UINT64 key : kListKeys) {
        for (const VARTYPE type : kTypes) {
            if (type == ElementType(key)) continue;
            EXPECT_EQ(kRefusedText, BuildRaw(key,
                                             [type](VARIANT& value) {
                                                 value.vt = type;
                                                 return S_OK;
                                             }))
                << "key " << std::hex << key << ", type " << type;
        }
    }
}

TEST(ParameterBadInput, AnArrayOfAnotherTypeFails) {
    constexpr VARTYPE kTypes[] = {VT_UI1, VT_I2,   VT_UI2,  VT_I4,      VT_UI4,     VT_I8, VT_UI8,
                                  VT_R4,  VT_BOOL, VT_BSTR, VT_VARIANT, VT_UNKNOWN, VT_R8};
    for (const UINT64 key : kListKeys) {
        for (const VARTYPE type : kTypes) {
            if (type == ElementType(key)) continue;
            const auto arrayType = static_cast<VARTYPE>(VT_ARRAY | type);
            EXPECT_EQ(kRefusedText, BuildRaw(key, ArrayOf(arrayType, type, 2)))
                << "key " << std::hex << key << ", type " << type;
        }
    }
}

TEST(ParameterBadInput, AWrongTypeStopsTheTextBehindTheGroupsBeforeIt) {
    ContainerBuilder action = NamedAction();
    action.Array<ULONGLONG>(kKeyUllValues, {1}).I4(kKeyUsValues, 2).I4(kKeyIntValues, 3);
    EXPECT_EQ((BuiltText{E_INVALIDARG, L"ullValues={1}"}), Build(action));
}

TEST(ParameterBadInput, NothingIsReadBehindAWrongType) {
    ScriptedContainer action(NamedAction().I4(kKeyUsValues, 2).Get());
    EXPECT_EQ(kRefusedText, Build(&action));
    EXPECT_EQ((std::vector<UINT64>{kKeyActionName, kKeyUllValues, kKeyUsValues}), action.keysRead);
}

TEST(ParameterBadInput, AReferenceFails) {
    for (const UINT64 key : kListKeys) {
        ULONGLONG number = 0;
        SAFEARRAY* array = SafeArrayCreateVector(ElementType(key), 0, 1);
        const VARTYPE types[] = {static_cast<VARTYPE>(VT_BYREF | ElementType(key)),
                                 static_cast<VARTYPE>(VT_BYREF | ListType(key))};
        void* const targets[] = {&number, &array};
        for (const size_t index : {size_t{0}, size_t{1}}) {
            EXPECT_EQ(kRefusedText, BuildRaw(key, [&](VARIANT& value) {
                          value.byref = targets[index];
                          value.vt = types[index];
                          return S_OK;
                      }));
        }
        SafeArrayDestroy(array);
    }
}

TEST(ParameterBadInput, ANullArrayIsAnEmptyList) {
    for (const UINT64 key : kListKeys) {
        EXPECT_EQ(Ok(L""), BuildRaw(key, [key](VARIANT& value) {
                      value.vt = ListType(key);
                      value.parray = nullptr;
                      return S_OK;
                  }));
    }
}

TEST(ParameterBadInput, AnArrayWithoutElementsIsAnEmptyList) {
    for (const UINT64 key : kListKeys)
        EXPECT_EQ(Ok(L""), BuildRaw(key, ArrayOf(ListType(key), ElementType(key), 0)));
}

TEST(ParameterBadInput, AnArrayWithSmallerElementsIsNeverReadBeyondItsEnd) {
    for (const UINT64 key : kListKeys)
        EXPECT_EQ(kRefusedText, BuildRaw(key, ArrayOf(ListType(key), VT_UI1, 100)));
}

TEST(ParameterBadInput, AnArrayWithLargerElementsFails) {
    for (const UINT64 key : kListKeys)
        EXPECT_EQ(kRefusedText, BuildRaw(key, ArrayOf(ListType(key), VT_VARIANT, 2)));
}

TEST(ParameterBadInput, AnArrayThatDeclaresNothingIsReadByTheSizeOfItsElements) {
    EXPECT_EQ(Ok(L"intValues={1,2,3}"), BuildRaw(kKeyIntValues, [](VARIANT& value) {
                  value.parray = UndeclaredArray(sizeof(LONG), 3);
                  FillWithNumbers<LONG>(value.parray, 3);
                  value.vt = VT_ARRAY | VT_I4;
                  return S_OK;
              }));
    const CVariant text = CVariant::FromText(L"text");
    EXPECT_EQ(Ok(L"stringValues={text,}"), BuildRaw(kKeyStringValues, [&](VARIANT& value) {
                  // The array does not know that it holds a text, and leaves it to its owner.
                  value.parray = UndeclaredArray(sizeof(BSTR), 2);
                  static_cast<BSTR*>(value.parray->pvData)[0] = text.Get().bstrVal;
                  value.vt = VT_ARRAY | VT_BSTR;
                  return S_OK;
              }));
    for (const UINT64 key : kListKeys) {
        EXPECT_EQ(kRefusedText, BuildRaw(key, [key](VARIANT& value) {
                      value.parray = UndeclaredArray(/*elementSize=*/1, 100);
                      value.vt = ListType(key);
                      return S_OK;
                  }));
    }
}

TEST(ParameterBadInput, NumbersAreNeverTakenForTexts) {
    for (const UINT64 key : {kKeyStringValues, kKeyMoreStringValues}) {
        EXPECT_EQ(kRefusedText, BuildRaw(key, [](VARIANT& value) {
                      value.parray = SafeArrayCreateVector(VT_UI8, 0, 2);
                      FillWithNumbers<ULONGLONG>(value.parray, 2);
                      value.vt = VT_ARRAY | VT_BSTR;
                      return S_OK;
                  }));
        EXPECT_EQ(kRefusedText, BuildRaw(key, ArrayOf(VT_ARRAY | VT_BSTR, VT_UNKNOWN, 2)));
    }
}

TEST(ParameterBadInput, PointersAreNeverTakenForNumbers) {
    for (const VARTYPE type : {VT_BSTR, VT_UNKNOWN, VT_DISPATCH})
        EXPECT_EQ(kRefusedText, BuildRaw(kKeyUllValues, ArrayOf(VT_ARRAY | VT_UI8, type, 2)));
}

TEST(ParameterBadInput, AnArrayOfSeveralDimensionsFails) {
    for (const UINT64 key : kListKeys) {
        EXPECT_EQ(kRefusedText, BuildRaw(key, [key](VARIANT& value) {
                      SAFEARRAYBOUND bounds[] = {{2, 0}, {3, 0}};
                      value.parray = SafeArrayCreate(ElementType(key), 2, bounds);
                      value.vt = ListType(key);
                      return S_OK;
                  }));
    }
}

TEST(ParameterBadInput, AnArrayWithoutDataGivesNoValues) {
    for (const UINT64 key : kListKeys) {
        const BuiltText built = BuildRaw(key, [key](VARIANT& value) {
            EXPECT_EQ(S_OK, SafeArrayAllocDescriptorEx(ElementType(key), 1, &value.parray));
            value.parray->rgsabound[0] = {3, 0};
            value.vt = ListType(key);
            return S_OK;
        });
        EXPECT_EQ(L"", built.text);
    }
}

TEST(ParameterBadInput, ALowerBoundOtherThanZeroIsFollowed) {
    for (const LONG lowerBound : {-3L, 5L}) {
        EXPECT_EQ(Ok(L"intValues={1,2,3}"), BuildRaw(kKeyIntValues, [lowerBound](VARIANT& value) {
                      SAFEARRAYBOUND bound = {3, lowerBound};
                      value.parray = SafeArrayCreate(VT_I4, 1, &bound);
                      FillWithNumbers<LONG>(value.parray, 3);
                      value.vt = VT_ARRAY | VT_I4;
                      return S_OK;
                  }));
    }
}

TEST(ParameterBadInput, ANullTextIsAnEmptyOne) {
    EXPECT_EQ(Ok(L"stringValues={,}"),
              BuildRaw(kKeyStringValues, ArrayOf(VT_ARRAY | VT_BSTR, VT_BSTR, 2)));
    EXPECT_EQ(Ok(L"stringValues={}"), BuildRaw(kKeyMoreStringValues, [](VARIANT& value) {
                  value.vt = VT_BSTR;
                  value.bstrVal = nullptr;
                  return S_OK;
              }));
}

TEST(ParameterBadInput, ANullFirstTextOfAUserLocationBecomesTheDefaultCountry) {
    ContainerBuilder named;
    RawContainer action(named.Text(kKeyActionName, L"userLocation").Get());
    action.Make(kKeyStringValues, ArrayOf(VT_ARRAY | VT_BSTR, VT_BSTR, 2));
    EXPECT_EQ(Ok(L"stringValues={JPN,}"), Build(&action));
}

TEST(ParameterBadInput, ANullNameIsAnyName) {
    RawContainer action(NamedAction().I4(kKeyIntValues, 1).Get());
    action.Make(kKeyActionName, [](VARIANT& value) {
        value.vt = VT_BSTR;
        value.bstrVal = nullptr;
        return S_OK;
    });
    EXPECT_EQ(Ok(L"intValues={1}"), Build(&action));
}

TEST(ParameterBadInput, AValueThatComesWithoutOkIsAbsent) {
    for (const UINT64 key : kListKeys) {
        EXPECT_EQ(Ok(L""), BuildRaw(key, [key](VARIANT& value) {
                      ArrayOf(ListType(key), ElementType(key), 2)(value);
                      return S_FALSE;
                  }));
    }
}

TEST(ParameterBadInput, AFailureCountsEvenWithAValue) {
    for (const UINT64 key : kListKeys) {
        EXPECT_EQ((BuiltText{E_ACCESSDENIED, L""}), BuildRaw(key, [key](VARIANT& value) {
                      ArrayOf(ListType(key), ElementType(key), 2)(value);
                      return E_ACCESSDENIED;
                  }));
    }
}

} // namespace tsl::test
