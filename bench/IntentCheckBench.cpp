// The cost of the whole intent check compared with one pass of ICU with its clause pattern over the
// same text: compare `build` with `icuPass` at the same length. Both have compiled the pattern
// before.
#include "core/IntentCheck.h"

#include <benchmark/benchmark.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view english =
    "Please write a small function that parses the dates in our export files, make sure it handles "
    "time zones and leap years. The old code was slow but it worked, and I would like the new "
    "version to be just as reliable. Don't touch the public interface, and keep the tests that we "
    "already have! Is there a simpler way to read the header? If so, use it, but explain it in a "
    "comment. ";
constexpr std::string_view accented =
    "Schreibe bitte eine kleine Funktion, die für große Übersichten die Zwischenräume zählt — "
    "naïve façade, déjà vu, “zitiert” … use it, keep 例えば日本語の文章も短く入れて。 Это тоже "
    "нужно проверить, make sure všechno funguje. ";

constexpr char16_t clauseBoundary[] =
    uR"((?<=[.!?])\s+|,\s*(?=(?:and\s+)?(?:also|make sure|keep|use|include|avoid|do not|don't|never|must|should|need)\b)|\s+(?=(?:and\s+)?(?:also|make sure|keep|use|include|avoid|do not|don't|never|must|should|need)\b)|\s+(?=but\s+))";

std::string dictation(std::string_view sample, std::size_t bytes) {
    std::string text;
    while (text.size() + sample.size() <= bytes) {
        text += sample;
    }
    return text;
}

void build(benchmark::State& state, std::string_view sample) {
    const std::string transcript = dictation(sample, static_cast<std::size_t>(state.range(0)));
    orlune::IntentCheckBuilder::build(transcript);
    for ([[maybe_unused]] auto iteration : state) {
        benchmark::DoNotOptimize(orlune::IntentCheckBuilder::build(transcript));
    }
}

void icuPass(benchmark::State& state, std::string_view sample) {
    const auto text =
        icu::UnicodeString::fromUTF8(dictation(sample, static_cast<std::size_t>(state.range(0))));
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexPattern> pattern(
        icu::RegexPattern::compile(icu::UnicodeString(clauseBoundary), 0, status));
    for ([[maybe_unused]] auto iteration : state) {
        const std::unique_ptr<icu::RegexMatcher> matcher(pattern->matcher(text, status));
        benchmark::DoNotOptimize(matcher->replaceAll(icu::UnicodeString(u"\n"), status));
    }
    if (U_FAILURE(status)) {
        state.SkipWithError(u_errorName(status));
    }
}

void lengths(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(1'000)->Arg(10'000)->Arg(100'000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE(icuPass, english, english)->Apply(lengths);
BENCHMARK_CAPTURE(build, english, english)->Apply(lengths);
BENCHMARK_CAPTURE(icuPass, accented, accented)->Apply(lengths);
BENCHMARK_CAPTURE(build, accented, accented)->Apply(lengths);

} // namespace

BENCHMARK_MAIN();
