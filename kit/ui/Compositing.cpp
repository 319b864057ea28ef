#include "ui/Compositing.h"

#include <QGuiApplication>

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace ombrel {
namespace {

/// What the display sends is freed by whoever asked.
struct Free {
    void operator()(void* reply) const noexcept { std::free(reply); } // NOLINT(*-no-malloc)
};

} // namespace

bool Compositing::isOn() {
    // Everywhere else it always is.
    if (QGuiApplication::platformName() != QLatin1String("xcb")) return true;
    const auto* const native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!native) return false;
    xcb_connection_t* const display = native->connection();
    // Who composites the first screen owns a selection of this name; displays of several are no longer made.
    constexpr std::string_view name = "_NET_WM_CM_S0";
    const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(
        display, xcb_intern_atom(display, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    if (!atom) return false;
    const std::unique_ptr<xcb_get_selection_owner_reply_t, Free> owner(
        xcb_get_selection_owner_reply(display, xcb_get_selection_owner(display, atom->atom), nullptr));
    return owner && owner->owner != XCB_NONE;
}

} // namespace ombrel
