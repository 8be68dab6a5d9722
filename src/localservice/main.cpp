#include "localservice/CommandLine.h"
#include "localservice/LocalService.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/signal_set.hpp>

#include <array>
#include <csignal>
#include <iostream>
#include <unistd.h>

namespace {

namespace asio = boost::asio;
namespace localservice = orlune::localservice;

/// Reads standard input until its end, which arrives when the parent process is gone.
class ParentWatch {
  public:
    explicit ParentWatch(asio::io_context& io) : io_(io), input_(io, ::dup(STDIN_FILENO)) {
        read();
    }

  private:
    void read() {
        input_.async_read_some(asio::buffer(ignored_),
                               [this](boost::system::error_code error, std::size_t) {
                                   if (error) {
                                       io_.stop();
                                   } else {
                                       read();
                                   }
                               });
    }

    asio::io_context& io_;
    asio::posix::stream_descriptor input_;
    std::array<char, 512> ignored_{};
};

int serve(const localservice::CommandLine& commandLine) {
    asio::io_context io;
    // Before any thread is created, so that this one receives the signals.
    asio::signal_set signals(io, SIGINT, SIGTERM);
    signals.async_wait([&io](boost::system::error_code, int) { io.stop(); });

    auto options = commandLine.options();
    options.observe = false;
    options.log = [](const std::string& line) { std::cerr << line << '\n'; };
    localservice::LocalService service(std::move(options));
    service.start();
    std::cout << service.address() << std::endl;

    std::optional<ParentWatch> parent;
    if (commandLine.exitsWithParent()) {
        parent.emplace(io);
    }
    io.run();
    service.stop();
    return 0;
}

} // namespace

int main(int count, char** arguments) {
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const auto commandLine =
            localservice::CommandLine::parse({arguments + 1, arguments + count});
        if (commandLine.wantsHelp()) {
            std::cout << localservice::CommandLine::help;
            return 0;
        }
        return serve(commandLine);
    } catch (const localservice::UsageError& error) {
        std::cerr << "orlune-local-service: " << error.what()
                  << "\nTry orlune-local-service --help.\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "orlune-local-service: " << error.what() << '\n';
        return 1;
    }
}
