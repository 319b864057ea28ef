#include "app/ScreenReader.h"

#include <cstdint>

namespace ombrel::testing {
namespace {

constexpr auto rootPath = "/org/a11y/atspi/accessible/root";
constexpr auto accessible = "org.a11y.atspi.Accessible", component = "org.a11y.atspi.Component",
               textual = "org.a11y.atspi.Text", properties = "org.freedesktop.DBus.Properties";
constexpr int patience = 60'000; // milliseconds that a program may be busy with something else
/// What Qt calls a field, and the row of a tree of one column, depends on its version.
constexpr unsigned entryRole = 79, cellRole = 56;

enum State : unsigned { active = 1, checked = 4, enabled = 8, focused = 12, selected = 23, visible = 30 };

std::string withoutMarks(std::string text) {
    for (const char* mark : {"\u2066", "\u2067", "\u2068", "\u2069"})
        for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at))
            text.erase(at, 3);
    return text;
}

bool isOf(unsigned role, ScreenReader::Role wanted) {
    if (wanted == ScreenReader::Role::any) return true;
    if (wanted == ScreenReader::Role::field && role == entryRole) return true;
    if (wanted == ScreenReader::Role::treeItem && role == cellRole) return true;
    return role == static_cast<unsigned>(wanted);
}

/// Answers programs that ask whether somebody reads their screens, and where; `address` is a text. Runs on
/// the thread of the bus.
GDBusMessage* answerStatus(GDBusConnection* bus, GDBusMessage* message, gboolean isIncoming,
                           gpointer address) {
    const bool isCall =
        isIncoming && g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL;
    if (!isCall || g_strcmp0(g_dbus_message_get_path(message), "/org/a11y/bus") != 0) return message;
    GDBusMessage* const reply = g_dbus_message_new_method_reply(message);
    const std::string member = g_dbus_message_get_member(message);
    if (member == "GetAddress")
        g_dbus_message_set_body(reply, g_variant_new("(s)", static_cast<const char*>(address)));
    else if (member == "Get")
        g_dbus_message_set_body(reply, g_variant_new("(v)", g_variant_new_boolean(TRUE)));
    g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(reply);
    g_object_unref(message);
    return nullptr;
}

} // namespace

std::unique_ptr<ScreenReader> ScreenReader::onBus(const std::string& address) {
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    GDBusConnection* const bus =
        g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
    if (!bus) return nullptr;
    std::unique_ptr<ScreenReader> reader(new ScreenReader(bus));
    g_dbus_connection_add_filter(bus, answerStatus, g_strdup(address.c_str()), g_free);
    const auto owned = reader->ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                   "RequestName", g_variant_new("(su)", "org.a11y.Bus", 0U), "(u)");
    return owned ? std::move(reader) : nullptr;
}

ScreenReader::~ScreenReader() {
    g_dbus_connection_close_sync(bus_, nullptr, nullptr);
    g_object_unref(bus_);
}

/// Nothing when the program, or what was asked about, has gone meanwhile.
ScreenReader::Value ScreenReader::ask(const std::string& program, const std::string& path,
                                      const char* interface, const char* method, GVariant* arguments,
                                      const char* answer) const {
    return Value(g_dbus_connection_call_sync(bus_, program.c_str(), path.c_str(), interface, method,
                                             arguments, G_VARIANT_TYPE(answer), G_DBUS_CALL_FLAGS_NONE,
                                             patience, nullptr, nullptr));
}

std::optional<ScreenReader::Thing> ScreenReader::look(const std::string& program,
                                                      const std::string& path) const {
    const auto state = ask(program, path, accessible, "GetState", nullptr, "(au)");
    if (!state) return std::nullopt;
    Thing thing{.program = program, .path = path};
    const Value words(g_variant_get_child_value(state.get(), 0));
    std::uint32_t bits = 0;
    if (g_variant_n_children(words.get()) > 0) g_variant_get_child(words.get(), 0, "u", &bits);
    const auto is = [bits](State which) { return (bits >> which & 1U) != 0; };
    thing.isShown = is(visible);
    thing.isEnabled = is(enabled);
    thing.isChecked = is(checked);
    thing.isSelected = is(selected);
    thing.hasFocus = is(focused);
    thing.isActive = is(active);
    // Of most of what is hidden nobody wants to know more.
    if (!thing.isShown) return thing;
    const auto role = ask(program, path, accessible, "GetRole", nullptr, "(u)");
    const auto name = ask(program, path, properties, "Get", g_variant_new("(ss)", accessible, "Name"), "(v)");
    if (!role || !name) return std::nullopt;
    g_variant_get(role.get(), "(u)", &thing.role);
    const Value inner([&] {
        GVariant* value = nullptr;
        g_variant_get(name.get(), "(v)", &value);
        return value;
    }());
    if (g_variant_is_of_type(inner.get(), G_VARIANT_TYPE_STRING))
        thing.name = withoutMarks(g_variant_get_string(inner.get(), nullptr));
    return thing;
}

