// Asks a sound server once which source a recording would use. Owned by the caller, destroyed
// before the context, and used with the loop locked or on its thread. Questions that the server
// does not answer, for any reason, stay unanswered.
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
    /// The native format of a source.
    struct Source {
        pa_sample_spec sampleSpec;
        pa_channel_map channelMap;
    };

    /// The context must be ready. `onAnswer`, which may be empty, is called on the loop's thread
    /// after each part of the answer.
    explicit PulseSourceQuery(pa_context* context, std::function<void()> onAnswer = {});
    ~PulseSourceQuery();
    PulseSourceQuery(const PulseSourceQuery&) = delete;
    PulseSourceQuery& operator=(const PulseSourceQuery&) = delete;

    bool isAnswered() const { return answerCount_ == questionCount; }

    /// The answer. None when the machine has no microphone: a monitor, which records what the
    /// machine plays, counts only when it is not just the server's fallback.
    std::optional<Source> source() const;

  private:
    struct Entry {
        std::string name;
        bool isMonitor;
        std::string monitoredSink;
        Source source;
    };

    static constexpr int questionCount = 3; ///< sent together

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
    bool isDefaultSinkReal_ = false; ///< a device, or the server's placeholder for one
    std::vector<Entry> entries_;
    std::vector<PulseOperation> questions_; // last, so that no answer arrives during destruction
};

/// An unconnected context, with the program's name as mixers show it.
PulseContext makePulseContext(pa_mainloop_api* loop);

} // namespace orlune
