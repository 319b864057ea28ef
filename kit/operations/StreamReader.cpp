#include "operations/StreamReader.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace ombrel {
namespace {

constexpr std::size_t longestLine = std::size_t{1} << 20;

} // namespace

StreamReader::StreamReader(OwnedFd pipe) : active(static_cast<bool>(pipe)), pipe_(std::move(pipe)) {
    if (active)
        thread_ = std::jthread([this](const std::stop_token& stop) { read(stop); });
    else
        done.release();
}

std::vector<std::string> StreamReader::takeLines() {
    std::string taken;
    {
        const std::scoped_lock lock(lock_);
        const auto end = buffer_.rfind('\n');
        if (end == std::string::npos) return {};
        taken = buffer_.substr(0, end + 1);
        buffer_.erase(0, end + 1);
    }
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < taken.size();) {
        const auto end = taken.find('\n', start);
        lines.push_back(taken.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

std::string StreamReader::pendingLine() const {
    const std::scoped_lock lock(lock_);
    const auto end = buffer_.rfind('\n');
    return end == std::string::npos ? buffer_ : buffer_.substr(end + 1);
}

void StreamReader::read(const std::stop_token& stop) {
    constexpr int stopIntervalMs = 100;
    std::array<char, 16384> chunk;
    while (!stop.stop_requested()) {
        // Whatever inherited the pipe may keep it open for ever.
        pollfd ready{pipe_.get(), POLLIN, 0};
        if (::poll(&ready, 1, stopIntervalMs) <= 0) continue;
        const auto count = ::read(pipe_.get(), chunk.data(), chunk.size());
        if (count < 0 && (errno == EINTR || errno == EAGAIN)) continue;
        if (count <= 0) break;
        receive(chunk.data(), static_cast<std::size_t>(count));
    }
    done.release();
}

void StreamReader::receive(const char* bytes, std::size_t size) {
    const std::scoped_lock lock(lock_);
    buffer_.append(bytes, size);
    if (buffer_.size() <= longestLine) return;
    const auto end = buffer_.rfind('\n');
    if (end == std::string::npos) buffer_.erase(0, buffer_.size() - longestLine / 2);
}

} // namespace ombrel
