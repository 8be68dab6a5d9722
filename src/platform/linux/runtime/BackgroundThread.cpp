#include "platform/linux/runtime/BackgroundThread.h"

#include <cstdio>
#include <exception>
#include <pthread.h>

namespace orlune {

BackgroundThread::BackgroundThread()
    : work_(boost::asio::make_work_guard(context_)), thread_([this] { run(); }) {}

BackgroundThread::~BackgroundThread() {
    stop();
}

void BackgroundThread::stop() {
    context_.stop();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void BackgroundThread::run() {
    pthread_setname_np(pthread_self(), "orlune-io");
    // The loop's only exception barrier; after an exception it continues with the next work item.
    while (!context_.stopped()) {
        try {
            context_.run();
        } catch (const std::exception& error) {
            std::fprintf(stderr, "orlune: an error escaped the I/O thread: %s\n", error.what());
        }
    }
}

} // namespace orlune
