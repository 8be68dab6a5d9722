// A connection of our own to an X display. Errors on it, and its end, never reach the program:
// requests then answer with nothing. Owned by one facility and used on one thread.
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
    /// False once a request has found the server gone; it never comes back.
    bool isAlive() const { return isAlive_; }
    /// Asks the server, and waits until everything sent before has been carried out.
    bool roundTrip();

  private:
    explicit XConnection(_XDisplay* display);

    _XDisplay* display_;
    bool isAlive_ = true;
};

} // namespace orlune
