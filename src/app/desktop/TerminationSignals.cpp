#include "app/desktop/TerminationSignals.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace orlune {

namespace {

constexpr int terminationSignals[] = {SIGTERM, SIGINT, SIGHUP};

// A signal handler can only use globals.
volatile sig_atomic_t wakeUpDescriptor = -1;

void onSignal(int) {
    const int before = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(wakeUpDescriptor, &one, sizeof one);
    errno = before;
}

void handleWith(void (*handler)(int)) {
    struct sigaction action{};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : terminationSignals) {
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals() : wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!wakeUp_) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    wakeUpDescriptor = wakeUp_.get();
    handleWith(onSignal);
}

TerminationSignals::~TerminationSignals() {
    handleWith(SIG_DFL);
    wakeUpDescriptor = -1;
}

void TerminationSignals::take() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto seen = ::read(wakeUp_.get(), &count, sizeof count);
}

} // namespace orlune
