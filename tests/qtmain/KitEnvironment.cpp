// What a program sets up before it makes models and windows, for the test programs that make them too.
#include "base/Worker.h"

#include <gmock/gmock.h>

#include <optional>

#include "qtmain/KitWorld.h"

namespace ombrel::testing {
namespace {

class KitEnvironment : public ::testing::Environment {
public:
    void SetUp() override {
        connections_.emplace(InterfaceLanguage{}, QtConnections::Logging::silent);
        SystemCall::forbidOnMainThread(true);
        isKitSetUp = true;
    }
    void TearDown() override {
        SystemCall::forbidOnMainThread(false);
        connections_.reset();
        Worker::waitUntilNoneRuns(std::chrono::seconds(10));
    }

private:
    std::optional<QtConnections> connections_;
};

// GoogleTest takes it over.
[[maybe_unused]] const auto* const environment = ::testing::AddGlobalTestEnvironment(new KitEnvironment);

} // namespace
} // namespace ombrel::testing
