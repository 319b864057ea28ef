#pragma once

#include "base/RawValue.h"

#include <cstdint>

/// How this build reaches its users, and what follows from it.
namespace ombrel::ChannelConfig {

enum class Channel : std::uint8_t { direct, appStore };

inline constexpr Channel channel = Channel::direct;
inline constexpr bool includesSoftwareUpdates = true;
inline constexpr bool allowsProductNotices = false;
/// Whether the sibling application may be offered.
inline constexpr bool allowsHalvaneIntegration = false;

/// Whether the process runs in a container of its own: the environment has "APP_SANDBOX_CONTAINER_ID".
[[nodiscard]] bool isSandboxed();

} // namespace ombrel::ChannelConfig

template <>
struct ombrel::RawValues<ombrel::ChannelConfig::Channel> {
    static constexpr std::string_view names[] = {"direct", "appStore"};
};
