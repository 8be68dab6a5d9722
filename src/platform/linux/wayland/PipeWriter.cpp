#include "platform/linux/wayland/PipeWriter.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace orlune {

namespace {

/// When the reader closes its end, this is an ordinary error instead of a signal that ends the
/// program.
ssize_t writeQuietly(int descriptor, const char* data, std::size_t size) {
    sigset_t brokenPipe;
    sigemptyset(&brokenPipe);
    sigaddset(&brokenPipe, SIGPIPE);
    sigset_t before;
    pthread_sigmask(SIG_BLOCK, &brokenPipe, &before);
    const ssize_t count = ::write(descriptor, data, size);
    const int error = errno;
    if (count < 0 && error == EPIPE) {
        constexpr timespec now{};
        sigtimedwait(&brokenPipe, nullptr, &now);
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    errno = error;
    return count;
}

} // namespace

PipeWriter::PipeWriter(FileDescriptor pipe, std::shared_ptr<const std::string> text,
                       QObject* parent)
    : QObject(parent), pipe_(std::move(pipe)), text_(std::move(text)) {
    fcntl(pipe_.get(), F_SETFL, fcntl(pipe_.get(), F_GETFL) | O_NONBLOCK);
    writable_ = std::make_unique<QSocketNotifier>(pipe_.get(), QSocketNotifier::Write);
    connect(writable_.get(), &QSocketNotifier::activated, this, [this] { write(); });
    write();
}

void PipeWriter::write() {
    while (written_ < text_->size()) {
        const auto count =
            writeQuietly(pipe_.get(), text_->data() + written_, text_->size() - written_);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0 && errno == EAGAIN) {
            return; // the notifier calls again
        }
        if (count < 0) {
            break;
        }
        written_ += static_cast<std::size_t>(count);
    }
    writable_->setEnabled(false);
    pipe_ = FileDescriptor(); // signals the end of the text to the reader
    deleteLater();
}

} // namespace orlune
