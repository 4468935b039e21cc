// Counter files and user id lists of any bytes: what is read out of them is what the model reads,
// and what is written afterwards has the one format.
#include "tests/hostile_input/TextFileModel.h"

#include "files/UserIdList.h"
#include "tests/hostile_input/HostileStore.h"
#include "tests/hostile_input/InputLoop.h"
#include "tests/hostile_input/Mutation.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

// A megabyte, once in so many inputs.
constexpr size_t kInputsPerLargeFile = 100;
constexpr size_t kLargeText = 512 * 1024;

// Else the next id is asked for.
constexpr size_t kInputsPerQuery = 8;

const std::vector<std::wstring> kBreaks = {L"\r\n",
                                           L"\r\n\r\n",
                                           L"\n",
                                           L"\r",
                                           L"\n\r",
                                           L"\t",
                                           L"\t\r\n",
                                           L" ",
                                           L"\xFEFF",
                                           L"\xFFFE",
                                           std::wstring(1, L'\0'),
                                           L"\xD800",
                                           L"S-1-5-21-1\t"};

const std::vector<std::wstring> kCounterTexts = {
    L"",        L"00000042\t\r\n",   L"123456789\t\r\n",   L"41\r\n42\r\n43",
    L"abc\r\n", L"4294967294\t\r\n", L" \t7 \t\r\n\n\r\n", L"\r\n41\r\n42"};

TextSpoiler UserTexts(const std::wstring& sid) {
    const std::wstring line = L"0x00000001\tS-1-5-21-1-2-3-1001\t\r\n";
    std::vector<std::wstring> pieces = kBreaks;
    pieces.insert(pieces.end(), {sid, L"\t" + sid + L"\t", line, L"0x"});
    return TextSpoiler({L"", line, line + L"0x00000002\t" + sid + L"\t\r\n",
                        L"17\t" + sid + L"\tmore\r\n021\tS-1-5\t\r\n", L"\t" + sid,
                        line + line + L"0xfedcba9876543210\tS-1-9\t\r\n", L"\r\n" + line + line,
                        L"S-1-5-21\r\n\t\r\n"},
                       std::move(pieces));
}

// A file of the text: with or without a byte order mark, and perhaps with spoiled bytes.
Bytes MakeFile(std::wstring text, Chance& chance, size_t input) {
    if (input % kInputsPerLargeFile == 60 && !text.empty()) {
        if (chance.OneIn(2)) text.erase(std::remove(text.begin(), text.end(), L'\n'), text.end());
        while (!text.empty() && text.size() < kLargeText)
            text += text;
        text.resize(std::min(text.size(), kLargeText));
    }
    Bytes bytes = chance.OneIn(3) ? Utf16Bytes(text) : Utf16FileBytes(text);
    if (chance.OneIn(2)) SpoilBytes(bytes, chance, 6);
    return bytes;
}

constexpr size_t kMostOfACounter = 64 * 1024;
constexpr HRESULT kTooLarge = HresultFromWin32(ERROR_FILE_TOO_LARGE);

} // namespace

class HostileTextFiles : public HostileStoreTest {
protected:
    void ExpectTheNextId(const Bytes& file) {
        Containers().Restart(); // forgets the calls
        if (file.size() > kMostOfACounter) {
            ExpectNoAnswer(kTooLarge, kCommandNextRecordId, ContainerBuilder());
            EXPECT_EQ(file, ReadBytes(CounterPath()));
            return;
        }
        const UINT32 expected = ModelCounter(file).value_or(1) + 1;
        CVariant answer;
        EXPECT_EQ(S_OK, Ask(kCommandNextRecordId, ContainerBuilder(), answer.Address()));
        ASSERT_EQ(VT_UNKNOWN, answer.Type());
        auto& container = *static_cast<ITslParamContainer*>(answer.Get().punkVal);
        EXPECT_EQ(expected, ValueOf(container, kKeyRecordId).Get().ulVal);
        EXPECT_EQ(ModelCounterFile(expected), ReadBytes(CounterPath()));
    }

    // A query that names a first id raises a lower counter, so that the next id is that one.
    void ExpectTheCounterIsRaised(const Bytes& file, UINT32 firstId) {
        const bool lower =
            file.size() <= kMostOfACounter && ModelCounter(file).value_or(1) < firstId;
        ExpectNoAnswer(E_INVALIDARG, kCommandQueryIds,
                       ContainerBuilder().Ui4(kKeyUserId, 7).Ui4(kKeyFirstRecordId, firstId));
        EXPECT_EQ(lower ? ModelCounterFile(firstId - 1) : file, ReadBytes(CounterPath()));
    }
};

TEST_F(HostileTextFiles, CounterFilesHaveADefinedNextId) {
    MakeStoreFolder();
    const TextSpoiler texts(kCounterTexts, kBreaks);
    TryInputs("counter files", InForm<size_t>(100, 2000), [&](Chance& chance, size_t input) {
        const Bytes file = MakeFile(texts.Make(chance), chance, input);
        WriteBytes(CounterPath(), file);
        if (chance.OneIn(kInputsPerQuery)) {
            constexpr UINT32 kFirstIds[] = {0, 1, 42, 43, 1000, 0x7FFFFFFF, 0xFFFFFFFF};
            ExpectTheCounterIsRaised(file, chance.Of(kFirstIds));
        } else {
            ExpectTheNextId(file);
        }
        EXPECT_TRUE(NobodyHasOpen(CounterPath()));
    });
}

TEST_F(HostileTextFiles, UserIdListsHaveADefinedIdOfTheUser) {
    const std::wstring sid = TokenSid();
    const TextSpoiler texts = UserTexts(sid);
    TryInputs("user id lists", InForm<size_t>(100, 2000), [&](Chance& chance, size_t input) {
        const Bytes file = MakeFile(texts.Make(chance), chance, input);
        PrepareUserIdList(file);
        const ModelUser expected = ModelLookUp(file, sid);
        UINT64 id = 0xBAD;
        EXPECT_EQ(S_FALSE, CurrentUserId(id));
        EXPECT_EQ(expected.id, id);
        EXPECT_EQ(expected.file, ReadBytes(UserIdListPath()));
        EXPECT_TRUE(NobodyHasOpen(UserIdListPath()));
        EXPECT_FALSE(MutexExists(kLoginLock));
    });
}

// The records that the current user's request gives are those of the id that the list gives him.
TEST_F(HostileTextFiles, RequestsOfTheUserGoByTheListToo) {
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(2));
    std::filesystem::remove(ActionLogPath());
    StoreTaken({{.id = 5, .user = 0}, {.id = 6, .user = 0}});
    const std::wstring sid = TokenSid();
    const TextSpoiler texts = UserTexts(sid);
    TryInputs("requests by user id lists", InForm<size_t>(50, 500),
              [&](Chance& chance, size_t input) {
                  const Bytes file = MakeFile(texts.Make(chance), chance, input);
                  PrepareUserIdList(file);
                  const ModelUser expected = ModelLookUp(file, sid);
                  const auto userId = static_cast<UINT32>(expected.id);
                  FileDatabase(ActionLogPath())
                      .Query(std::string("UPDATE ") + kTakenRows +
                             " SET UserId = " + std::to_string(userId) + " + ActionLogId - 5");
                  Containers().Restart();
                  ExpectIds({5}, kCommandQueryAllIds, ContainerBuilder());
                  EXPECT_EQ(expected.file, ReadBytes(UserIdListPath()));
              });
}

} // namespace tsl::test
