#include "listing/FolderFingerprint.h"

#include <cerrno>
#include <functional>
#include <string_view>

namespace ombrel {
namespace {

/// The finishing steps of a good 64-bit hash: every bit of `value` changes half of the answer's.
constexpr std::uint64_t scattered(std::uint64_t value) noexcept {
    value ^= value >> 30U;
    value *= 0xBF58476D1CE4E5B9U;
    value ^= value >> 27U;
    value *= 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}

/// A hash of an entry's facts, taken in one after another.
class Facts {
public:
    explicit Facts(std::string_view name) noexcept : value_(std::hash<std::string_view>{}(name)) {}
    void add(std::uint64_t fact) noexcept { value_ = scattered(value_ + 0x9E3779B97F4A7C15U) ^ fact; }
    void add(const FileTime& time) noexcept {
        add(static_cast<std::uint64_t>(time.seconds));
        add(time.nanoseconds);
    }
    [[nodiscard]] std::uint64_t first() const noexcept { return scattered(value_); }
    [[nodiscard]] std::uint64_t second() const noexcept { return scattered(value_ ^ 0xD1B54A32D192ED03U); }

private:
    std::uint64_t value_;
};

} // namespace

POSIX::Result<FolderFingerprint> FolderFingerprint::of(const FileURL& url, Numbers numbers,
                                                       const std::stop_token& stop) {
    auto stream = POSIX::openDirectory(url);
    if (!stream) return std::unexpected(stream.error());
    FolderFingerprint print;
    for (;;) {
        if (stop.stop_requested()) return std::unexpected(POSIXFailure{ECANCELED});
        const auto entry = POSIX::readEntry(*stream);
        if (!entry) return std::unexpected(entry.error());
        if (!*entry) return print;
        const std::string_view name = (*entry)->name;
        const auto status = POSIX::lstat({stream->fd(), name.data()});
        if (!status && status.error().number == ENOENT) continue;
        Facts facts(name);
        if (status) {
            facts.add(status->mode);
            facts.add(static_cast<std::uint64_t>(status->size));
            facts.add(status->modified);
            if (numbers == Numbers::trusted) {
                facts.add(status->identity.inode);
                facts.add(status->changed);
            }
        } else {
            facts.add(static_cast<std::uint64_t>(status.error().number));
        }
        ++print.count_;
        print.first_ += facts.first();
        print.second_ += facts.second();
    }
}

} // namespace ombrel
