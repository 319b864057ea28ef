#pragma once

#include <compare>
#include <cstdint>
#include <expected>
#include <functional>
#include <string>
#include <string_view>

namespace ombrel {

/// The place of a file-system entry: an absolute path as exact bytes, and a mark that says whether it is
/// known to be a folder.
///
/// The path begins with "/", holds no empty and no "." component and no NUL, and ends in "/" only when it is
/// the root.
/// ".." is kept as it stands, because what it means is decided by links on the disk. Bytes need not be UTF-8.
/// Two locations are equal when their paths are; the mark does not count. A plain value, safe to share
/// between threads.
class FileURL {
public:
    enum class Mark : std::uint8_t { none, directory };
    /// Why some text is not a location.
    enum class Fault : std::uint8_t { notAbsolute, hasNul, notAFileURI, foreignHost, badEscape };

    /// The root folder.
    FileURL() : path_("/"), mark_(Mark::directory) {}

    /// From an absolute path as bytes. A trailing "/" sets the directory mark. Faults: `notAbsolute`,
    /// `hasNul`.
    [[nodiscard]] static std::expected<FileURL, Fault> fromPath(std::string_view path,
                                                                Mark mark = Mark::none);

    /// From a "file:" URI (RFC 8089): "file:/path", "file:///path", or with the host "localhost" or this
    /// machine's name. Query and fragment are not part of a path and are refused as `badEscape`, as is an
    /// escape of NUL.
    [[nodiscard]] static std::expected<FileURL, Fault> fromURI(std::string_view uri);

    /// Percent-encoded "file:///..." with upper-case hexadecimal. Bare stay letters, digits and
    /// -_.~!*'()/&=:@+$, as GLib leaves them, because the thumbnail convention hashes that form. A directory
    /// mark shows as a final "/".
    [[nodiscard]] std::string uri() const;

    /// The path's bytes, without a trailing "/" unless it is the root.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    [[nodiscard]] bool isMarkedDirectory() const noexcept { return mark_ == Mark::directory; }
    [[nodiscard]] bool isRoot() const noexcept { return path_.size() == 1; }

    /// The last component; empty for the root. Valid as long as this location is.
    [[nodiscard]] std::string_view name() const noexcept;
    /// What to call it by itself: its name; the root has none and goes by its path. Valid as long as this
    /// location is.
    [[nodiscard]] std::string_view title() const noexcept { return isRoot() ? path_ : name(); }
    /// The location without its last component; the root's parent is the root.
    [[nodiscard]] FileURL parent() const;
    /// `name` is one component (no "/", no NUL, not empty).
    [[nodiscard]] FileURL appending(std::string_view name, Mark mark = Mark::none) const;
    [[nodiscard]] FileURL marked(Mark mark) const;

    /// The location with its ".." components taken away together with what stands before them, by path alone:
    /// links are not looked at, and above the root is the root. A path that ended in ".." is marked as a
    /// folder.
    [[nodiscard]] FileURL standardized() const;

    /// Whether this location is `ancestor` or lies below it, by path alone.
    [[nodiscard]] bool isWithin(const FileURL& ancestor) const noexcept;
    /// How the path goes on below `ancestor`, which this location is within: no "/" at either end, empty for
    /// `ancestor` itself. Valid as long as this location is.
    [[nodiscard]] std::string_view pathBelow(const FileURL& ancestor) const noexcept;

    friend bool operator==(const FileURL& a, const FileURL& b) noexcept { return a.path_ == b.path_; }
    friend std::strong_ordering operator<=>(const FileURL& a, const FileURL& b) noexcept {
        return a.path_ <=> b.path_;
    }

private:
    FileURL(std::string path, Mark mark) noexcept : path_(std::move(path)), mark_(mark) {}

    std::string path_;
    Mark mark_;
};

} // namespace ombrel

template <>
struct std::hash<ombrel::FileURL> {
    std::size_t operator()(const ombrel::FileURL& url) const noexcept {
        return std::hash<std::string>{}(url.path());
    }
};
