#pragma once

#include <QRect>

#include <gio/gio.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ombrel::testing {

/// Reads what programs show, as programs for blind people do: over the bus of assistive programs, which is
/// the session bus here, one of the test's own. Programs look for it when they start. Menus and other popups
/// are not told of there.
class ScreenReader {
public:
    enum class Role : unsigned {
        any = 0,
        checkBox = 7,
        label = 29,
        list = 31,
        listItem = 32,
        tab = 37,
        button = 43,
        field = 61,
        treeItem = 91,
    };
    enum class Match { whole, beginning };

    /// Something on the screen, as it was when it was looked at.
    struct Thing {
        std::string program; ///< whose it is, on the bus
        std::string path;
        std::string name = {}; ///< without the marks that keep the directions of texts apart
        unsigned role = 0;
        QRect place = {}; ///< on the screen, in pixels
        bool isShown = false;
        bool isEnabled = false;
        bool isChecked = false;
        bool isSelected = false;
        bool hasFocus = false;
        bool isActive = false; ///< of a window: it is the one that has the keyboard
    };

    /// Nothing when nobody answers at `address`.
    [[nodiscard]] static std::unique_ptr<ScreenReader> onBus(const std::string& address);
    ~ScreenReader();
    ScreenReader(const ScreenReader&) = delete;
    ScreenReader& operator=(const ScreenReader&) = delete;

    /// Of all programs.
    [[nodiscard]] std::vector<Thing> windows() const;
    /// Those that are shown.
    [[nodiscard]] std::vector<Thing> children(const Thing& above) const;
    /// The first one below `above` that is shown, in reading order.
    [[nodiscard]] std::optional<Thing> find(const Thing& above, Role role, const std::string& name,
                                            Match match = Match::whole) const;
    /// What stands in a field.
    [[nodiscard]] std::string textIn(const Thing& field) const;
    /// One line for each thing that is shown.
    [[nodiscard]] std::string everything() const;

private:
    struct Freed {
        void operator()(GVariant* value) const { g_variant_unref(value); }
    };
    using Value = std::unique_ptr<GVariant, Freed>;

    explicit ScreenReader(GDBusConnection* bus) : bus_(bus) {}
    [[nodiscard]] Value ask(const std::string& program, const std::string& path, const char* interface,
                            const char* method, GVariant* arguments, const char* answer) const;
    [[nodiscard]] std::vector<Thing> childrenOf(const std::string& program, const std::string& path) const;
    [[nodiscard]] std::optional<Thing> look(const std::string& program, const std::string& path) const;
    [[nodiscard]] Thing measured(Thing thing) const;
    void describe(const Thing& thing, int depth, std::string& into) const;

    GDBusConnection* bus_;
};

} // namespace ombrel::testing
