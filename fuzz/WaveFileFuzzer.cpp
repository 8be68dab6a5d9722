// Any bytes are refused with a reason or play to their end as whole buffers.
#include "fuzz/Fuzzing.h"
#include "platform/audio/WaveFileAudioEngine.h"

#include <cstddef>
#include <cstdint>
#include <future>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::uint32_t bufferSize = 4096;

using orlune::fuzz::expect;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const int file = ::memfd_create("recording", 0);
    expect(::ftruncate(file, 0) == 0
           && ::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));

    std::promise<void> ended;
    auto [engine, error] = orlune::WaveFileAudioEngine::create(
        "/proc/self/fd/" + std::to_string(file), orlune::WaveFileAudioEngine::Pace::fast,
        [&] { ended.set_value(); });
    expect((engine == nullptr) != error.empty());
    if (!engine) {
        return 0;
    }
    const auto format = engine->inputFormat();
    expect(format.channelCount > 0 && format.sampleRate > 0);
    std::size_t bufferCount = 0;
    engine->installTap(bufferSize, format, [&](auto buffers) {
        for (const auto& buffer : buffers) {
            ++bufferCount;
            expect(buffer.frameLength() == bufferSize && buffer.format() == format);
        }
    });
    engine->start();
    ended.get_future().wait();
    engine->stop();
    return 0;
}
