// Writes a text into a pipe without waiting for its reader. Main thread, with Qt's loop running.
#pragma once

#include "platform/linux/runtime/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <memory>
#include <string>

namespace orlune {

/// Deletes itself and closes the pipe when everything is written or the reader has gone; otherwise
/// its parent deletes it.
class PipeWriter final : public QObject {
  public:
    PipeWriter(FileDescriptor pipe, std::shared_ptr<const std::string> text, QObject* parent);

  private:
    void write();

    FileDescriptor pipe_;
    std::shared_ptr<const std::string> text_;
    std::size_t written_ = 0;
    std::unique_ptr<QSocketNotifier> writable_;
};

} // namespace orlune
