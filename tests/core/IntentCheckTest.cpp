#include "core/IntentCheck.h"

#include "core/Text.h"

#include <gtest/gtest.h>
#include <unicode/locid.h>
#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <ctime>
#include <future>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace orlune {
namespace {

using namespace std::string_literals;
using icu::UnicodeString;
using Texts = std::vector<std::string>;

const std::optional<std::string> none;
const std::optional<std::string> isShort = "The desired outcome may need one more detail.";
const std::optional<std::string> isVague = "One part sounds open to interpretation.";

const auto nextLine = "\xC2\x85"s;

class LocaleForTest {
  public:
    explicit LocaleForTest(const char* name) { set(icu::Locale(name)); }
    ~LocaleForTest() { set(before_); }
    LocaleForTest(const LocaleForTest&) = delete;
    LocaleForTest& operator=(const LocaleForTest&) = delete;

  private:
    static void set(const icu::Locale& locale) {
        UErrorCode status = U_ZERO_ERROR;
        icu::Locale::setDefault(locale, status);
    }
    const icu::Locale before_ = icu::Locale::getDefault();
};

std::string repeated(std::string_view piece, std::size_t characters) {
    std::string text;
    while (text.size() < characters) {
        text += piece;
    }
    return text;
}

TEST(IntentCheckBuilder, SplitsATranscript) {
    struct Row {
        std::string name;
        std::string transcript;
        std::string clauses; // the goal and the requirements
        std::optional<std::string> potentialGap;
    };
    const Row rows[] = {
        {"a request of three clauses",
         "  write a function that parses dates, make sure it handles time zones. keep it fast  ",
         "Write a function that parses dates. | Make sure it handles time zones. | Keep it fast.",
         none},
        {"four words are enough", "fix the login form", "Fix the login form.", none},
        {"three words are short", "make it better", "Make it better.", isShort},
        {"short wins over vague", "do the thing", "Do the thing.", isShort},
        {"a vague word", "make the header look better somehow",
         "Make the header look better somehow.", isVague},
        {"? and ! stay", "is it done? tell me!", "Is it done? | Tell me!", none},
        {"an apostrophe in a cue word", "Rename the variable, don't change behaviour",
         "Rename the variable. | Don't change behaviour.", none},
        {"a typographic apostrophe makes no cue word", "Rename the variable, don’t change it",
         "Rename the variable, don’t change it.", none},
        {"a comma without a cue word", "Add logging, metrics and tracing",
         "Add logging, metrics and tracing.", none},
        {"a capital cue word", "Build the page, Also add a footer",
         "Build the page, Also add a footer.", none},
        {"but before a cue word", "Refactor the parser but keep the public API",
         "Refactor the parser. | But. | Keep the public API.", none},
        {"two cue words in a row", "summarize the article, never use jargon",
         "Summarize the article. | Never. | Use jargon.", none},
        {"and before two cue words", "draw it, and also use red",
         "Draw it. | And. | Also. | Use red.", none},
        {"a cue word inside a sentence", "I need a function that sorts users",
         "I. | Need a function that sorts users.", none},
        {"words that begin like cue words", "the user needs keeping butter",
         "The user needs keeping butter.", none},
        {"a comma right before a cue word", "go on,use that one", "Go on. | Use that one.", none},
        {"a trailing comma", "Fix it,", "Fix it.", isShort},
        {"nothing", "", "", isShort},
        {"white space alone", " \t\v\n\u00A0 " + nextLine, "", isShort},
        {"commas alone", ",,,", ",,,", isShort},
        {"other ends of a clause", "list these four things:", "List these four things:.", none},
        {"one capital only", "iPhone app needs work", "IPhone app needs work.", none},
        {"repeated clauses", "a. b. b.", "A. | B. | B.", isShort},
        {"line breaks that are white space", "one\u2028two\nthree\r\n\f four\u2029",
         "One two three four.", none},
        {"line breaks that are not", "one two\vthree" + nextLine + " four",
         "One two. | Three. | Four.", none},
        {"a vertical tab after but does not make it a clause", "one two but\vthree",
         "One two but. | Three.", none},
        {"U+0085 between and and a cue word", "one two and" + nextLine + "use it",
         "One two and. | Use it.", none},
        {"a no-break space", "a b,\u00A0use\u00A0\u00A0it", "A b. | Use it.", none},
        {"NUL", "a\0b c d e"s, "A\0b c d e."s, none},
        {"bytes that are no text", "ab\xFF c d e\xE2\x80", "Ab\uFFFD c d e\uFFFD.", none},
        {"a letter with two capitals", "ßa b c d", "SSa b c d.", none},
        {"a letter in two pieces", "e\u0301a b c d", "E\u0301a b c d.", none},
        {"a letter beyond the basic plane", "𐐨a b c d", "𐐀a b c d.", none},
        {"an emoji first", "👩‍👩‍👧 a b c d", "👩‍👩‍👧 a b c d.", none},
        {"a mark on the last stop", "a b c d.\u0301", "A b c d.\u0301.", none},
        {"a stop within a character", "a b c d\u0600.", "A b c d\u0600..", none},
        {"an accent is no separator", "re\u0301sume\u0301 is done", "Re\u0301sume\u0301 is done.",
         isShort},
        {"a space with an accent is one", "a \u0301 b c", "A \u0301 b c.", isShort},
        {"an apostrophe separates words", "don't fix it", "Don't fix it.", none},
        {"a line and a hyphen separate words", "a_b c-d", "A_b c-d.", none},
        {"an emoji separates words", "a👍b👍c👍d", "A👍b👍c👍d.", none},
        {"numbers of all kinds are words", "一 2 ½ Ⅷ", "一 2 ½ Ⅷ.", none},
        {"a vague phrase in capitals inside a word",
         "design a logo that is Something Likeable for kids",
         "Design a logo that is Something Likeable for kids.", isVague},
        {"a vague phrase across a line break", "please just Make It\n BETTER",
         "Please just Make It BETTER.", isVague},
        {"a Kelvin sign", "now ma\u212Ae it better", "Now ma\u212Ae it better.", isVague},
        {"a long s", "solve it all ſomehow", "Solve it all ſomehow.", isVague},
        {"a letter that is part of another character", "do it all \u0600somehow",
         "Do it all \u0600somehow.", none},
        {"another letter at the end of a phrase", "do it all somehow\u0301, someho\u1E83",
         "Do it all somehow\u0301, someho\u1E83.", none},
        {"a phrase after one that does not count", "do it somehow\u0301 or somehow",
         "Do it somehow\u0301 or somehow.", isVague},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const IntentCheck check = IntentCheckBuilder::build(row.transcript);
        std::string clauses = check.goal;
        for (const std::string& requirement : check.requirements) {
            clauses += " | " + requirement;
        }
        EXPECT_EQ(clauses, row.clauses);
        EXPECT_EQ(check.potentialGap, row.potentialGap);
    }
}

TEST(IntentCheckBuilder, KeepsTheNormalisedTranscript) {
    EXPECT_EQ(
        IntentCheckBuilder::build(" \v a\t\t b\u2028\u00A0\nc\vd " + nextLine).originalTranscript,
        "a b c\vd");
}

TEST(IntentCheckBuilder, ComparesPhrasesUnderTheUsersLocale) {
    const auto gap = [](const char* locale, std::string_view transcript) {
        const LocaleForTest guard(locale);
        return IntentCheckBuilder::build(transcript).potentialGap;
    };
    EXPECT_EQ(gap("en_US", "MAKE IT BETTER NOW"), isVague);
    EXPECT_EQ(gap("en_US", "MAKE İT BETTER NOW"), none);
    EXPECT_EQ(gap("tr_TR", "MAKE IT BETTER NOW"), none);
    EXPECT_EQ(gap("tr_TR", "MAKE İT BETTER NOW"), isVague);
    EXPECT_EQ(gap("az", "MAKE I\u0307T BETTER NOW"), isVague);
}

UnicodeString replaced(const UnicodeString& text, const UnicodeString& pattern,
                       const char16_t* by) {
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(pattern, text, 0, status);
    return matcher.replaceAll(UnicodeString(by), status);
}

// The clauses by a search over the whole transcript, with whitespace spelled out.
Texts clausesByDefinition(const std::string& transcript) {
    const UnicodeString space(uR"([\t\n\f\r\p{Z}])");
    UnicodeString pattern(
        uR"((?<=[.!?])\s+|,\s*(?=(?:and\s+)?(?:also|make sure|keep|use|include|avoid|do not|don't|never|must|should|need)\b)|\s+(?=(?:and\s+)?(?:also|make sure|keep|use|include|avoid|do not|don't|never|must|should|need)\b)|\s+(?=but\s+))");
    pattern.findAndReplace(UnicodeString(uR"(\s)"), space);
    UnicodeString text = replaced(UnicodeString::fromUTF8(transcript), space + u"+", u" ");
    text = replaced(text, uR"(^[\t-\r\u0085\p{Z}]+|[\t-\r\u0085\p{Z}]+$(?![\s\S]))", u"");
    text = replaced(replaced(text, pattern, u"\n"), uR"([\n-\r\u0085\u2028\u2029])", u"\n");
    text = replaced(u"\n" + text + u"\n", uR"([ ,\t]*\n[ ,\t\n]*)", u"\n");
    Texts clauses;
    std::int32_t start = 1;
    for (std::int32_t end = 0; (end = text.indexOf(u'\n', start)) >= 0; start = end + 1) {
        std::string clause;
        text.tempSubStringBetween(start, end).toUTF8String(clause);
        clauses.push_back(clause);
    }
    return clauses;
}

TEST(IntentCheckBuilder, FindsTheClausesOfTheDefinitionInRandomTranscripts) {
    const Texts pieces = {" ",         " ",      " ",      "\v",   nextLine,  "\n",
                          "\u00A0",    "\u2029", "\t",     ",",    ",",       ".",
                          "!",         "and",    "but",    "use",  "keep",    "also",
                          "make sure", "don't",  "do not", "word", "e\u0301", "\0"s,
                          "need",      "_",      "\u200D", "。",   "7",       "😀"};
    std::mt19937 random(20240601);
    for (int round = 0; round < 4000; ++round) {
        std::string transcript;
        for (auto left = random() % 16; left > 0; --left) {
            transcript += pieces[random() % pieces.size()];
        }
        IntentCheck check = IntentCheckBuilder::build(transcript);
        Texts clauses = clausesByDefinition(transcript);
        if (clauses.empty()) {
            ASSERT_EQ(check.requirements, Texts{}) << transcript;
            ASSERT_EQ(check.goal, check.originalTranscript) << transcript;
            continue;
        }
        for (std::string& clause : clauses) {
            clause.front() = static_cast<char>(std::toupper(clause.front()));
            if (clause.back() != '.' && clause.back() != '!') {
                clause += '.';
            }
        }
        check.requirements.insert(check.requirements.begin(), check.goal);
        ASSERT_EQ(check.requirements, clauses) << transcript;
    }
}

TEST(IntentCheckBuilder, TakesTimeInProportionToTheLength) {
    const Texts pieces = {" ",    ",",        ", ",      "\v",           ". ", "and ",
                          "but ", "x use it", "e\u0301", "\u0301\u0316", "🇫🇷", "somehow\u0301",
                          "字"};
    // The processor time of this thread, which does not depend on the machine's load.
    const auto processorTime = [] {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    };
    const auto fastest = [&](const std::string& transcript) {
        auto best = std::chrono::nanoseconds::max();
        for (int round = 0; round < 3; ++round) {
            const auto start = processorTime();
            IntentCheckBuilder::build(transcript);
            best = std::min(best, processorTime() - start);
        }
        return best;
    };
    for (const std::string& piece : pieces) {
        // Sixteen times the text would take 256 times as long if the time were quadratic.
        const auto once = fastest("one two three four" + repeated(piece, 20'000));
        const auto sixteenTimes = fastest("one two three four" + repeated(piece, 320'000));
        EXPECT_LT(sixteenTimes, 64 * once) << piece;
    }
    EXPECT_EQ(IntentCheckBuilder::build(repeated("a b. ", 1'000'000)).requirements.size(),
              199'999U);
}

TEST(IntentCheckBuilder, BuildsOnSeveralThreadsAtOnce) {
    std::vector<std::future<IntentCheck>> checks;
    for (int count = 0; count < 4; ++count) {
        checks.push_back(std::async(std::launch::async, IntentCheckBuilder::build, "ж, use 字. ё"));
    }
    for (auto& check : checks) {
        EXPECT_EQ(check.get().requirements, (Texts{"Use 字.", "Ё."}));
    }
}

TEST(IntentCheck, FormatsTheInstruction) {
    IntentCheck check = IntentCheckBuilder::build(
        "write a function that parses dates, make sure it handles time zones. keep it fast");
    EXPECT_EQ(check.formattedInstruction(), "Goal\n"
                                            "Write a function that parses dates.\n"
                                            "\n"
                                            "Requirements\n"
                                            "- Make sure it handles time zones.\n"
                                            "- Keep it fast.");
    check.requirements.clear();
    EXPECT_EQ(check.formattedInstruction(), "Write a function that parses dates.");
    EXPECT_EQ(IntentCheckBuilder::build("").formattedInstruction(), "");
}

TEST(IntentCheck, ComparesTextsByCanonicalEquivalence) {
    const IntentCheck composed{"caf\u00E9", {"\u00E9", "b"}, "gap", "\u212B"};
    IntentCheck other{"cafe\u0301", {"e\u0301", "b"}, "gap", "A\u030A"};
    EXPECT_EQ(composed, other);

    EXPECT_NE(composed, (other.goal = "cafe", other));
    other = composed;
    EXPECT_NE(composed, (other.requirements = {"b", "\u00E9"}, other));
    EXPECT_NE(composed, (other.requirements = {"\u00E9"}, other));
    other = composed;
    EXPECT_NE(composed, (other.potentialGap = none, other));
    EXPECT_NE(composed, (other.potentialGap = "", other));
    other = composed;
    EXPECT_NE(composed, (other.originalTranscript = "a\u030A", other));

    IntentCheck withoutGap = composed;
    IntentCheck withEmptyGap = composed;
    withoutGap.potentialGap = none;
    withEmptyGap.potentialGap = "";
    EXPECT_NE(withoutGap, withEmptyGap);
}

TEST(Text, TrimsWhitespaceAndNewlinesOnly) {
    struct Row {
        const char* name;
        std::string text;
        std::string trimmed;
    };
    const Row rows[] = {
        {"inner white space stays", " \t\v\r\na  b\n\f ", "a  b"},
        {"wide and narrow spaces", "\u2003\u3000\u00A0\u1680x\u202F\u205F\u2028\u2029", "x"},
        {"U+0085", nextLine + "x" + nextLine, "x"},
        {"nothing is left", " \u2003 ", ""},
        {"a zero-width space is none", "\u200B \u200B", "\u200B \u200B"},
        {"bytes that are no text", " \xE2\x80 \xA0 \xC2", "\xE2\x80 \xA0 \xC2"},
        {"a space after a broken lead byte", "\xF0\xC2\xA0", "\xF0"},
        {"NUL", " \0 "s, "\0"s},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(trimmedWhitespaceAndNewlines(row.text), row.trimmed) << row.name;
    }
}

} // namespace
} // namespace orlune
