// A window of another program that speaks Wayland, with a field for text. Main thread; waiting
// turns Qt's loop.
#pragma once

#include <QProcess>

#include <string>

namespace orlune::desktop {

class NativeWindow {
  public:
    enum class Toolkit {
        gtk,
        qt,
        terminal, ///< GNOME's and sway's is foot, Plasma's is Konsole
    };

    /// Opens it and waits until it has the keyboard. Throws std::runtime_error when it never does.
    explicit NativeWindow(Toolkit toolkit);
    ~NativeWindow();

    bool hasKeyboard();
    /// All that is in it; of a terminal, each byte that was typed or pasted. Bytes outside
    /// printable ASCII are \xNN.
    std::string text();
    [[nodiscard]] bool receives(const std::string& wanted);

  private:
    void read();

    QProcess process_;
    bool hasKeyboard_ = false;
    bool isReading_ = false;
    std::string text_;
};

} // namespace orlune::desktop
