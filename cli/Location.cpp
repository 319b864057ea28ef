#include "cli/Location.h"

#include "base/POSIXFailure.h"

#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

namespace ombrel::cli {

std::expected<FileURL, Text> locationOf(std::string_view operand) {
    if (operand.empty()) return std::unexpected(Text{"cli.error.emptyPath"});
    std::string path(operand);
    if (path.front() != '/') {
        const std::unique_ptr<char, decltype(&std::free)> working(::getcwd(nullptr, 0), &std::free);
        if (!working)
            return std::unexpected(Text{"cli.error.noWorkingFolder", {POSIXFailure::current().systemText()}});
        path = std::string(working.get()) + '/' + path;
    }
    const auto url = FileURL::fromPath(path);
    if (!url) return std::unexpected(Text{"path.invalid"});
    return *url;
}

std::expected<std::vector<FileURL>, Text> locationsOf(std::span<const std::string_view> operands) {
    std::vector<FileURL> urls;
    for (const auto operand : operands) {
        auto url = locationOf(operand);
        if (!url) return std::unexpected(url.error());
        urls.push_back(*std::move(url));
    }
    return urls;
}

} // namespace ombrel::cli
