// A permission that a test grants and withdraws. Requests are answered when the test does so.
#pragma once

#include "platform/CaptureAuthorization.h"

#include <functional>
#include <utility>
#include <vector>

namespace orlune {

class MemoryCaptureAuthorization final : public CaptureAuthorization {
  public:
    Status authorizationStatus() override { return status; }
    void requestAccess(std::function<void(bool)> completion) override {
        requests.push_back(std::move(completion));
    }

    Status status = Status::authorized;
    /// Requests that have no answer yet.
    std::vector<std::function<void(bool isGranted)>> requests;
};

} // namespace orlune