ScreenReader::Thing ScreenReader::measured(Thing thing) const {
    const auto told =
        ask(thing.program, thing.path, component, "GetExtents", g_variant_new("(u)", 0U), "((iiii))");
    if (!told) return thing;
    int x = 0, y = 0, width = 0, height = 0;
    g_variant_get(told.get(), "((iiii))", &x, &y, &width, &height);
    thing.place = QRect(x, y, width, height);
    return thing;
}

std::vector<ScreenReader::Thing> ScreenReader::childrenOf(const std::string& program,
                                                          const std::string& path) const {
    std::vector<Thing> found;
    const auto told = ask(program, path, accessible, "GetChildren", nullptr, "(a(so))");
    if (!told) return found;
    const Value list(g_variant_get_child_value(told.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
        const char *of = nullptr, *at = nullptr;
        g_variant_get_child(list.get(), i, "(&s&o)", &of, &at);
        if (auto thing = look(of, at)) found.push_back(*std::move(thing));
    }
    return found;
}

std::vector<ScreenReader::Thing> ScreenReader::windows() const {
    std::vector<Thing> found;
    const auto told = ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                          "ListNames", nullptr, "(as)");
    if (!told) return found;
    const Value names(g_variant_get_child_value(told.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(names.get()); ++i) {
        const char* name = nullptr;
        g_variant_get_child(names.get(), i, "&s", &name);
        const std::string program = name;
        if (!program.starts_with(':') || program == g_dbus_connection_get_unique_name(bus_)) continue;
        for (auto& window : childrenOf(program, rootPath))
            if (window.isShown) found.push_back(measured(std::move(window)));
    }
    return found;
}

std::vector<ScreenReader::Thing> ScreenReader::children(const Thing& above) const {
    std::vector<Thing> shown;
    for (Thing& thing : childrenOf(above.program, above.path))
        if (thing.isShown) shown.push_back(measured(std::move(thing)));
    return shown;
}

std::optional<ScreenReader::Thing> ScreenReader::find(const Thing& above, Role role, const std::string& name,
                                                      Match match) const {
    for (const Thing& thing : childrenOf(above.program, above.path)) {
        if (!thing.isShown) continue;
        const bool isNamed = match == Match::whole ? thing.name == name : thing.name.starts_with(name);
        if (isNamed && isOf(thing.role, role)) return measured(thing);
        // Nothing is in an item of a list or of a tree.
        if (isOf(thing.role, Role::listItem) || isOf(thing.role, Role::treeItem)) continue;
        if (auto found = find(thing, role, name, match)) return found;
    }
    return std::nullopt;
}

std::string ScreenReader::textIn(const Thing& field) const {
    const auto told = ask(field.program, field.path, textual, "GetText", g_variant_new("(ii)", 0, -1), "(s)");
    if (!told) return {};
    const char* text = nullptr;
    g_variant_get(told.get(), "(&s)", &text);
    return text;
}

void ScreenReader::describe(const Thing& thing, int depth, std::string& into) const {
    const QRect& at = thing.place;
    into += std::string(static_cast<std::size_t>(2 * depth), ' ') + std::to_string(thing.role) + " “" +
            thing.name + "” " + std::to_string(at.x()) + "," + std::to_string(at.y()) + " " +
            std::to_string(at.width()) + "×" + std::to_string(at.height());
    for (const auto& [is, word] :
         {std::pair(thing.isActive, " active"), std::pair(thing.hasFocus, " focus"),
          std::pair(thing.isSelected, " selected"), std::pair(thing.isChecked, " checked"),
          std::pair(!thing.isEnabled, " disabled")})
        if (is) into += word;
    into += '\n';
    for (const Thing& child : children(thing))
        describe(child, depth + 1, into);
}

std::string ScreenReader::everything() const {
    std::string text;
    for (const Thing& window : windows())
        describe(window, 0, text);
    return text;
}

} // namespace ombrel::testing
