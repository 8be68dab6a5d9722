#include "localservice/LocalService.h"
#include "tests/localservice/ServiceClient.h"
#include "tests/support/Certificates.h"
#include "tests/support/ServiceScripts.h"
#include "tests/support/TemporaryFolder.h"

#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/host_name_verification.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/beast/websocket/ssl.hpp>
#include <gtest/gtest.h>

namespace orlune::test {

using namespace localservice;
namespace {

namespace ssl = boost::asio::ssl;

struct CertificateFiles {
    CertificateFiles() {
        write(files.certificateChain, certificate.certificate());
        write(files.privateKey, certificate.privateKey());
        write(folder.path() / "authority.pem", authority.certificate());
    }

    TemporaryFolder folder;
    Certificate authority{"Orlune test authority"};
    Certificate certificate{"IP:127.0.0.1", authority, Certificate::Days(1)};
    LocalService::Encryption files{.certificateChain = folder.path() / "chain.pem",
                                   .privateKey = folder.path() / "key.pem"};
};

TEST(Encryption, carriesAWholeStream) {
    const CertificateFiles certificates;
    LocalService service(
        {.script = serviceScript("byte-by-byte"), .encryption = certificates.files});
    const auto port = service.start();
    EXPECT_EQ(service.address(), "wss://127.0.0.1:" + std::to_string(port));

    boost::asio::io_context io;
    ssl::context context(ssl::context::tls_client);
    context.load_verify_file((certificates.folder.path() / "authority.pem").string());
    boost::beast::websocket::stream<ssl::stream<boost::asio::ip::tcp::socket>> stream(io, context);
    stream.next_layer().set_verify_mode(ssl::verify_peer);
    stream.next_layer().set_verify_callback(ssl::host_name_verification("127.0.0.1"));
    stream.next_layer().next_layer().connect({boost::asio::ip::address_v4::loopback(), port});
    stream.next_layer().handshake(ssl::stream_base::client);
    stream.set_option(boost::beast::websocket::stream_base::decorator(
        [](boost::beast::websocket::request_type& request) {
            request.set("Authorization", "Token key");
        }));
    stream.handshake("127.0.0.1", listenTarget);
    stream.binary(true);
    stream.write(boost::asio::buffer(std::string(9600, '\0')));
    stream.text(true);
    stream.write(boost::asio::buffer(std::string(R"({"type":"CloseStream"})")));

    boost::system::error_code error;
    int messages = 0;
    for (boost::beast::flat_buffer buffer; !error; buffer.clear()) {
        stream.read(buffer, error);
        messages += error ? 0 : 1;
    }
    EXPECT_EQ(messages, 3);
    EXPECT_EQ(error, boost::beast::websocket::error::closed);
}

TEST(Encryption, needsFilesThatCanBeRead) {
    const CertificateFiles certificates;
    const auto& files = certificates.files;
    write(files.privateKey, "not a key");
    LocalService service({.script = Script{}, .encryption = files});
    EXPECT_THROW(service.start(), std::runtime_error);
}

} // namespace
} // namespace orlune::test
