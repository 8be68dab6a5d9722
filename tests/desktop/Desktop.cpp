#include "tests/desktop/Desktop.h"

#include "platform/linux/x11/XConnection.h"

#include <QGuiApplication>
#include <QProcess>
#include <QTimer>
#include <X11/XKBlib.h>
#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XInput.h>
#include <X11/extensions/XTest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <xcb/xcb.h>

namespace orlune::desktop {

namespace {

QStringList toQt(std::vector<std::string>::const_iterator begin,
                 std::vector<std::string>::const_iterator end) {
    QStringList list;
    std::transform(begin, end, std::back_inserter(list),
                   [](const auto& item) { return QString::fromStdString(item); });
    return list;
}

Display* openDisplay() {
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        throw std::runtime_error("no X display");
    }
    return display;
}

} // namespace

bool waitUntil(const std::function<bool()>& condition) {
    constexpr auto deadline = std::chrono::seconds(30);
    constexpr auto glance = std::chrono::milliseconds(5);
    const auto end = std::chrono::steady_clock::now() + deadline;
    QTimer wake;
    wake.start(glance);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

Program::Program(const std::vector<std::string>& command) : process_(std::make_unique<QProcess>()) {
    process_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_->setStandardInputFile(QProcess::nullDevice());
    process_->start(QString::fromStdString(command.front()),
                    toQt(command.begin() + 1, command.end()));
    if (!process_->waitForStarted()) {
        throw std::runtime_error("cannot start " + command.front());
    }
}

Program::~Program() {
    kill();
}

std::string Program::output() {
    if (!waitUntil([this] { return process_->state() == QProcess::NotRunning; })) {
        throw std::runtime_error("a program did not end");
    }
    return process_->readAllStandardOutput().toStdString();
}

std::string Program::firstLine() {
    if (!waitUntil([this] { return process_->canReadLine(); })) {
        throw std::runtime_error("a program wrote nothing");
    }
    return process_->readLine().trimmed().toStdString();
}

void Program::kill() {
    process_->kill();
    process_->waitForFinished();
}

std::string run(const std::vector<std::string>& command) {
    return Program(command).output();
}

struct Keyboard::Devices {
    Devices() : display(openDisplay()) {
        int count = 0;
        XDeviceInfo* const devices = XListInputDevices(display, &count);
        for (int index = 0; index < count; ++index) {
            const auto& device = devices[index];
            const std::string_view name(device.name);
            if (device.use == IsXExtensionKeyboard && name.find("XTEST") == name.npos) {
                hardware = XOpenDevice(display, device.id);
            }
        }
        XFreeDeviceList(devices);
        if (!hardware) {
            throw std::runtime_error("the X server has no keyboard");
        }
    }
    ~Devices() {
        XCloseDevice(display, hardware);
        XCloseDisplay(display);
    }

    void send(Keycode key, bool isDown) {
        XTestFakeDeviceKeyEvent(display, hardware, key, isDown ? True : False, nullptr, 0,
                                CurrentTime);
        XSync(display, False);
    }

    Display* display;
    XDevice* hardware = nullptr;
};

Keyboard::Keyboard() : devices_(std::make_unique<Devices>()) {}

Keyboard::~Keyboard() {
    for (const auto key : std::vector(pressed_)) {
        release(key);
    }
    for (const auto key : down()) {
        XTestFakeKeyEvent(devices_->display, key, False, CurrentTime);
    }
    lock(/*caps=*/false, /*num=*/false);
    useLayout({"us", "-option", ""}); // options would accumulate otherwise
}

void Keyboard::press(Keycode key) {
    devices_->send(key, /*isDown=*/true);
    pressed_.push_back(key);
}

void Keyboard::release(Keycode key) {
    devices_->send(key, /*isDown=*/false);
    std::erase(pressed_, key);
}

void Keyboard::tap(const std::vector<Keycode>& keys) {
    for (const auto key : keys) {
        press(key);
    }
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) {
        release(*key);
    }
}

