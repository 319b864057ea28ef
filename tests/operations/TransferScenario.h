#pragma once

#include "operations/FileOperationService.h"
#include "operations/TransferItem.h"
#include "support/ScriptedAnswers.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/TreeSnapshot.h"

#include <gtest/gtest.h>

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ombrel::testing {

/// The folders that a scenario plays in: `from` and `to` on one volume or on two, `to` with a folder
/// "target".
struct TransferStage {
    TempTree from;
    TempTree to;
    TransferStage(const std::string& fromVolume, const std::string& toVolume)
        : from(fromVolume), to(toVolume) {
        to.folder("target");
    }
};

/// One source, or one entry of a folder that is merged, and the place it is to get.
struct TransferPiece {
    std::string source; ///< below `from`
    std::string target; ///< below `to`
};

/// A small transfer, told so that its end can be judged whatever happened on the way.
struct TransferScenario {
    const char* name;
    FileOperationKind kind;
    bool isAcross; ///< between two volumes
    ConflictChoice answer;
    std::vector<std::string> items; ///< below `from`
    std::vector<TransferPiece> pieces;
    std::function<void(const TransferStage&)> make;
    /// The destination folder is the one that holds the source.
    bool isInOwnFolder = false;

    friend void PrintTo(const TransferScenario& scenario, std::ostream* out) { *out << scenario.name; }
};

[[nodiscard]] const std::vector<TransferScenario>& transferScenarios();
[[nodiscard]] const TransferScenario& transferScenario(const std::string& name);

/// The volumes that scenarios use: two that are in memory, made by the test.
class TransferVolumes {
public:
    /// The error is a reason for GTEST_SKIP.
    [[nodiscard]] static std::expected<TransferVolumes, std::string> make();

    [[nodiscard]] TransferStage stage(const TransferScenario& scenario) const {
        return {(scenario.isAcross ? first_ : second_)->path(), second_->path()};
    }

private:
    std::unique_ptr<TestMount> first_, second_;
};

/// A fixture over volumes that all tests of one suite share; skips them where none can be made. `Base` is the
/// fixture to build on, `Suite` the fixture itself.
template <typename Base, typename Suite>
class OnTransferVolumes : public Base {
protected:
    static inline std::optional<TransferVolumes> volumes;
    static inline std::string reason;

    static void SetUpTestSuite() {
        auto made = TransferVolumes::make();
        if (made)
            volumes = std::move(*made);
        else
            reason = made.error();
    }
    static void TearDownTestSuite() { volumes.reset(); }
    void SetUp() override {
        if (!volumes) GTEST_SKIP() << reason;
    }
};

/// One run of a scenario: what there was before, then what the report and the disk say.
class TransferTrial {
public:
    /// `seen` turns a path into the one that the transfer is given: for stages that it reaches by another
    /// mount than the test.
    using Seen = std::function<std::string(const std::string&)>;
    TransferTrial(const TransferScenario& scenario, const TransferStage& stage, Seen seen = {});

    /// `errorAnswers` are given to the first errors; the others are answered with `skip`.
    const OperationReport& run(std::vector<ErrorDecision> errorAnswers = {});

    /// Names that the report says were left behind.
    [[nodiscard]] const std::set<std::string>& told() const { return told_; }
    /// Conflicts that were asked about so far.
    [[nodiscard]] std::size_t questions() const { return answers_.conflicts.size(); }

    /// One line for each promise that was broken; empty when all were kept.
    [[nodiscard]] std::vector<std::string> broken() const;

    [[nodiscard]] const OperationReport& report() const { return report_; }

private:
    void judge(const TransferPiece& piece, std::vector<std::string>& lines) const;
    void judgeNames(std::vector<std::string>& lines) const;
    [[nodiscard]] std::string given(const std::string& path) const { return seen_ ? seen_(path) : path; }
    [[nodiscard]] const ItemResult* resultOf(const std::string& source) const;
    [[nodiscard]] TreeSnapshot wanted(const TransferPiece& piece) const;
    [[nodiscard]] bool isToldAside(const TransferPiece& piece, const TreeSnapshot& old) const;

    const TransferScenario& scenario_;
    const TransferStage& stage_;
    Seen seen_;
    std::string sourceRoot_; // of `from`, or the destination when that is the source's own folder
    std::vector<TransferItem> items_;
    ScriptedAnswers answers_;
    TreeSnapshot sourcesBefore_, targetsBefore_, sourcesNow_, targetsNow_;
    OperationReport report_{FileOperationKind::copy, {}};
    std::set<std::string> told_;
};

/// The report in one line for each result.
[[nodiscard]] std::string textOf(const OperationReport& report);

} // namespace ombrel::testing
