// Any bytes give an intent check whose texts are consistent.
#include "core/IntentCheck.h"
#include "core/Text.h"
#include "fuzz/Fuzzing.h"

#include <unicode/unistr.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using orlune::fuzz::expect;

bool isUtf8(const std::string& text) {
    std::string again;
    icu::UnicodeString::fromUTF8(text).toUTF8String(again);
    return again == text;
}

bool isSentence(const std::string& text) {
    return text.ends_with('.') || text.ends_with('!') || text.ends_with('?');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view transcript(reinterpret_cast<const char*>(data), size);
    const orlune::IntentCheck check = orlune::IntentCheckBuilder::build(transcript);

    const std::string& normalised = check.originalTranscript;
    expect(isUtf8(normalised));
    expect(orlune::trimmedWhitespaceAndNewlines(normalised) == normalised);
    expect(normalised.find_first_of("\t\n\f\r") == std::string::npos);
    expect(normalised.find("  ") == std::string::npos);
    expect(orlune::trimmedWhitespaceAndNewlines(transcript).empty() == normalised.empty());
    // The normalised transcript is a fixed point, on which everything else depends.
    expect(orlune::IntentCheckBuilder::build(normalised) == check);

    expect(isUtf8(check.goal));
    expect(isSentence(check.goal) || check.goal == normalised);
    for (const std::string& requirement : check.requirements) {
        expect(isUtf8(requirement) && isSentence(requirement));
        expect(!requirement.starts_with(' ') && !requirement.starts_with(','));
        expect(requirement.find_first_of("\v\n") == std::string::npos);
    }
    expect(check.formattedInstruction().starts_with(check.requirements.empty() ? check.goal
                                                                               : "Goal\n"));
    return 0;
}
