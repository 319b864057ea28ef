#include "services/ChannelConfig.h"

#include <cstdlib>

namespace ombrel::ChannelConfig {

bool isSandboxed() {
    return std::getenv("APP_SANDBOX_CONTAINER_ID") != nullptr;
}

} // namespace ombrel::ChannelConfig
