#include "platform/linux/shortcuts/KGlobalAccel.h"

#include "platform/Platform.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QList>

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace orlune {

/// Up to four keys in a row, of which the service uses the first.
struct KeySequence {
    QList<int> keys;
};

QDBusArgument& operator<<(QDBusArgument& argument, const KeySequence& sequence) {
    argument.beginStructure();
    argument << sequence.keys;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, KeySequence& sequence) {
    argument.beginStructure();
    argument >> sequence.keys;
    argument.endStructure();
    // As QtDBus wants it: NOLINTNEXTLINE(bugprone-return-const-ref-from-parameter)
    return argument;
}

} // namespace orlune

Q_DECLARE_METATYPE(orlune::KeySequence)

namespace orlune {

namespace {

const QString service = QStringLiteral("org.kde.kglobalaccel");
const QString servicePath = QStringLiteral("/kglobalaccel");
const QString serviceInterface = QStringLiteral("org.kde.KGlobalAccel");
const QString componentInterface = QStringLiteral("org.kde.kglobalaccel.Component");
const QString component = QString::fromLatin1(bundleIdentifier);
const QString dictate = QStringLiteral("dictate");
const QString cancel = QStringLiteral("cancel");
/// Uses these keys, not those that the service has stored: it stores bare modifiers wrongly.
constexpr uint presentAndNotRemembered = 2 | 4;

struct Modifier {
    ModifierFlags flag;
    int qtFlag;
    int qtKey; ///< pressed by itself
    std::string_view left;
    std::string_view right;
};

constexpr std::array modifiers{
    Modifier{ModifierFlags::shift, Qt::ShiftModifier, Qt::Key_Shift, "Shift_L", "Shift_R"},
    Modifier{ModifierFlags::control, Qt::ControlModifier, Qt::Key_Control, "Control_L",
             "Control_R"},
    Modifier{ModifierFlags::option, Qt::AltModifier, Qt::Key_Alt, "Alt_L", "Alt_R"},
    Modifier{ModifierFlags::command, Qt::MetaModifier, Qt::Key_Meta, "Super_L", "Super_R"},
};

const Modifier* modifierOf(std::string_view symbol) {
    const auto* const found = std::ranges::find_if(modifiers, [&](const Modifier& modifier) {
        return symbol == modifier.left || symbol == modifier.right;
    });
    return found == modifiers.end() ? nullptr : found;
}

struct Key {
    std::uint16_t virtualKey;
    int qtKey;
};

/// The keys whose position is the same on every layout. Letters follow below.
constexpr auto keys = std::to_array<Key>({
    {36, Qt::Key_Return},  {48, Qt::Key_Tab},     {49, Qt::Key_Space},     {51, Qt::Key_Backspace},
    {53, Qt::Key_Escape},  {114, Qt::Key_Insert}, {115, Qt::Key_Home},     {116, Qt::Key_PageUp},
    {117, Qt::Key_Delete}, {119, Qt::Key_End},    {121, Qt::Key_PageDown}, {122, Qt::Key_F1},
    {120, Qt::Key_F2},     {99, Qt::Key_F3},      {118, Qt::Key_F4},       {96, Qt::Key_F5},
    {97, Qt::Key_F6},      {98, Qt::Key_F7},      {100, Qt::Key_F8},       {101, Qt::Key_F9},
    {109, Qt::Key_F10},    {103, Qt::Key_F11},    {111, Qt::Key_F12},      {123, Qt::Key_Left},
    {124, Qt::Key_Right},  {125, Qt::Key_Down},   {126, Qt::Key_Up},       {18, Qt::Key_1},
    {19, Qt::Key_2},       {20, Qt::Key_3},       {21, Qt::Key_4},         {23, Qt::Key_5},
    {22, Qt::Key_6},       {26, Qt::Key_7},       {28, Qt::Key_8},         {25, Qt::Key_9},
    {29, Qt::Key_0},
});

/// By their position on an American keyboard. The service compares symbols, so on another layout it
/// is the key with this letter.
constexpr auto letters = std::to_array<Key>({
    {0, Qt::Key_A},  {11, Qt::Key_B}, {8, Qt::Key_C},  {2, Qt::Key_D},  {14, Qt::Key_E},
    {3, Qt::Key_F},  {5, Qt::Key_G},  {4, Qt::Key_H},  {34, Qt::Key_I}, {38, Qt::Key_J},
    {40, Qt::Key_K}, {37, Qt::Key_L}, {46, Qt::Key_M}, {45, Qt::Key_N}, {31, Qt::Key_O},
    {35, Qt::Key_P}, {12, Qt::Key_Q}, {15, Qt::Key_R}, {1, Qt::Key_S},  {17, Qt::Key_T},
    {32, Qt::Key_U}, {9, Qt::Key_V},  {13, Qt::Key_W}, {7, Qt::Key_X},  {16, Qt::Key_Y},
    {6, Qt::Key_Z},
});

std::optional<int> qtKeyInPlace(std::uint16_t virtualKey) {
    for (const auto table : {std::span<const Key>(keys), std::span<const Key>(letters)}) {
        const auto found = std::ranges::find(table, virtualKey, &Key::virtualKey);
        if (found != table.end()) {
            return found->qtKey;
        }
    }
    return std::nullopt;
}

/// The identity of an action for the service and its settings page.
QStringList action(const QString& name) {
    return {component, name, QStringLiteral("Orlune"),
            name == dictate ? QStringLiteral("Dictate") : QStringLiteral("Cancel the dictation")};
}

QDBusMessage call(const QString& method) {
    return QDBusMessage::createMethodCall(service, servicePath, serviceInterface, method);
}

} // namespace

std::optional<int> qtKeyFor(const KeyCombination& shortcut, std::string_view functionKey) {
    const auto* const standIn =
        contains(shortcut.modifiers, ModifierFlags::function) ? modifierOf(functionKey) : nullptr;
    if (contains(shortcut.modifiers, ModifierFlags::function) && !standIn) {
        return std::nullopt;
    }
    const auto others = shortcut.modifiers & ~ModifierFlags::function;
    if (!shortcut.virtualKey) {
        if (standIn) {
            return others == ModifierFlags::none ? std::optional(standIn->qtKey) : std::nullopt;
        }
        const auto* const only = std::ranges::find(modifiers, others, &Modifier::flag);
        return only == modifiers.end() ? std::nullopt : std::optional(only->qtKey);
    }
    auto key = qtKeyInPlace(*shortcut.virtualKey);
    for (const auto& modifier : modifiers) {
        if (key && (standIn == &modifier || contains(others, modifier.flag))) {
            *key |= modifier.qtFlag;
        }
    }
    return key;
}

std::unique_ptr<KGlobalAccel> KGlobalAccel::open(const QDBusConnection& bus,
                                                 std::string functionKey) {
    auto* const names = bus.interface();
    const bool isThere = names && names->isServiceRegistered(service);
    return std::unique_ptr<KGlobalAccel>(isThere ? new KGlobalAccel(bus, std::move(functionKey))
                                                 : nullptr);
}

KGlobalAccel::KGlobalAccel(QDBusConnection bus, std::string functionKey)
    : bus_(std::move(bus)), functionKey_(std::move(functionKey)),
      service_(
          new QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForOwnerChange, this)) {
    qDBusRegisterMetaType<KeySequence>();
    qDBusRegisterMetaType<QList<KeySequence>>();
    connect(service_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& after) {
                isListening_ = false;
                isEscapeBound_ = false;
                report(edges_.release());
                setReason("the desktop's service for shortcuts has ended");
                if (!after.isEmpty()) {
                    bindShortcut();
                }
            });
}

