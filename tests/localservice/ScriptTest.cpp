#include "localservice/Script.h"

#include "localservice/Frames.h"

#include <gtest/gtest.h>

namespace orlune::test {

using namespace localservice;
namespace {

std::string complaintAbout(const std::string& text) {
    try {
        Script::parse(text);
    } catch (const ScriptError& error) {
        return error.what();
    }
    return {};
}

TEST(Script, reportsWhereAndWhyItIsInvalid) {
    const std::pair<const char*, const char*> cases[] = {
        {"{", "script: this is not JSON (incomplete JSON)."},
        {"[]", "script: an object is needed here."},
        {R"({"stepps":[]})", "script: \"stepps\" is not known here."},
        {R"({"steps":{}})", "script: \"steps\" must be a list."},
        {R"({"opening":"maybe"})",
         "script: \"opening\" must be \"accept\", \"silent\", \"drop\" or \"reset\"."},
        {R"({"steps":[{"wait":1},{}]})", "step 2: the step says nothing that is known."},
        {R"({"steps":[{"wait":-1}]})", "step 1: \"wait\" must be a number from 0 to 3600."},
        {R"({"steps":[{"close":1000,"reson":"x"}]})", "step 1: \"reson\" is not known here."},
        {R"({"steps":[{"close":1006}]})",
         "step 1: no close may carry this code; \"closeFrame\" sends it all the same."},
        {R"({"steps":[{"raw":"8G"}]})",
         "step 1: bytes are written as pairs of hexadecimal digits."},
        {R"({"steps":[{"raw":"81 0"}]})", "step 1: the last byte has only one digit."},
        {R"({"steps":[{"drop":"gently"}]})", "step 1: \"drop\" must be \"end\" or \"reset\"."},
        {R"({"steps":[{"sendText":"a","fragments":1.5}]})",
         "step 1: \"fragments\" must be a whole number."},
        {R"({"steps":[{"together":[{"wait":1}]}]})",
         "step 1, together: only steps that write can stand here."},
        {R"({"refuse":{}})", "refuse: a \"status\" is needed."},
        {R"({"refuse":{"status":401,"message":"a\nb"}})",
         "refuse: \"message\" must be one line, because it is sent as a header too."},
    };
    for (const auto& [text, complaint] : cases) {
        EXPECT_EQ(complaintAbout(text), complaint) << text;
    }
}

TEST(Script, cannotFillTheMemory) {
    std::string steps;
    for (int count = 0; count < 5; ++count) {
        steps += R"({"sendText":"","padTo":16777216},)";
    }
    EXPECT_EQ(complaintAbout(R"({"steps":[)" + steps + R"({"wait":0}]})"),
              "step 4: the script writes more than 64 MiB.");
}

TEST(Frames, areSplitAndMaskedAsRequested) {
    using namespace std::string_literals;
    EXPECT_EQ(frame(FrameKind::text, "hi", {}), "\x81\x02hi");
    EXPECT_EQ(frame(FrameKind::text, std::string(126, 'x'), {}).substr(0, 4), "\x81\x7e\x00\x7e"s);
    EXPECT_EQ(frame(FrameKind::binary, std::string(65536, 'x'), {}).substr(0, 10),
              "\x82\x7f\0\0\0\0\0\x01\0\0"s);
    EXPECT_EQ(frame(FrameKind::text, "hi", {.masked = true}).substr(0, 2), "\x81\x82");
    EXPECT_EQ(message(FrameKind::text, "abc", {.fragments = 2, .pingBetween = true}), "\x01\x01"
                                                                                      "a"
                                                                                      "\x89\x07"
                                                                                      "between"
                                                                                      "\x80\x02"
                                                                                      "bc");
}

} // namespace
} // namespace orlune::test
