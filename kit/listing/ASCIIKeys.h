#pragma once

#include <unicode/ucol.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// Collation keys of plain ASCII names, byte for byte what ICU makes of them, several times as fast.
/// Immutable; any thread.
///
/// At secondary strength a key is the primary weights of the name's characters one after another, the byte
/// 01, and the secondary weights. Those of ASCII characters are all the common one, so they shrink to their
/// number. What each character weighs is learned from the collator itself; how a run of digits is weighed by
/// its value is the fixed encoding of ICU's numeric ordering. Nothing of it is taken on trust: a set of names
/// is tried against the collator.
class ASCIIKeys {
public:
    /// Names of more bytes are left to ICU.
    static constexpr std::size_t longestName = 255;

    /// Nothing when this does not hold for the collator: its locale joins ASCII letters to one weight (Czech
    /// "ch"), or its keys look otherwise than expected. `collator` orders digits by value at secondary
    /// strength. Takes 3 to 12 ms.
    [[nodiscard]] static std::optional<ASCIIKeys> learn(const UCollator* collator);

    /// Appends the key of `name`; or answers false and appends nothing when the name is not for it.
    [[nodiscard]] bool append(std::string_view name, std::string& keys) const;

private:
    enum class Role : std::uint8_t { foreign, digit, weighed };
    struct Character {
        std::array<char, 4> primary{};
        std::uint8_t primaryLength = 0;
        std::uint8_t secondaries = 0; ///< how many common secondary weights
        Role role = Role::foreign;
    };
    struct Writer;

    ASCIIKeys() = default;
    [[nodiscard]] static std::optional<Character> weighed(std::string_view key);
    void appendNumber(std::string_view digits, Writer& writer) const;

    std::array<Character, 256> characters_{};
    char digitLead_ = 0; ///< the first byte of every number's weight
};

} // namespace ombrel
