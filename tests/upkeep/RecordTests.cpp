// The record format is read as the engine writes it, and never beyond its bytes.
#include <gmock/gmock.h>

#include "tests/hostile_input/Chance.h"
#include "tests/support/StoreFixture.h"
#include "upkeep/recovery/Record.h"

namespace tsl::test {

namespace {

using testing::ElementsAre;

std::optional<UINT64> Varint(const Bytes& bytes) {
    size_t place = 0;
    UINT64 value = 0;
    if (!ReadVarint(bytes, place, value)) return {};
    EXPECT_EQ(bytes.size(), place);
    return value;
}

StoredValue Text(const char* text) {
    return std::string(text);
}

TEST(Varint, HasOneToNineBytes) {
    EXPECT_EQ(0u, Varint({0x00}));
    EXPECT_EQ(127u, Varint({0x7F}));
    EXPECT_EQ(128u, Varint({0x81, 0x00}));
    EXPECT_EQ(16384u, Varint({0x81, 0x80, 0x00}));
    EXPECT_EQ(~UINT64{0}, Varint({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(Varint, ThatDoesNotEndIsNone) {
    EXPECT_EQ(std::nullopt, Varint({}));
    EXPECT_EQ(std::nullopt, Varint({0x80}));
    EXPECT_EQ(std::nullopt, Varint({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

// NULL, -2 in one byte, 258 in two, 0, 1, 1.5, a text, a blob
const Bytes kRecord = {9,    0,    1, 2, 8, 9, 7, 17, 16,  0xFE, 0x01, 0x02,
                       0x3F, 0xF8, 0, 0, 0, 0, 0, 0,  'a', 'b',  7,    8};

TEST(Record, HasValuesOfAllKinds) {
    const auto header = ReadRecordHeader(kRecord);
    ASSERT_TRUE(header);
    EXPECT_TRUE(header->isSound);
    EXPECT_EQ(kRecord.size(), header->size + header->bodySize);
    bool isWhole = false;
    EXPECT_THAT(ReadRecordValues(*header, kRecord, isWhole),
                ElementsAre(StoredValue(), StoredValue(INT64{-2}), StoredValue(INT64{258}),
                            StoredValue(INT64{0}), StoredValue(INT64{1}), StoredValue(1.5),
                            Text("ab"), StoredValue(BlobValue{"\x07\x08"})));
    EXPECT_TRUE(isWhole);
}

TEST(Record, ThatIsCutKeepsWhatIsThere) {
    const auto header = ReadRecordHeader(kRecord);
    bool isWhole = true;
    const Bytes cut(kRecord.begin(), kRecord.end() - 3);
    EXPECT_THAT(ReadRecordValues(*header, cut, isWhole),
                ElementsAre(StoredValue(), StoredValue(INT64{-2}), StoredValue(INT64{258}),
                            StoredValue(INT64{0}), StoredValue(INT64{1}), StoredValue(1.5),
                            Text("a"), StoredValue()));
    EXPECT_FALSE(isWhole);
    const Bytes inReal(kRecord.begin(), kRecord.begin() + 15);
    EXPECT_EQ(StoredValue(), ReadRecordValues(*header, inReal, isWhole)[5]);
}

TEST(Record, EndsBeforeATypeThatCannotBe) {
    const auto header = ReadRecordHeader(Bytes{4, 1, 10, 1, 5, 6});
    ASSERT_TRUE(header);
    EXPECT_FALSE(header->isSound);
    EXPECT_THAT(header->types, ElementsAre(1u));
}

TEST(Record, WithAHeaderThatDoesNotFitIsNone) {
    EXPECT_FALSE(ReadRecordHeader(Bytes{}));
    EXPECT_FALSE(ReadRecordHeader(Bytes{0}));
    EXPECT_FALSE(ReadRecordHeader(Bytes{5, 1, 1}));
    EXPECT_FALSE(ReadRecordHeader(Bytes(100, 100))) << "too many columns";
}

TEST(Record, OfAnyBytesIsReadWithinThem) {
    Chance chance(1);
    for (int round = 0; round < 20'000; ++round) {
        Bytes bytes(chance.Below(60));
        for (unsigned char& byte : bytes)
            byte = static_cast<unsigned char>(chance.Below(256));
        const auto header = ReadRecordHeader(bytes);
        if (!header) continue;
        bool isWhole = false;
        EXPECT_EQ(header->types.size(), ReadRecordValues(*header, bytes, isWhole).size());
    }
}

} // namespace

} // namespace tsl::test
