// Any bytes from the service are ignored or give a transcript that is trimmed UTF-8, through the
// whole client: a fuzzed message, then one that must still be understood.
#include "core/Text.h"
#include "fuzz/Fuzzing.h"
#include "platform/concurrency/Task.h"
#include "platform/memory/ManualClock.h"
#include "platform/memory/MemoryWebSocket.h"
#include "platform/memory/TurnQueue.h"
#include "services/DeepgramService.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace orlune;

using orlune::fuzz::expect;

void run(TurnQueue& queue, Awaitable<void> operation) {
    Task::start(queue.executor(), [moved = std::move(operation)]() mutable -> Awaitable<void> {
        co_await std::move(moved);
    });
    queue.runUntilIdle();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TurnQueue queue;
    ManualClock clock;
    MemoryWebSocketSession sockets;
    const auto service =
        std::make_shared<DeepgramService>(sockets, clock, queue.executor(), "wss://speech.example");
    std::string transcript;
    int reports = 0;
    run(queue, service->start("key", 16000, [&](std::string text) {
        transcript = std::move(text);
        ++reports;
    }));

    sockets.task()->deliverText(std::string(reinterpret_cast<const char*>(data), size));
    queue.runUntilIdle();
    expect(reports <= 1);
    expect((reports == 1) == !transcript.empty());
    expect(trimmedWhitespaceAndNewlines(transcript) == transcript);

    sockets.task()->deliverText(
        R"({"type":"Results","is_final":true,"channel":{"alternatives":[{"transcript":"end"}]}})");
    queue.runUntilIdle();
    expect(transcript.ends_with("end"));
    run(queue, service->cancel());
    return 0;
}
