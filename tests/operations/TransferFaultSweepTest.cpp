#include "operations/TransferScenario.h"
#include "support/FaultAt.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::IsEmpty;

/// What befalls the n-th call.
struct Trouble {
    const char* name;
    SystemCall::Fault fault;
    Lasting lasting;
    bool isRetried = false; ///< errors are answered with retry, as often as it takes

    /// The engine is to go on as if nothing had happened.
    [[nodiscard]] bool isHarmless() const noexcept { return fault.isShort || fault.errorNumber == EINTR; }
    friend void PrintTo(const Trouble& trouble, std::ostream* out) { *out << trouble.name; }
};

constexpr Trouble troubles[] = {
    {"EIO", {EIO, false}, Lasting::once},
    {"ENOSPC", {ENOSPC, false}, Lasting::once},
    {"EACCES", {EACCES, false}, Lasting::once},
    {"ESTALE", {ESTALE, false}, Lasting::once},
    {"EIOFromThenOnOfTheKind", {EIO, false}, Lasting::sameKind},
    {"EACCESFromThenOnOfTheKind", {EACCES, false}, Lasting::sameKind},
    {"EIOFromThenOn", {EIO, false}, Lasting::everything},
    // What is repeated at once cannot be felt: two runs reach every call.
    {"EINTR", {EINTR, false}, Lasting::everyOther},
    {"ShortCount", {0, true}, Lasting::everyOther},
    {"EIORetried", {EIO, false}, Lasting::once, true},
};

class TransferFaultSweep
    : public OnTransferVolumes<::testing::TestWithParam<std::tuple<TransferScenario, Trouble>>,
                               class TransferFaultSweep> {};

TEST_P(TransferFaultSweep, LosesNothingAndTellsTheTruth) {
    const auto& [scenario, trouble] = GetParam();
    const auto undisturbed = [&] {
        const auto stage = volumes->stage(scenario);
        return TransferTrial(scenario, stage).run().overall();
    }();
    const std::vector<ErrorDecision> retries(8, {ErrorChoice::retry, false});
    const int mostCalls = trouble.lasting == Lasting::everyOther ? 2 : 2000;
    constexpr int mostFailures = 5;
    bool wasHit = true;
    int nth = 0, failures = 0;
    while (wasHit && nth < mostCalls && failures < mostFailures) {
        const auto stage = volumes->stage(scenario);
        TransferTrial trial(scenario, stage);
        std::optional<SystemCall::Kind> hit;
        {
            const FaultAt fault(++nth, trouble.fault, trouble.lasting);
            trial.run(trouble.isRetried ? retries : std::vector<ErrorDecision>());
            hit = fault.hit();
        }
        wasHit = hit.has_value();
        auto broken = trial.broken();
        if ((trouble.isHarmless() || !wasHit) && trial.report().overall() != undisturbed)
            broken.push_back("did not end as it does undisturbed");
        EXPECT_THAT(broken, IsEmpty()) << scenario.name << ", call " << nth << " ("
                                       << (hit ? nameOf(*hit) : "none") << "), " << trouble.name << "\n"
                                       << textOf(trial.report());
        if (!broken.empty()) ++failures;
    }
    if (trouble.lasting != Lasting::everyOther) {
        EXPECT_GT(nth, 10);
        EXPECT_FALSE(wasHit);
    }
}

INSTANTIATE_TEST_SUITE_P(All, TransferFaultSweep,
                         ::testing::Combine(::testing::ValuesIn(transferScenarios()),
                                            ::testing::ValuesIn(troubles)),
                         [](const auto& tested) {
                             return std::string(std::get<0>(tested.param).name) + "_" +
                                    std::get<1>(tested.param).name;
                         });

} // namespace
} // namespace ombrel
