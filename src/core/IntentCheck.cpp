#include "core/IntentCheck.h"

#include "core/Text.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/regex.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <memory>
#include <new>
#include <stdexcept>
#include <utility>

namespace orlune {
namespace {

using icu::UnicodeString;

constexpr std::string_view shortRequestHint = "The desired outcome may need one more detail.";
constexpr std::string_view vaguePhraseHint = "One part sounds open to interpretation.";
constexpr int fewestWords = 4;

// In case-folded form.
constexpr std::array vaguePhrases{
    std::u16string_view(u"something like"), std::u16string_view(u"somehow"),
    std::u16string_view(u"make it better"), std::u16string_view(u"do the thing"),
    std::u16string_view(u"and so on")};

constexpr char16_t clauseBoundary[] =
    uR"((?<=[.!?])\s+|,\s*(?=(?:and\s+)?(?:also|make sure|keep|use|include|avoid|do not|don't|never|must|should|need)\b)|\s+(?=(?:and\s+)?(?:also|make sure|keep|use|include|avoid|do not|don't|never|must|should|need)\b)|\s+(?=but\s+))";

// Below this code unit every character stands for itself: nothing combines with its neighbours,
// except a line feed after a carriage return.
constexpr char16_t firstCombining = 0x300;

// ICU fails here only when memory or its own data is missing.
void require(UErrorCode status) {
    if (status == U_MEMORY_ALLOCATION_ERROR) {
        throw std::bad_alloc();
    }
    if (U_FAILURE(status)) {
        throw std::runtime_error(u_errorName(status));
    }
}

UnicodeString fromUtf8(std::string_view text) {
    if (!std::in_range<std::int32_t>(text.size())) {
        throw std::length_error("text of 2 GiB or more");
    }
    return UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string toUtf8(const UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

// The user-perceived characters (extended grapheme clusters) of one text, which must outlive this
// object.
class Characters {
  public:
    explicit Characters(const UnicodeString& text) : text_(text) {}

    /// The end of the character that starts at `start`.
    std::int32_t end(std::int32_t start) {
        const std::int32_t next = start + 1;
        return isBoundaryAtSight(next) ? next : breaks().following(start);
    }

    /// Whether a character starts at `index`.
    bool startsAt(std::int32_t index) {
        return isBoundaryAtSight(index) || breaks().isBoundary(index) != 0;
    }

  private:
    bool isBoundaryAtSight(std::int32_t index) const {
        return index == 0 || index == text_.length()
               || (text_.charAt(index - 1) < firstCombining && text_.charAt(index) < firstCombining
                   && text_.charAt(index - 1) != u'\r');
    }

    // Building the iterator takes longer than checking a short transcript; copying it does not.
    icu::BreakIterator& breaks() {
        static const std::unique_ptr<const icu::BreakIterator> prototype = [] {
            UErrorCode status = U_ZERO_ERROR;
            std::unique_ptr<const icu::BreakIterator> created(
                icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
            require(status);
            return created;
        }();
        if (!breaks_) {
            breaks_.reset(prototype->clone());
            breaks_->setText(text_);
        }
        return *breaks_;
    }

    const UnicodeString& text_;
    std::unique_ptr<icu::BreakIterator> breaks_;
};

// Tab, line feed, form feed, carriage return and the separators. ICU's own `\s` also matches
// vertical tab and U+0085, which must be kept: they are the only line breaks that end a clause.
bool isCollapsible(char16_t unit) {
    if (unit < 0x80) {
        return unit == u' ' || unit == u'\t' || unit == u'\n' || unit == u'\f' || unit == u'\r';
    }
    return (U_GET_GC_MASK(unit) & U_GC_Z_MASK) != 0;
}

bool isLineBreakOfNormalised(char16_t unit) {
    return unit == u'\v' || unit == 0x85;
}

bool isClauseEdge(char16_t unit) {
    return unit == u' ' || unit == u',' || unit == u'\n' || unit == u'\t';
}

// Every character that callers trim is one code unit.
template <typename Predicate>
std::u16string_view trimmed(std::u16string_view text, Predicate isTrimmed) {
    const auto start = std::ranges::find_if_not(text, isTrimmed);
    const auto end = std::find_if_not(text.rbegin(), std::make_reverse_iterator(start), isTrimmed);
    return {start, end.base()};
}

std::u16string_view viewOf(const UnicodeString& text) {
    return {text.getBuffer(), static_cast<std::size_t>(text.length())};
}

UnicodeString normalised(const UnicodeString& text) {
    const std::u16string_view source = trimmed(viewOf(text), isWhitespaceOrNewline);
    UnicodeString result;
    char16_t* const units = result.getBuffer(static_cast<std::int32_t>(source.size()));
    if (units == nullptr) {
        throw std::bad_alloc();
    }
    char16_t* end = units;
    for (const char16_t unit : source) {
        if (!isCollapsible(unit)) {
            *end++ = unit;
        } else if (end[-1] != u' ') { // the first unit is not whitespace
            *end++ = u' ';
        }
    }
    result.releaseBuffer(static_cast<std::int32_t>(end - units));
    return result;
}

const icu::RegexPattern& clauseBoundaryPattern() {
    static const std::unique_ptr<const icu::RegexPattern> pattern = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<const icu::RegexPattern> compiled(
            icu::RegexPattern::compile(UnicodeString(clauseBoundary), 0, status));
        require(status);
        return compiled;
    }();
    return *pattern;
}

// Each line of the text is searched separately. A line break is neither whitespace nor part of a
// word, just like the end of the text, so no match is lost or gained. A run of whitespace within a
// line is one space by now, so the search takes linear time.
std::vector<std::u16string_view> splitIntoClauses(const UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::RegexMatcher> boundaries(
        clauseBoundaryPattern().matcher(text, status));
    require(status);

    const std::u16string_view units = viewOf(text);
    std::vector<std::u16string_view> clauses;
    const auto append = [&](std::int32_t start, std::int32_t end) {
        const auto piece =
            units.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start));
        const std::u16string_view clause = trimmed(piece, isClauseEdge);
        if (!clause.empty()) {
            clauses.push_back(clause);
        }
    };
    std::int32_t start = 0;
    while (start < text.length()) {
        const auto lineBreak =
            std::find_if(units.begin() + start, units.end(), isLineBreakOfNormalised);
        const auto lineEnd = static_cast<std::int32_t>(lineBreak - units.begin());
        boundaries->region(start, lineEnd, status);
        while (boundaries->find(status) != 0) {
            append(start, boundaries->start(status));
            start = boundaries->end(status);
        }
        require(status);
        append(start, lineEnd);
        start = lineEnd + 1;
    }
    return clauses;
}

std::string sentenceCase(std::u16string_view clause) {
    const std::u16string_view content = trimmed(clause, isWhitespaceOrNewline);
    if (content.empty()) {
        return {};
    }
    const UnicodeString text(/*isTerminated=*/false, content.data(),
                             static_cast<std::int32_t>(content.size()));
    Characters characters(text);
    const std::int32_t firstEnd = characters.end(0);
    UnicodeString first(text, 0, firstEnd);
    std::string sentence = toUtf8(first.toUpper(icu::Locale::getRoot()));
    text.tempSubString(firstEnd).toUTF8String(sentence);

    const char16_t lastUnit = content.back();
    const bool isEnded = (lastUnit == u'.' || lastUnit == u'!' || lastUnit == u'?')
                         && characters.startsAt(text.length() - 1);
    if (!isEnded) {
        sentence += '.';
    }
    return sentence;
}

// The first scalar decides: an e with a combining accent is a letter.
bool isLetterOrNumber(UChar32 firstScalar) {
    return u_isUAlphabetic(firstScalar) != 0
           || u_getIntPropertyValue(firstScalar, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

bool hasFewerWords(const UnicodeString& text, int wanted) {
    Characters characters(text);
    int words = 0;
    bool isInWord = false;
    for (std::int32_t index = 0; index < text.length(); index = characters.end(index)) {
        const bool isPartOfWord = isLetterOrNumber(text.char32At(index));
        words += isPartOfWord && !isInWord ? 1 : 0;
        isInWord = isPartOfWord;
        if (words == wanted) {
            return false;
        }
    }
    return true;
}

// Letters that differ only in case become the same letter under the user's locale. Turkish and
// Azerbaijani keep the dotted and the dotless i apart, and lower case there joins a capital I with
// the dot that follows it.
UnicodeString caseFolded(UnicodeString text) {
    const icu::Locale& locale = icu::Locale::getDefault();
    const std::string_view language = locale.getLanguage();
    if (language == "tr" || language == "az") {
        return text.toLower(locale).foldCase(U_FOLD_CASE_EXCLUDE_SPECIAL_I);
    }
    return text.foldCase();
}

// ICU's collating search would find more than differences in case (it ignores NUL and soft hyphens
// and takes wide letters for plain ones), at many times the cost. Folding and a plain search find
// only those. The phrases are ASCII, so nothing else is canonically equivalent to them. A match
// must consist of whole characters, as "somehow" is not in "somehoẃ", however encoded.
bool containsVaguePhrase(const UnicodeString& text) {
    const UnicodeString folded = caseFolded(text);
    const std::u16string_view searched = viewOf(folded);
    Characters characters(folded);
    const auto isWhole = [&](std::size_t found, std::size_t length) {
        return characters.startsAt(static_cast<std::int32_t>(found))
               && characters.startsAt(static_cast<std::int32_t>(found + length));
    };
    return std::ranges::any_of(vaguePhrases, [&](std::u16string_view phrase) {
        std::size_t found = searched.find(phrase);
        while (found != std::u16string_view::npos && !isWhole(found, phrase.size())) {
            found = searched.find(phrase, found + 1);
        }
        return found != std::u16string_view::npos;
    });
}

std::optional<std::string> potentialGap(const UnicodeString& text) {
    if (hasFewerWords(text, fewestWords)) {
        return std::string(shortRequestHint);
    }
    if (containsVaguePhrase(text)) {
        return std::string(vaguePhraseHint);
    }
    return std::nullopt;
}

bool areEquivalent(std::string_view left, std::string_view right) {
    if (left == right) {
        return true;
    }
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const decomposition = icu::Normalizer2::getNFDInstance(status);
    require(status);
    const UnicodeString decomposedLeft = decomposition->normalize(fromUtf8(left), status);
    const UnicodeString decomposedRight = decomposition->normalize(fromUtf8(right), status);
    require(status);
    return decomposedLeft == decomposedRight;
}

} // namespace

std::string IntentCheck::formattedInstruction() const {
    if (requirements.empty()) {
        return goal;
    }
    std::string text = "Goal\n" + goal + "\n\nRequirements";
    for (const std::string& requirement : requirements) {
        text += "\n- ";
        text += requirement;
    }
    return text;
}

bool operator==(const IntentCheck& left, const IntentCheck& right) {
    const bool haveSameGap = left.potentialGap.has_value() == right.potentialGap.has_value();
    return haveSameGap && areEquivalent(left.goal, right.goal)
           && std::ranges::equal(left.requirements, right.requirements, areEquivalent)
           && areEquivalent(left.potentialGap.value_or(""), right.potentialGap.value_or(""))
           && areEquivalent(left.originalTranscript, right.originalTranscript);
}

IntentCheck IntentCheckBuilder::build(std::string_view transcript) {
    const UnicodeString text = normalised(fromUtf8(transcript));
    IntentCheck check;
    check.originalTranscript = toUtf8(text);
    const std::vector<std::u16string_view> clauses = splitIntoClauses(text);
    if (clauses.empty()) {
        check.goal = check.originalTranscript;
    } else {
        check.goal = sentenceCase(clauses.front());
        check.requirements.reserve(clauses.size() - 1);
        std::transform(clauses.begin() + 1, clauses.end(), std::back_inserter(check.requirements),
                       sentenceCase);
    }
    check.potentialGap = potentialGap(text);
    return check;
}

} // namespace orlune
