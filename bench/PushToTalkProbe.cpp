// Plays the user and another program's window, for bench/push-to-talk-beside-xdotool. Holds the
// shortcut, detects when the panel is on the screen, releases the shortcut, and detects when the
// text has arrived in its own window; then has xdotool type the same text into the same window.
// Prints one line per round: three times in milliseconds.
//
// usage: push_to_talk_probe ROUNDS TEXT

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>

namespace {

using Time = std::chrono::steady_clock::time_point;
using namespace std::chrono_literals;

constexpr auto patience = 20s;
/// As long as the shortest utterance; it must cover the opening of the microphone.
constexpr auto speechLength = 250ms;

Time now() {
    return std::chrono::steady_clock::now();
}

double milliseconds(Time from, Time to) {
    return std::chrono::duration<double, std::milli>(to - from).count();
}

class Probe {
  public:
    explicit Probe(std::string text) : text_(std::move(text)), display_(XOpenDisplay(nullptr)) {
        if (!display_) {
            throw std::runtime_error("no X display");
        }
        findKeyboard();
        openWindow();
        const auto name = [this](const char* atom) { return XInternAtom(display_, atom, False); };
        clipboard_ = name("CLIPBOARD");
        utf8_ = name("UTF8_STRING");
        property_ = name("ORLUNE_PROBE");
        background_ = colorUnderPanel();
    }

    void measure() {
        const Time pressed = now();
        send(/*isDown=*/true);
        await("the panel", [this] { return colorUnderPanel() != background_; });
        const Time shown = now();
        // Simulates speech; nothing is measured meanwhile.
        std::this_thread::sleep_for(speechLength);
        received_.clear();
        const Time released = now();
        send(/*isDown=*/false);
        await("the text", [this] { return received_ == text_; });
        const Time arrived = now();
        await("the end", [this] { return colorUnderPanel() == background_; });

        received_.clear();
        const Time asked = now();
        if (std::system(("xdotool type '" + text_ + "'").c_str()) != 0) {
            throw std::runtime_error("xdotool failed");
        }
        await("the typed text", [this] { return received_ == text_; });
        std::printf("%.3f %.3f %.3f\n", milliseconds(pressed, shown),
                    milliseconds(released, arrived), milliseconds(asked, now()));
        std::fflush(stdout);
    }

  private:
    void findKeyboard() {
        int count = 0;
        XDeviceInfo* const devices = XListInputDevices(display_, &count);
        for (int index = 0; index < count; ++index) {
            if (devices[index].use == IsXExtensionKeyboard
                && std::string_view(devices[index].name).find("XTEST") == std::string_view::npos) {
                keyboard_ = XOpenDevice(display_, devices[index].id);
            }
        }
        XFreeDeviceList(devices);
    }

    void openWindow() {
        window_ =
            XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 200, 100, 0, 0, 0);
        XSelectInput(display_, window_, KeyPressMask | FocusChangeMask);
        XMapWindow(display_, window_);
        await("the keyboard", [this] { return hasFocus_; });
    }

    void send(bool isDown) {
        XTestFakeDeviceKeyEvent(display_, keyboard_, XKeysymToKeycode(display_, XK_Control_R),
                                isDown ? True : False, nullptr, 0, CurrentTime);
        XSync(display_, False);
    }

    /// The colour of one pixel at the centre of the panel's resting place.
    unsigned long colorUnderPanel() {
        constexpr int aboveTheEdge = 28 + 82 / 2;
        const int screen = DefaultScreen(display_);
        XImage* const image =
            XGetImage(display_, RootWindow(display_, screen), DisplayWidth(display_, screen) / 2,
                      DisplayHeight(display_, screen) - aboveTheEdge, 1, 1, AllPlanes, ZPixmap);
        const unsigned long color = XGetPixel(image, 0, 0);
        XDestroyImage(image);
        return color;
    }

    void await(const char* what, const std::function<bool()>& isThere) {
        const Time end = now() + patience;
        while (!isThere()) {
            if (now() > end) {
                throw std::runtime_error(std::string(what) + " never came");
            }
            while (XPending(display_) > 0) {
                XEvent event{};
                XNextEvent(display_, &event);
                read(event);
            }
        }
    }

    void read(XEvent& event) {
        if (event.type == FocusIn) {
            hasFocus_ = true;
        } else if (event.type == KeyPress) {
            readKey(event.xkey);
        } else if (event.type == SelectionNotify && event.xselection.property != None) {
            Atom type = None;
            int format = 0;
            unsigned long count = 0;
            unsigned long rest = 0;
            unsigned char* bytes = nullptr;
            XGetWindowProperty(display_, window_, property_, 0, 4096, True, AnyPropertyType, &type,
                               &format, &count, &rest, &bytes);
            received_.assign(reinterpret_cast<char*>(bytes), count);
            XFree(bytes);
        }
    }

    void readKey(XKeyEvent& key) {
        char letter = 0;
        KeySym symbol = 0;
        const int length = XLookupString(&key, &letter, 1, &symbol, nullptr);
        const bool isPaste = (key.state & ControlMask) != 0 && (symbol | 0x20) == XK_v;
        if (isPaste) {
            XConvertSelection(display_, clipboard_, utf8_, property_, window_, key.time);
        } else if (length == 1 && (key.state & ControlMask) == 0) {
            received_ += letter;
        }
    }

    std::string text_;
    Display* display_;
    XDevice* keyboard_ = nullptr;
    Window window_ = None;
    Atom clipboard_ = None;
    Atom utf8_ = None;
    Atom property_ = None;
    unsigned long background_ = 0;
    bool hasFocus_ = false;
    std::string received_;
};

} // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) {
        std::fputs("usage: push_to_talk_probe ROUNDS TEXT\n", stderr);
        return 64;
    }
    try {
        Probe probe(arguments[2]);
        for (int round = std::atoi(arguments[1]); round > 0; --round) {
            probe.measure();
        }
    } catch (const std::exception& error) {
        std::fprintf(stderr, "push_to_talk_probe: %s\n", error.what());
        return 1;
    }
    return 0;
}
