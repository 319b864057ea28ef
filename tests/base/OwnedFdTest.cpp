#include "base/OwnedFd.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <cerrno>

namespace ombrel {
namespace {

OwnedFd opened() {
    return OwnedFd(::open("/dev/null", O_RDONLY | O_CLOEXEC));
}

bool isOpen(int fd) {
    return ::fcntl(fd, F_GETFD) != -1;
}

TEST(OwnedFd, ClosesOnceWhereverItHasMoved) {
    int number = -1;
    {
        auto first = opened();
        number = first.get();
        const OwnedFd second(std::move(first));
        EXPECT_EQ(first.get(), -1); // NOLINT(bugprone-use-after-move): empty is the promise
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(OwnedFd, ClosesWhatItHeldWhenItTakesAnother) {
    auto kept = opened();
    const int before = kept.get();
    kept = opened();
    EXPECT_FALSE(isOpen(before));
    EXPECT_TRUE(isOpen(kept.get()));
}

TEST(OwnedFd, GivesItsDescriptorAway) {
    int number = -1;
    {
        auto owner = opened();
        number = owner.release();
    }
    EXPECT_TRUE(isOpen(number));
    ::close(number);
}

TEST(OwnedFd, TellsWhatGoesWrongWhileClosingAndIsEmptyAllTheSame) {
    auto owner = opened();
    ::close(owner.get());
    const auto closed = owner.close();
    ASSERT_FALSE(closed.has_value());
    EXPECT_EQ(closed.error().number, EBADF);
    EXPECT_FALSE(owner);
    EXPECT_TRUE(owner.close().has_value()) << "empty: nothing to close";
}

} // namespace
} // namespace ombrel
