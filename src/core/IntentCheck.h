// Splits a dictation for review: the first clause is the goal, each further one a requirement.
// Plain values and pure functions, usable on any thread; every transcript gives a check.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {

/// All texts are UTF-8.
struct IntentCheck {
    /// The first clause in sentence case; the normalised transcript itself when it has no clause.
    std::string goal;
    /// Every later clause in sentence case, in spoken order; duplicates are kept.
    std::vector<std::string> requirements;
    /// One of two fixed hints, when the transcript is very short or sounds vague.
    std::optional<std::string> potentialGap;
    /// The transcript with each run of whitespace reduced to one space, trimmed.
    std::string originalTranscript;

    /// The text that is inserted once the user has confirmed the check.
    std::string formattedInstruction() const;

    /// Texts are equal by canonical equivalence: precomposed and decomposed forms are the same.
    friend bool operator==(const IntentCheck& left, const IntentCheck& right);
};

class IntentCheckBuilder {
  public:
    IntentCheckBuilder() = delete;

    /// `transcript` may be any bytes, up to 2^31 - 1 of them: each ill-formed UTF-8 sequence counts
    /// as U+FFFD. Takes time proportional to the length.
    static IntentCheck build(std::string_view transcript);
};

} // namespace orlune
