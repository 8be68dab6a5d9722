// Asks a sound server once which source a recording would use. Owned by whoever asks, let go before
// the context that it asks, and used like that with the loop locked or on its thread. What the
// server does not answer, for whatever reason, stays unanswered.
#pragma once

#include "platform/linux/pulse/PulseHandles.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlune {

class PulseSourceQuery {
  public:
    /// What a source delivers by itself.
    struct Source {
        pa_sample_spec sampleSpec;
        pa_channel_map channelMap;
    };

    /// The context is ready. `onAnswer`, which may be empty, is called on the loop's thread at each
    /// part of the answer.
    explicit PulseSourceQuery(pa_context* context, std::function<void()> onAnswer = {});
    ~PulseSourceQuery();
    PulseSourceQuery(const PulseSourceQuery&) = delete;
    PulseSourceQuery& operator=(const PulseSourceQuery&) = delete;

    bool isAnswered() const { return answerCount_ == questionCount; }

    /// The answer. None when the machine has no microphone: a monitor, which hears what the machine
    /// itself plays, counts only where it is not merely what the server falls back to.
    std::optional<Source> source() const;

  private:
    struct Entry {
        std::string name;
        bool isMonitor;
        std::string monitoredSink;
        Source source;
    };

    static constexpr int questionCount = 3; ///< asked at once

    static void receiveServer(pa_context*, const pa_server_info* info, void* userdata);
    static void receiveSink(pa_context*, const pa_sink_info* info, int end, void* userdata);
    static void receiveSource(pa_context*, const pa_source_info* info, int end, void* userdata);

    void countAnswer();
    const Entry* find(std::string_view name) const;
    bool isFallback(const Entry& entry) const;

    std::function<void()> onAnswer_;
    int answerCount_ = 0;
    std::string defaultSource_;
    std::string defaultSink_;
    bool isDefaultSinkReal_ = false; ///< a device, or the server's stand-in for one
    std::vector<Entry> entries_;
    std::vector<PulseOperation>
        questions_; // last, so that nothing is received once the rest is gone
};

/// A context that is not connected yet, with the program's name as the user sees it in mixers.
PulseContext makePulseContext(pa_mainloop_api* loop);

} // namespace orlune
