#include "localservice/LocalService.h"
#include "tests/localservice/ServiceClient.h"

#include <boost/algorithm/string/replace.hpp>
#include <gtest/gtest.h>

namespace orlune::test {

using namespace localservice;
namespace {

struct RequestCase {
    const char* name;
    const char* from; ///< the replaced part of a valid request
    const char* to;
    unsigned status;
};

const std::string rightRequest =
    "GET " + listenTarget
    + " HTTP/1.1\r\nHost: 127.0.0.1\r\nAuthorization: Token right-key\r\n"
      "Connection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n";

class HandshakeTest : public testing::TestWithParam<RequestCase> {};

TEST_P(HandshakeTest, isAnswered) {
    LocalService service({.script = Script{}, .requiredKey = "right-key"});
    ServiceClient client(service.start());
    auto request = rightRequest;
    ASSERT_TRUE(request.find(GetParam().from) != std::string::npos);
    boost::replace_first(request, GetParam().from, GetParam().to);
    EXPECT_EQ(client.request(request), GetParam().status);
    const auto status = [&](const auto& seen) { return seen.at(0).status == GetParam().status; };
    EXPECT_TRUE(service.waitUntil(status, 5s));
    const auto seen = service.observations();
    for (const auto& [name, value] : seen.at(0).headers) {
        EXPECT_EQ(value.find("key"), std::string::npos) << name;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Requests, HandshakeTest,
    testing::Values(RequestCase{"rightInEverything", "Token", "Token", 101},
                    RequestCase{"anotherKey", "right-key", "wrong-key", 401},
                    RequestCase{"anEmptyKey", "Token right-key", "Token ", 401},
                    RequestCase{"anotherScheme", "Token right-key", "Bearer right-key", 401},
                    RequestCase{"noAuthorization", "Authorization: Token right-key\r\n", "", 401},
                    RequestCase{"authorizationTwice", "Connection",
                                "Authorization: Token right-key\r\nConnection", 401},
                    RequestCase{"anotherPath", "/v1/listen", "/v2/listen", 404},
                    RequestCase{"anotherMethod", "GET", "POST", 405},
                    RequestCase{"noUpgrade", "Upgrade: websocket\r\n", "", 400},
                    RequestCase{"noHost", "Host: 127.0.0.1\r\n", "", 400},
                    RequestCase{"hostTwice", "Host: 127.0.0.1\r\n", "Host: a\r\nHost: b\r\n", 400},
                    RequestCase{"anotherModel", "model=nova-3", "model=nova-2", 400},
                    RequestCase{"anotherSampleRate", "sample_rate=16000", "sample_rate=48000", 400},
                    RequestCase{"noEndpointing", "&endpointing=300", "", 400},
                    RequestCase{"channelsTwice", "channels=1", "channels=1&channels=1", 400},
                    RequestCase{"anUnknownItem", "channels=1", "channels=1&diarize=true", 400},
                    RequestCase{"somethingElseThanHttp", "HTTP/1.1", "HTTQ/9", 400}),
    [](const auto& row) { return row.param.name; });

TEST(HandshakeRefusal, saysWhyInTheShapeOfTheRealService) {
    LocalService service({.script = Script{}, .requiredKey = "right-key"});
    ServiceClient client(service.start());
    EXPECT_EQ(client.open("wrong-key"), 401U);
    EXPECT_EQ(client.answer()["dg-error"], "Invalid credentials.");
    const auto body = boost::json::parse(client.answer().body());
    EXPECT_EQ(body.at("err_code"), "INVALID_AUTH");
    EXPECT_EQ(body.at("request_id").as_string(),
              std::string_view(client.answer()["dg-request-id"]));
}

} // namespace
} // namespace orlune::test
