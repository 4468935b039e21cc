// The properties of one content item of the host's, as a content move reads, changes and packs
// them.
#pragma once

#include <string>
#include <vector>

#include "base/Variant.h"
#include "component/host/ITslParamContainer.h"

namespace tsl {

// A property as its container gave it; what is absent is empty.
struct ContentProperty {
    CVariant firstText;
    CVariant secondText;
    CVariant number;
};

// The property that a container holds. Values of other types than their keys say are kept too.
ContentProperty ReadContentProperty(ITslParamContainer& container);

// Whether the property speaks of the two texts. Its first text is compared as words are, in the
// invariant locale and in any case; its second text in any case, and it may be absent.
bool MatchesTexts(const ContentProperty& property, const std::wstring& firstText,
                  const std::wstring& secondText);

// Packs the properties into a VT_ARRAY of VT_UNKNOWN with a new container each; absent values stay
// absent. S_OK; S_FALSE, with the result untouched, for no properties; else the failure of making
// or filling a container.
HRESULT PackContentProperties(std::vector<ContentProperty> properties, VARIANT* result);

} // namespace tsl
