#include "app/remote/RemoteRequest.h"

#include <algorithm>

namespace orlune {

std::optional<RemoteRequest> remoteRequestNamed(std::string_view name) {
    const auto* entry = std::ranges::find(remoteRequests, name, &RemoteRequestText::name);
    return entry == remoteRequests.end() ? std::nullopt : std::optional(entry->request);
}

std::string busMethod(RemoteRequest request) {
    std::string name =
        std::ranges::find(remoteRequests, request, &RemoteRequestText::request)->name;
    name.front() = static_cast<char>(name.front() - 'a' + 'A');
    return name;
}

std::optional<RemoteRequest> remoteRequestOfMethod(std::string_view method) {
    const auto* entry = std::ranges::find_if(remoteRequests, [&](const auto& candidate) {
        return busMethod(candidate.request) == method;
    });
    return entry == remoteRequests.end() ? std::nullopt : std::optional(entry->request);
}

} // namespace orlune
