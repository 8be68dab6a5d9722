// Our own connection to an X display. Its errors and its end never reach the program: requests have
// no answer then. Owned by one facility and used on one thread.
#pragma once

#include <memory>
#include <string>

struct _XDisplay;

namespace orlune {

class XConnection {
  public:
    /// None when no server answers. An empty name means the DISPLAY of the environment.
    static std::unique_ptr<XConnection> open(const std::string& displayName);
    ~XConnection();
    XConnection(const XConnection&) = delete;
    XConnection& operator=(const XConnection&) = delete;

    _XDisplay* display() const { return display_; }
    /// False once a request has found the server gone; it never recovers.
    bool isAlive() const { return isAlive_; }
    /// Waits until the server has processed everything sent before.
    bool roundTrip();

  private:
    explicit XConnection(_XDisplay* display);

    _XDisplay* display_;
    bool isAlive_ = true;
};

} // namespace orlune
