// Base of the tests that move content without an action log around it: a content store, counted
// containers, and a move from "old one" and "old two" to "new one" and "new two" with the number 9.
// Each test must leave no reference behind.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "component/host/Identities.h"
#include "console/ComInitialization.h"
#include "recording/ContentMove.h"
#include "tests/content_move/Properties.h"
#include "tests/support/ContentStoreDouble.h"
#include "tests/support/HostContainers.h"

namespace tsl::test {

class ContentMoveTest : public testing::Test {
protected:
    void TearDown() override {
        m_kept.reset();
        EXPECT_EQ(0u, store.Held()) << "a reference to the content store was not given back";
        store.items.clear();
        EXPECT_EQ(0, containers.live) << "a reference to a container was not given back";
    }

    // The move of the texts and the number below. A text that is missing is null.
    HRESULT Move();
    // The same with other old texts.
    HRESULT Move(std::wstring_view first, std::wstring_view second);

    ContentStoreDouble store;
    ContentStoreClass storeClass{store};
    HostContainers containers;

    std::optional<std::wstring> oldTexts[2] = {L"old one", L"old two"};
    std::optional<std::wstring> newTexts[2] = {L"new one", L"new two"};
    CVariant number = CVariant::FromI4(9);

private:
    CComInitialization m_com;
    ClassRegistration m_storeClass{CLSID_TslContentStore, &storeClass};
    ClassRegistration m_containerClass{CLSID_TslParamContainer, &containers};
    std::optional<CHostContentStore> m_kept{std::in_place};
};

} // namespace tsl::test