KGlobalAccel::~KGlobalAccel() {
    for (const auto& name : {dictate, cancel}) {
        auto unregister = call(QStringLiteral("unregister"));
        unregister << component << name;
        bus_.send(unregister);
    }
}

void KGlobalAccel::watch(const KeyCombination& shortcut) {
    if (std::exchange(watchesShortcut_, true) && shortcut == edges_.shortcut()) {
        return;
    }
    const auto released = edges_.setShortcut(shortcut);
    // Deferred, because it must not be reported within this call.
    QMetaObject::invokeMethod(this, [this, released] { report(released); }, Qt::QueuedConnection);
    bindShortcut();
}

void KGlobalAccel::watchEscape(bool isWanted) {
    if (isWanted && !std::exchange(isEscapeBound_, true)) {
        bind(cancel, Qt::Key_Escape, {});
    } else if (!isWanted && std::exchange(isEscapeBound_, false)) {
        auto unregister = call(QStringLiteral("unregister"));
        unregister << component << cancel;
        bus_.send(unregister);
    }
}

void KGlobalAccel::releaseAll() {
    report(edges_.release());
}

void KGlobalAccel::bindShortcut() {
    const auto key = qtKeyFor(edges_.shortcut(), functionKey_);
    if (!watchesShortcut_) {
        return;
    }
    if (!key) {
        setReason("this desktop can't report this combination of keys; choose another shortcut");
        return;
    }
    bind(dictate, *key, [this](int bound) {
        isTaken_ = bound == 0;
        if (isListening_) {
            judge();
        } else {
            listen();
        }
    });
}

