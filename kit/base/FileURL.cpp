#include "base/FileURL.h"

#include "base/PercentEncoding.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>

namespace ombrel {
namespace {

bool equalsIgnoringCase(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if ((a[i] | 0x20) != (b[i] | 0x20)) return false;
    return true;
}

bool isThisHost(std::string_view host) {
    if (host.empty() || equalsIgnoringCase(host, "localhost")) return true;
    std::array<char, HOST_NAME_MAX + 1> own{};
    return ::gethostname(own.data(), own.size() - 1) == 0 && equalsIgnoringCase(host, own.data());
}

} // namespace

std::expected<FileURL, FileURL::Fault> FileURL::fromPath(std::string_view path, Mark mark) {
    if (path.empty() || path.front() != '/') return std::unexpected(Fault::notAbsolute);
    if (path.find('\0') != std::string_view::npos) return std::unexpected(Fault::hasNul);
    if (path.back() == '/') mark = Mark::directory;
    std::string clean;
    clean.reserve(path.size());
    for (std::size_t start = 1; start < path.size();) {
        auto end = path.find('/', start);
        if (end == std::string_view::npos) end = path.size();
        const auto component = path.substr(start, end - start);
        if (!component.empty() && component != ".") clean.append(1, '/').append(component);
        start = end + 1;
    }
    if (clean.empty()) return FileURL();
    return FileURL(std::move(clean), mark);
}

std::expected<FileURL, FileURL::Fault> FileURL::fromURI(std::string_view uri) {
    constexpr std::string_view scheme = "file:";
    if (uri.size() < scheme.size() || !equalsIgnoringCase(uri.substr(0, 4), "file") || uri[4] != ':')
        return std::unexpected(Fault::notAFileURI);
    uri.remove_prefix(scheme.size());
    if (uri.starts_with("//")) {
        uri.remove_prefix(2);
        const auto slash = uri.find('/');
        if (!isThisHost(uri.substr(0, slash))) return std::unexpected(Fault::foreignHost);
        uri.remove_prefix(slash == std::string_view::npos ? uri.size() : slash);
    }
    if (uri.find_first_of("?#") != std::string_view::npos) return std::unexpected(Fault::badEscape);
    const auto path = PercentEncoding::decoded(uri);
    if (!path) return std::unexpected(Fault::badEscape);
    return fromPath(*path);
}

std::string FileURL::uri() const {
    std::string text = "file://" + PercentEncoding::encoded(path_, "-_.~!*'()/&=:@+$,");
    if (isMarkedDirectory() && !isRoot()) text.push_back('/');
    return text;
}

std::string_view FileURL::name() const noexcept {
    return std::string_view(path_).substr(path_.rfind('/') + 1);
}

FileURL FileURL::parent() const {
    const auto slash = path_.rfind('/');
    if (slash == 0) return {};
    return {path_.substr(0, slash), Mark::directory};
}

FileURL FileURL::appending(std::string_view name, Mark mark) const {
    std::string path;
    path.reserve(path_.size() + 1 + name.size());
    path.append(path_);
    if (!isRoot()) path.push_back('/');
    path.append(name);
    return {std::move(path), mark};
}

FileURL FileURL::marked(Mark mark) const {
    return {path_, isRoot() ? Mark::directory : mark};
}

FileURL FileURL::standardized() const {
    if (path_.find("/..") == std::string::npos) return *this;
    std::string clean;
    Mark mark = mark_;
    for (std::size_t start = 1; start <= path_.size();) {
        const auto end = std::min(path_.find('/', start), path_.size());
        const auto component = std::string_view(path_).substr(start, end - start);
        if (component == "..") {
            clean.resize(clean.empty() ? 0 : clean.rfind('/'));
            if (end == path_.size()) mark = Mark::directory;
        } else {
            clean.append(1, '/').append(component);
        }
        start = end + 1;
    }
    if (clean.empty()) return {};
    return {std::move(clean), mark};
}

bool FileURL::isWithin(const FileURL& ancestor) const noexcept {
    if (ancestor.isRoot()) return true;
    return path_.starts_with(ancestor.path_) &&
           (path_.size() == ancestor.path_.size() || path_[ancestor.path_.size()] == '/');
}

std::string_view FileURL::pathBelow(const FileURL& ancestor) const noexcept {
    const std::size_t start = ancestor.isRoot() ? 1 : ancestor.path_.size() + 1;
    return std::string_view(path_).substr(std::min(start, path_.size()));
}

} // namespace ombrel
