#pragma once

#include "base/FileURL.h"
#include "base/RawValue.h"

#include <QObject>
#include <QUuid>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

class SecurityScopeSystem;

/// A folder that the user has granted, and whether it can be read now. Main thread only; changed by the
/// `AccessManager` that it belongs to.
class AccessGrant final : public QObject {
    Q_OBJECT

public:
    struct State {
        enum class Case : std::uint8_t {
            needsReauthorization, ///< it cannot be used; the user has to pick the folder again
            unavailable,          ///< the folder is not there now and may come back
            active,               ///< it can be read
        };

        Case which = Case::unavailable;
        std::string_view messageKey = {}; ///< why; empty for `active` and while the folder is looked for

        /// Why, for people; empty as the key is.
        [[nodiscard]] std::string message() const;

        friend bool operator==(const State&, const State&) = default;
    };
    /// Who holds the folder's scope.
    enum class ScopeOwner : std::uint8_t {
        openPanel, ///< it came with the folder that the user picked
        bookmark,  ///< it was started for the resolved bookmark
        none,
    };

    /// Unavailable, without a message.
    AccessGrant(const QUuid& id, std::string displayName);

    [[nodiscard]] const QUuid& id() const noexcept { return id_; }
    /// Nothing until the bookmark has been resolved for the first time.
    [[nodiscard]] const std::optional<FileURL>& url() const noexcept { return url_; }
    [[nodiscard]] const State& state() const noexcept { return state_; }
    [[nodiscard]] bool isActive() const noexcept { return state_.which == State::Case::active; }
    /// For people, UTF-8.
    [[nodiscard]] const std::string& displayName() const noexcept { return displayName_; }
    [[nodiscard]] ScopeOwner scopeOwner() const noexcept { return scopeOwner_; }
    /// Whether the grant holds a scope that is to be stopped.
    [[nodiscard]] bool isAccessing() const noexcept { return isAccessing_; }

    /// What a folder is called: its name, or its path for the root. UTF-8.
    [[nodiscard]] static std::string displayName(const FileURL& url);

Q_SIGNALS:
    /// The url, the state or the name is another one.
    void changed();

private:
    friend class AccessManager; // which also emits `changed`

    void activate(const FileURL& url, ScopeOwner owner, bool isAccessing);
    /// Gives the scope back, if it holds one. State and url stay.
    void stop(SecurityScopeSystem& system);

    const QUuid id_;
    std::optional<FileURL> url_;
    State state_;
    std::string displayName_;
    ScopeOwner scopeOwner_ = ScopeOwner::none;
    bool isAccessing_ = false;
};

template <>
struct RawValues<AccessGrant::State::Case> {
    static constexpr std::string_view names[] = {"needsReauthorization", "unavailable", "active"};
};

template <>
struct RawValues<AccessGrant::ScopeOwner> {
    static constexpr std::string_view names[] = {"openPanel", "bookmark", "none"};
};

} // namespace ombrel
