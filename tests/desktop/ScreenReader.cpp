#include "tests/desktop/ScreenReader.h"

#include "tests/desktop/Desktop.h"

#include <algorithm>
#include <array>
#include <atspi/atspi.h>
#include <memory>
#include <stdexcept>
#include <tuple>

namespace orlune::desktop {

namespace {

struct Unreference {
    void operator()(gpointer object) const { g_object_unref(object); }
};
template <typename Object>
using Reference = std::unique_ptr<Object, Unreference>;

/// Elements may vanish while they are read; a vanished one reads as empty.
template <typename Get>
auto ask(const Get& get) {
    GError* error = nullptr;
    auto answer = get(&error);
    g_clear_error(&error);
    return answer;
}

std::string taken(gchar* text) {
    std::string copy(text ? text : "");
    g_free(text);
    return copy;
}

std::string nameOf(AtspiAccessible* accessible) {
    return taken(ask([&](GError** error) { return atspi_accessible_get_name(accessible, error); }));
}

std::string textOf(AtspiAccessible* accessible) {
    const Reference<AtspiText> text(atspi_accessible_get_text_iface(accessible));
    if (!text) {
        return {};
    }
    return taken(
        ask([&](GError** error) { return atspi_text_get_text(text.get(), 0, -1, error); }));
}

ScreenReader::Element describe(AtspiAccessible* accessible, AtspiStateSet* states,
                               const std::string& window, std::string name) {
    const auto is = [&](AtspiStateType state) { return atspi_state_set_contains(states, state); };
    const auto string = [&](auto function) {
        return taken(ask([&](GError** error) { return function(accessible, error); }));
    };
    ScreenReader::Element element{.window = window,
                                  .role = string(atspi_accessible_get_role_name),
                                  .name = std::move(name),
                                  .description = string(atspi_accessible_get_description),
                                  .text = textOf(accessible),
                                  .isEnabled = is(ATSPI_STATE_ENABLED) != 0,
                                  .isFocusable = is(ATSPI_STATE_FOCUSABLE) != 0,
                                  .isFocused = is(ATSPI_STATE_FOCUSED) != 0,
                                  .isChecked = is(ATSPI_STATE_CHECKED) != 0,
                                  .isSelected = is(ATSPI_STATE_SELECTED) != 0,
                                  .isActive = is(ATSPI_STATE_ACTIVE) != 0};
    if (element.role == "push button") { // the role's name before 2.56
        element.role = "button";
    }
    const Reference<AtspiComponent> component(atspi_accessible_get_component_iface(accessible));
    if (AtspiRect* const area = !component ? nullptr : ask([&](GError** error) {
            return atspi_component_get_extents(component.get(), ATSPI_COORD_TYPE_SCREEN, error);
        })) {
        std::tie(element.x, element.y, element.width, element.height) =
            std::tie(area->x, area->y, area->width, area->height);
        g_free(area);
    }
    return element;
}

/// Reads the element and all visible elements in it that have a name or text. With a name, stops at
/// the first one of that name.
void read(AtspiAccessible* accessible, const std::string& window,
          std::optional<std::string_view> wanted, std::vector<ScreenReader::Element>& elements) {
    const Reference<AtspiStateSet> states(atspi_accessible_get_state_set(accessible));
    if (!states || !atspi_state_set_contains(states.get(), ATSPI_STATE_SHOWING)) {
        return;
    }
    auto name = nameOf(accessible);
    const bool isTold =
        !name.empty() || atspi_state_set_contains(states.get(), ATSPI_STATE_FOCUSABLE);
    if (wanted ? name == *wanted : isTold) {
        elements.push_back(describe(accessible, states.get(), window, std::move(name)));
    }
    const int count =
        ask([&](GError** error) { return atspi_accessible_get_child_count(accessible, error); });
    for (int index = 0; index < count && !(wanted && !elements.empty()); ++index) {
        const Reference<AtspiAccessible> child(ask([&](GError** error) {
            return atspi_accessible_get_child_at_index(accessible, index, error);
        }));
        if (child) {
            read(child.get(), window, wanted, elements);
        }
    }
}

/// Reads the program's windows, in order.
std::vector<ScreenReader::Element> read(std::optional<std::string_view> wanted = {}) {
    std::vector<ScreenReader::Element> elements;
    const Reference<AtspiAccessible> desktop(atspi_get_desktop(0));
    // Cached values would only be updated in a later turn of the loop, but the interfaces of an
    // element never change.
    atspi_accessible_set_cache_mask(desktop.get(), ATSPI_CACHE_INTERFACES);
    const int programs =
        ask([&](GError** error) { return atspi_accessible_get_child_count(desktop.get(), error); });
    for (int index = 0; index < programs; ++index) {
        const Reference<AtspiAccessible> program(ask([&](GError** error) {
            return atspi_accessible_get_child_at_index(desktop.get(), index, error);
        }));
        if (!program || nameOf(program.get()) != "app.orlune.Orlune") {
            continue;
        }
        const int windows = ask(
            [&](GError** error) { return atspi_accessible_get_child_count(program.get(), error); });
        for (int number = 0; number < windows; ++number) {
            const Reference<AtspiAccessible> window(ask([&](GError** error) {
                return atspi_accessible_get_child_at_index(program.get(), number, error);
            }));
            if (window && !(wanted && !elements.empty())) {
                read(window.get(), nameOf(window.get()), wanted, elements);
            }
        }
    }
    return elements;
}

auto place(const ScreenReader::Element& element) {
    return std::tie(element.x, element.y, element.width, element.height);
}

} // namespace

ScreenReader::ScreenReader() {
    run({"dbus-send", "--session", "--print-reply", "--dest=org.a11y.Bus", "/org/a11y/bus",
         "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
         "variant:boolean:true"});
    if (!atspi_is_initialized() && atspi_init() != 0) {
        throw std::runtime_error("the accessibility bus cannot be reached");
    }
    constexpr int generous = 30'000; // milliseconds, enough for a program on a loaded machine
    atspi_set_timeout(generous, generous);
}

std::string ScreenReader::busAddress() const {
    const auto answer = run({"dbus-send", "--session", "--print-reply=literal",
                             "--dest=org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus.GetAddress"});
    const auto begin = answer.find_first_not_of(' ');
    return answer.substr(begin, answer.find('\n') - begin);
}

std::vector<ScreenReader::Element> ScreenReader::elements() const {
    return read();
}

std::optional<ScreenReader::Element> ScreenReader::find(std::string_view name) const {
    const auto found = read(name);
    return found.empty() ? std::nullopt : std::optional(found.front());
}

std::optional<ScreenReader::Element> ScreenReader::focused() const {
    const auto all = elements();
    // Its parents and children report the focus too.
    const auto found = std::ranges::find_if(
        all, [](const auto& element) { return element.isFocused && element.isFocusable; });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

std::string ScreenReader::activeWindow() const {
    const auto all = elements();
    const auto found = std::ranges::find_if(all, &Element::isActive);
    return found == all.end() ? "" : found->window;
}

bool ScreenReader::reads(std::string_view part) const {
    return std::ranges::any_of(elements(), [part](const auto& element) {
        return std::ranges::any_of(
            std::array{&Element::window, &Element::name, &Element::description, &Element::text},
            [&](auto member) { return (element.*member).find(part) != std::string::npos; });
    });
}

ScreenReader::Element ScreenReader::await(std::string_view name) const {
    std::optional<Element> found;
    if (!waitUntil([&] { return (found = find(name)).has_value(); })) {
        throw std::runtime_error("nothing is named " + std::string(name));
    }
    return *found;
}

bool ScreenReader::shows(std::string_view name) const {
    return waitUntil([&] { return find(name).has_value(); });
}

bool ScreenReader::hides(std::string_view name) const {
    return waitUntil([&] { return !find(name); });
}

struct Announcements::Listener {
    static void hear(AtspiEvent* event, void* argument) {
        auto& heard = *static_cast<Announcements*>(argument);
        const std::string_view type(event->type);
        if (type == "object:state-changed:focused" && event->detail1) {
            heard.focused_.push_back(nameOf(event->source));
        } else if (type.starts_with("object:property-change")) {
            heard.names_.push_back(nameOf(event->source));
        } else if (type.starts_with("object:text-changed")) {
            heard.typed_ += g_value_get_string(&event->any_data);
        }
        g_boxed_free(ATSPI_TYPE_EVENT, event);
    }

    static constexpr std::array events{"object:state-changed:focused",
                                       "object:property-change:accessible-name",
                                       "object:text-changed"};
    Reference<AtspiEventListener> handle;
};

Announcements::Announcements()
    : listener_(new Listener{Reference<AtspiEventListener>(
          atspi_event_listener_new(&Listener::hear, this, nullptr))}) {
    for (const char* const event : Listener::events) {
        if (!ask([&](GError** error) {
                return atspi_event_listener_register(listener_->handle.get(), event, error);
            })) {
            throw std::runtime_error("the accessibility bus tells nothing");
        }
    }
}

Announcements::~Announcements() {
    for (const char* const event : Listener::events) {
        ask([&](GError** error) {
            return atspi_event_listener_deregister(listener_->handle.get(), event, error);
        });
    }
}

void click(const ScreenReader& reader, std::string_view name, MouseButton button) {
    auto target = reader.await(name);
    const bool rests = waitUntil([&] {
        const auto before = target;
        target = reader.await(name);
        return target.isEnabled && place(before) == place(target);
    });
    if (!rests) {
        throw std::runtime_error("cannot be clicked: " + std::string(name));
    }
    run({"xdotool", "mousemove", std::to_string(target.x + target.width / 2),
         std::to_string(target.y + target.height / 2), "click",
         std::to_string(static_cast<int>(button))});
}

} // namespace orlune::desktop
