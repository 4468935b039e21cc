// text_bench: times the parameter text of 10,000 strings, against one pass through memory over the
// same text. Options are those of the benchmark library.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "recording/ValueEncoders.h"

namespace tsl::bench {

namespace {

constexpr size_t kStrings = 10'000;

// Strings as hosts send them: some words, one character in six to be encoded.
std::vector<std::wstring> MakeStrings() {
    std::vector<std::wstring> strings;
    for (size_t index = 0; index < kStrings; ++index)
        strings.push_back(L"The title of number " + std::to_wstring(index));
    return strings;
}

void Encode(const std::vector<std::wstring>& strings, std::wstring& text) {
    const std::vector<std::wstring_view> views(strings.begin(), strings.end());
    EncodeStringValues(views, text, /*textBefore=*/false, /*omitName=*/false,
                       /*isUserLocation=*/false);
}

void EncodeStrings(benchmark::State& state) {
    const std::vector<std::wstring> strings = MakeStrings();
    for (auto _ : state) {
        std::wstring text;
        Encode(strings, text);
        benchmark::DoNotOptimize(text.data());
    }
}

// Each string read once and written once, as it is.
void PassThroughMemory(benchmark::State& state) {
    const std::vector<std::wstring> strings = MakeStrings();
    const std::vector<std::wstring_view> views(strings.begin(), strings.end());
    size_t size = 0;
    for (const std::wstring_view view : views)
        size += view.size() + 1;
    for (auto _ : state) {
        std::wstring text;
        text.reserve(size);
        for (const std::wstring_view view : views)
            text.append(view).push_back(L',');
        benchmark::DoNotOptimize(text.data());
    }
}

// The finished text copied in one piece, to memory that is there.
void CopyFinishedText(benchmark::State& state) {
    std::wstring text;
    Encode(MakeStrings(), text);
    std::wstring target(text.size(), L'\0');
    for (auto _ : state) {
        std::memcpy(target.data(), text.data(), text.size() * sizeof(wchar_t));
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
}

void Register(const char* name, void (*function)(benchmark::State&)) {
    benchmark::RegisterBenchmark(name, function)
        ->Iterations(100)
        ->UseRealTime()
        ->Unit(benchmark::kMicrosecond);
}

} // namespace

} // namespace tsl::bench

int main(int count, char** arguments) {
    using namespace tsl::bench;
    Register("text of 10000 strings/0/component", EncodeStrings);
    Register("text of 10000 strings/0/floor", PassThroughMemory);
    Register("copy the finished text in one piece/0/cost", CopyFinishedText);
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) return 2;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
