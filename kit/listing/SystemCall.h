#pragma once

#include <atomic>
#include <cstdint>
#include <optional>

/// The one gate that every file-system call of the kit passes.
///
/// It keeps the main thread off the disk (where that is asked for) and lets tests make chosen calls fail. In
/// a program that asks for neither it costs one relaxed load. Any thread.
namespace ombrel::SystemCall {

/// What is about to be called. Calls of one family that fail for the same reasons share a name.
enum class Kind : std::uint8_t {
    open,
    close,
    openDirectory,
    readDirectory,
    status,
    read,
    write,
    seek,
    allocate,
    truncate,
    rename,
    link,
    unlink,
    removeDirectory,
    makeDirectory,
    makeSymlink,
    makeNode,
    readLink,
    changeMode,
    changeOwner,
    changeTimes,
    readAttribute,
    writeAttribute,
    flush,
    fileSystem,
    lock,
    watch,
};

/// What a test does to a call instead of letting it reach the kernel.
struct Fault {
    int errorNumber = 0;  ///< the call fails with this errno; 0 leaves it to run
    bool isShort = false; ///< a read or write is cut to about half of what was asked
};

/// Sees every call before it is made. Called on the calling thread, possibly on several at once.
class Interceptor {
public:
    virtual ~Interceptor() = default;
    virtual std::optional<Fault> before(Kind kind) = 0;
};

/// Installs `interceptor` for the whole process, or removes it (nullptr). It must outlive its installation
/// and the calls under way.
void intercept(Interceptor* interceptor) noexcept;

/// From now on a file-system call on the main thread (see base/MainThread.h) aborts the program with a
/// message, unless an `Allowed` lives on that thread. For debug builds and tests.
void forbidOnMainThread(bool forbidden) noexcept;

/// While it lives, its thread may make file-system calls although it is the main thread. Each use is an
/// exception listed in docs/architecture.md.
class Allowed {
public:
    Allowed() noexcept;
    ~Allowed();
    Allowed(const Allowed&) = delete;
    Allowed& operator=(const Allowed&) = delete;
};

namespace Detail {
extern std::atomic<bool> isGuarded;
std::optional<Fault> pass(Kind kind);
} // namespace Detail

/// To be asked right before the call itself; the answer is what a test wants to happen instead.
inline std::optional<Fault> gate(Kind kind) {
    if (!Detail::isGuarded.load(std::memory_order_relaxed)) [[likely]]
        return std::nullopt;
    return Detail::pass(kind);
}

} // namespace ombrel::SystemCall
