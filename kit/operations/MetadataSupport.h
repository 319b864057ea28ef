#pragma once

#include "listing/FileStatus.h"
#include "listing/FileSystemTraits.h"

#include <atomic>
#include <cstdint>

namespace ombrel {

/// What a destination's file system can hold besides names and contents. It begins with what the format has a
/// place for and learns from what the driver refuses: a mount option, a server or a FUSE process may hold
/// less. What it cannot hold is no difference between a file and its copy. Learned on one thread, read on
/// any.
class MetadataSupport {
public:
    enum class Feature : std::uint8_t { modes, owners, attributes, lists, times };

    explicit MetadataSupport(const FileSystemTraits& traits) noexcept;

    [[nodiscard]] bool holds(Feature feature) const noexcept {
        return held_.load(std::memory_order_relaxed) & bit(feature);
    }
    void refuse(Feature feature) noexcept {
        held_.fetch_and(static_cast<std::uint8_t>(~bit(feature)), std::memory_order_relaxed);
    }
    /// Whether an errno of a call that carries something means that the file system has no place for it.
    [[nodiscard]] bool meansNoPlace(int errorNumber) const noexcept;

    /// Whether a call that carried a feature proves nothing yet: the driver may have said yes and done
    /// nothing, so what was carried is to be read back once and `prove` told the result.
    [[nodiscard]] bool needsProof(Feature feature) const noexcept {
        return mayPretend_ && (proven_ & bit(feature)) == 0;
    }
    /// Whether anything may need proof.
    [[nodiscard]] bool mayPretend() const noexcept { return mayPretend_; }
    void prove(Feature feature, bool isKept) noexcept {
        proven_ |= bit(feature);
        if (!isKept) refuse(feature);
    }

    /// Learns from a file or folder that was just made at the top of the destination, `status` what it says
    /// of itself: who owns what is made there, and whether modes are kept where a driver may pretend it.
    void learn(int fd, const FileStatus& status);
    [[nodiscard]] std::uint32_t freshOwner() const noexcept { return freshOwner_; }
    [[nodiscard]] std::uint32_t freshGroup() const noexcept { return freshGroup_; }

    /// From here on things are made in another folder. Not while copies are being compared.
    void begin(bool folderGivesItsGroup) noexcept;
    /// The destination is a set-group-id folder: what comes into it takes its group and keeps it.
    [[nodiscard]] bool givesItsGroup() const noexcept { return givesItsGroup_; }

private:
    static constexpr std::uint8_t bit(Feature feature) noexcept {
        return static_cast<std::uint8_t>(1U << static_cast<unsigned>(feature));
    }

    std::atomic<std::uint8_t> held_ = 0;
    bool mayPretend_; // a driver that may answer yes and do nothing
    std::uint8_t proven_ = 0;
    bool hasProbed_ = false;
    bool hasLearned_ = false;
    bool givesItsGroup_ = false;
    std::uint32_t freshOwner_ = UINT32_MAX;
    std::uint32_t freshGroup_ = UINT32_MAX;
};

} // namespace ombrel
