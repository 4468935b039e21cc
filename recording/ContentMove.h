// A content move: what the host calls by two texts is from now on called by two others, and the
// host's content items are told so.
#pragma once

#include "component/host/ITslParamContainer.h"
#include "store/HostContentStore.h"

namespace tsl {

// The texts and the number of a move. The texts belong to the action they were read from.
struct ContentMove {
    BSTR oldTexts[2];
    BSTR newTexts[2];
    const VARIANT& number;
};

// Reads the move from the action and carries it out. Works on the host's content items, not on the
// action tables, and takes no lock. E_INVALIDARG for an action without two old texts, two new texts
// and the number; else as below.
HRESULT MoveContent(CHostContentStore& contentStore, ITslParamContainer& action);

// Replaces, in every item of the first old text, the properties that match both old texts, and
// writes all properties of each item back. The first text matches as words do (invariant locale,
// any case), the second in any case or by its absence. The content store is created if there is
// none yet, and kept.
//
// E_INVALIDARG for a missing text or a number that is not VT_I4; S_FALSE when the text has no
// items; the failure of creating the content store; else the result of the last step, an item that
// fails does not keep the next from being moved.
HRESULT UpdateContentItems(CHostContentStore& contentStore, const ContentMove& move);

} // namespace tsl
