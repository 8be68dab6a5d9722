// The main actor on Qt's event loop: posted work runs on the application's thread.
// Created on that thread, after the application object. Work that is posted after its destruction
// is dropped and its captures are released.
#pragma once

#include "platform/concurrency/MainActor.h"

#include <memory>

namespace orlune {

class QtMainActor final : public MainActor {
  public:
    QtMainActor();
    ~QtMainActor() override;

    Executor executor() const override;
    bool isCurrent() const override;

  private:
    class Mailbox;
    class MailboxExecutor;
    std::shared_ptr<Mailbox> mailbox_;
};

} // namespace orlune
