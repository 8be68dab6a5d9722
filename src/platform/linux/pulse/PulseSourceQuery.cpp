#include "platform/linux/pulse/PulseSourceQuery.h"

#include "platform/Platform.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace orlune {

namespace {

constexpr auto applicationName = "Orlune";

// The name that both servers give to the output they create when there is none.
constexpr auto standInSink = "auto_null";

/// The source that the user's environment selects for recordings, or an empty text. libpulse
/// applies it itself when it records.
std::string sourceOfEnvironment() {
    const char* name = std::getenv("PULSE_SOURCE");
    return name ? name : "";
}

} // namespace

PulseSourceQuery::PulseSourceQuery(pa_context* context, std::function<void()> onAnswer)
    : onAnswer_(std::move(onAnswer)) {
    questions_.emplace_back(pa_context_get_server_info(context, receiveServer, this));
    questions_.emplace_back(
        pa_context_get_sink_info_by_name(context, "@DEFAULT_SINK@", receiveSink, this));
    questions_.emplace_back(pa_context_get_source_info_list(context, receiveSource, this));
}

PulseSourceQuery::~PulseSourceQuery() = default;

std::optional<PulseSourceQuery::Source> PulseSourceQuery::source() const {
    if (const auto* chosen = find(sourceOfEnvironment())) {
        return chosen->source;
    }
    const auto* entry = find(defaultSource_);
    if (!entry || isFallback(*entry) || !pa_sample_spec_valid(&entry->source.sampleSpec)) {
        return std::nullopt;
    }
    return entry->source;
}

void PulseSourceQuery::receiveServer(pa_context*, const pa_server_info* info, void* userdata) {
    auto& self = *static_cast<PulseSourceQuery*>(userdata);
    if (info && info->default_source_name) {
        self.defaultSource_ = info->default_source_name;
    }
    self.countAnswer();
}

void PulseSourceQuery::receiveSink(pa_context*, const pa_sink_info* info, int end, void* userdata) {
    auto& self = *static_cast<PulseSourceQuery*>(userdata);
    if (end == 0 && info) {
        self.defaultSink_ = info->name;
        self.isDefaultSinkReal_ = pa_proplist_contains(info->proplist, PA_PROP_DEVICE_API) == 1
                                  || self.defaultSink_ == standInSink;
    } else {
        self.countAnswer();
    }
}

void PulseSourceQuery::receiveSource(pa_context*, const pa_source_info* info, int end,
                                     void* userdata) {
    auto& self = *static_cast<PulseSourceQuery*>(userdata);
    if (end == 0 && info) {
        self.entries_.push_back({info->name,
                                 info->monitor_of_sink != PA_INVALID_INDEX,
                                 info->monitor_of_sink_name ? info->monitor_of_sink_name : "",
                                 {info->sample_spec, info->channel_map}});
    } else {
        self.countAnswer();
    }
}

void PulseSourceQuery::countAnswer() {
    ++answerCount_;
    if (onAnswer_) {
        onAnswer_();
    }
}

const PulseSourceQuery::Entry* PulseSourceQuery::find(std::string_view name) const {
    const auto entry = std::ranges::find(entries_, name, &Entry::name);
    return entry == entries_.end() ? nullptr : &*entry;
}

/// Without a microphone, servers fall back to the monitor of the default output. Three kinds of
/// monitor are the user's choice: that of another output, one that was preferred to a microphone,
/// and that of an output which the user created.
bool PulseSourceQuery::isFallback(const Entry& entry) const {
    return entry.isMonitor && entry.monitoredSink == defaultSink_ && isDefaultSinkReal_
           && std::ranges::all_of(entries_, &Entry::isMonitor);
}

PulseContext makePulseContext(pa_mainloop_api* loop) {
    const PulseProperties properties(pa_proplist_new());
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ID, bundleIdentifier);
    pa_proplist_sets(properties.get(), PA_PROP_APPLICATION_ICON_NAME, bundleIdentifier);
    return PulseContext(pa_context_new_with_proplist(loop, applicationName, properties.get()));
}

} // namespace orlune
