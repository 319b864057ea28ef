#include "operations/StagingName.h"

#include <array>
#include <cstdint>
#include <random>

namespace ombrel::StagingName {
namespace {

std::string freshUUID() {
    std::random_device source;
    std::array<std::uint8_t, 16> bytes;
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(source());
    bytes[6] = static_cast<std::uint8_t>((bytes[6] & 0x0FU) | 0x40U);
    bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3FU) | 0x80U);
    std::string name;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        if (i == 4 || i == 6 || i == 8 || i == 10) name.push_back('-');
        name.push_back(digits[bytes[i] >> 4]);
        name.push_back(digits[bytes[i] & 0x0FU]);
    }
    return name;
}

} // namespace

std::string make() {
    return std::string(prefix) + freshUUID();
}

std::string makeZip() {
    return std::string(zipPrefix) + freshUUID() + std::string(zipSuffix);
}

bool isOne(std::string_view name) noexcept {
    return name.starts_with(prefix) || (name.starts_with(zipPrefix) && name.ends_with(zipSuffix));
}

} // namespace ombrel::StagingName