void Keyboard::useLayout(const std::vector<std::string>& arguments, unsigned int active) {
    std::vector<std::string> command{"setxkbmap"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    run(command);
    XkbLockGroup(devices_->display, XkbUseCoreKbd, active);
    XSync(devices_->display, False);
}

void Keyboard::lock(bool caps, bool num) {
    XkbLockModifiers(devices_->display, XkbUseCoreKbd, LockMask | Mod2Mask,
                     (caps ? unsigned{LockMask} : 0) | (num ? unsigned{Mod2Mask} : 0));
    XSync(devices_->display, False);
}

std::vector<Keyboard::Keycode> Keyboard::down() {
    std::array<char, 32> bits{};
    XQueryKeymap(devices_->display, bits.data());
    std::vector<Keycode> keys;
    for (unsigned int key = 0; key < bits.size() * 8; ++key) {
        if ((bits[key / 8] >> (key % 8)) & 1) {
            keys.push_back(static_cast<Keycode>(key));
        }
    }
    return keys;
}

bool zenityHasKeyboard() {
    const auto name = focusedClass();
    return name == "Zenity" || name == "zenity";
}

std::string focusedClass() {
    const auto connection = XConnection::open("");
    if (!connection) {
        return "";
    }
    Display* display = connection->display();
    Window window = None;
    int revertTo = 0;
    XGetInputFocus(display, &window, &revertTo);
    while (window != None && window != PointerRoot && window != DefaultRootWindow(display)) {
        XClassHint hint{};
        if (XGetClassHint(display, window, &hint)) {
            std::string name(hint.res_class);
            XFree(hint.res_name);
            XFree(hint.res_class);
            return name;
        }
        Window root = None;
        Window parent = None;
        Window* children = nullptr;
        unsigned int count = 0;
        if (!XQueryTree(display, window, &root, &parent, &children, &count)) {
            break;
        }
        XFree(children);
        window = parent;
    }
    return "";
}

void claimThatAVanishedWindowIsActive() {
    Display* display = openDisplay();
    const Window root = DefaultRootWindow(display);
    const Window vanished = XCreateSimpleWindow(display, root, 0, 0, 1, 1, 0, 0, 0);
    XDestroyWindow(display, vanished);
    XChangeProperty(display, root, XInternAtom(display, "_NET_ACTIVE_WINDOW", False), XA_WINDOW, 32,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(&vanished), 1);
    XSync(display, False);
    XCloseDisplay(display);
}

FetchCounter::FetchCounter() {
    QCoreApplication::instance()->installNativeEventFilter(this);
}

FetchCounter::~FetchCounter() {
    QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool FetchCounter::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_SELECTION_REQUEST) {
        return false;
    }
    const auto* request = static_cast<const xcb_selection_request_event_t*>(message);
    auto* connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    auto* name = xcb_get_atom_name_reply(connection, xcb_get_atom_name(connection, request->target),
                                         nullptr);
    const std::string_view target(xcb_get_atom_name_name(name),
                                  static_cast<std::size_t>(xcb_get_atom_name_name_length(name)));
    count_ += target == "UTF8_STRING" ? 1 : 0;
    std::free(name);
    return false;
}

KeyRecorder::KeyRecorder(const std::string& className) : display_(openDisplay()) {
    window_ = XCreateSimpleWindow(display_, DefaultRootWindow(display_), 0, 0, 200, 100, 0, 0, 0);
    std::string name = className;
    XClassHint hint{.res_name = name.data(), .res_class = name.data()};
    XSetClassHint(display_, window_, &hint);
    XSelectInput(display_, window_, KeyPressMask | KeyReleaseMask);
    XMapWindow(display_, window_);
    XSync(display_, False);
    if (!waitUntil([&] { return focusedClass() == className; })) {
        throw std::runtime_error("a window did not get the keyboard");
    }
}

KeyRecorder::~KeyRecorder() {
    XCloseDisplay(display_);
}

const std::vector<KeyRecorder::Key>& KeyRecorder::keys() {
    XSync(display_, False);
    while (XPending(display_) > 0) {
        XEvent event{};
        XNextEvent(display_, &event);
        if (event.type == KeyPress || event.type == KeyRelease) {
            keys_.push_back({.isDown = event.type == KeyPress,
                             .key = static_cast<Keyboard::Keycode>(event.xkey.keycode),
                             .milliseconds = event.xkey.time});
        }
    }
    return keys_;
}

} // namespace orlune::desktop