void KGlobalAccel::judge() {
    setReason(isTaken_ ? "another program has these keys; choose another shortcut" : "");
}

void KGlobalAccel::bind(const QString& name, int key, std::function<void(int key)> onBound) {
    auto registration = call(QStringLiteral("doRegister"));
    registration << action(name);
    bus_.send(registration);
    auto binding = call(QStringLiteral("setShortcutKeys"));
    binding << action(name)
            << QVariant::fromValue(QList<KeySequence>{KeySequence{.keys = {key, 0, 0, 0}}})
            << presentAndNotRemembered;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(binding), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [watcher, onBound = std::move(onBound)] {
                const auto reply = watcher->reply();
                watcher->deleteLater();
                int bound = 0;
                if (reply.type() == QDBusMessage::ReplyMessage && reply.signature() == "a(ai)") {
                    const auto sequences =
                        qdbus_cast<QList<KeySequence>>(reply.arguments().constFirst());
                    bound = sequences.isEmpty() ? 0 : sequences.constFirst().keys.value(0);
                }
                if (onBound) {
                    onBound(bound);
                }
            });
}

/// The object that reports our actions exists only once an action is registered.
void KGlobalAccel::listen() {
    auto question = call(QStringLiteral("getComponent"));
    question << component;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        const auto path = watcher->reply().arguments().value(0).value<QDBusObjectPath>().path();
        watcher->deleteLater();
        if (path.isEmpty()) {
            setReason("the desktop's service for shortcuts doesn't know Orlune");
            return;
        }
        bus_.connect(QString(), path, componentInterface, QStringLiteral("globalShortcutPressed"),
                     this, SLOT(onPressed(QString, QString, qlonglong)));
        bus_.connect(QString(), path, componentInterface, QStringLiteral("globalShortcutReleased"),
                     this, SLOT(onReleased(QString, QString, qlonglong)));
        isListening_ = true;
        judge();
    });
}

/// A key that stays down is reported as pressed repeatedly.
void KGlobalAccel::onPressed(const QString& /*component*/, const QString& name,
                             qlonglong /*timestamp*/) {
    report(name == dictate ? edges_.press() : std::optional(escapeEvent(/*isDown=*/true)));
}

void KGlobalAccel::onReleased(const QString& /*component*/, const QString& name,
                              qlonglong /*timestamp*/) {
    report(name == dictate ? edges_.release() : std::optional(escapeEvent(/*isDown=*/false)));
}

void KGlobalAccel::setReason(std::string reason) {
    if (reason != std::exchange(reason_, reason)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (observer_.onChange) {
                    observer_.onChange();
                }
            },
            Qt::QueuedConnection);
    }
}

void KGlobalAccel::report(const std::optional<KeyEvent>& event) {
    if (event && observer_.onKey) {
        observer_.onKey(*event);
    }
}

} // namespace orlune
