// A permission that is granted and withdrawn by hand. An answer comes when the test gives it.
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
    /// Who asked and has no answer yet.
    std::vector<std::function<void(bool isGranted)>> requests;
};

} // namespace orlune
