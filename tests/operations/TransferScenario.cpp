#include "operations/TransferScenario.h"

#include "base/Text.h"
#include "support/TransferWorld.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace ombrel::testing {
namespace {

using Case = ItemOutcome::Case;
using Kind = FileOperationKind;

constexpr const char* oldContents = "what stood there before";

void makeFile(const TempTree& tree, const std::string& name) {
    tree.file(name, "contents of " + name);
    ::chmod(tree.path(name).c_str(), 0640);
    ::setxattr(tree.path(name).c_str(), "user.origin", "here", 4, 0);
    const struct timespec old[2] = {{1000, 1}, {1'234'567'890, 123'456'789}};
    ::utimensat(AT_FDCWD, tree.path(name).c_str(), old, 0);
}

/// A file, a link, a FIFO, a hole, a folder in a folder.
void makeTree(const TempTree& tree, const std::string& top) {
    tree.folder(top);
    makeFile(tree, top + "/file");
    tree.folder(top + "/sub");
    makeFile(tree, top + "/sub/inner");
    tree.symlink(top + "/link", "sub/inner");
    tree.fifo(top + "/sub/fifo");
    const int sparse = ::open(tree.path(top + "/sparse").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
    (void)!::pwrite(sparse, "end", 3, 20'000);
    ::close(sparse);
}

std::string joined(const std::string& folder, const std::string& name) {
    return folder.empty() ? name : folder + "/" + name;
}

std::string headOf(const std::string& path) {
    const auto slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash);
}

std::string tailOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

bool isAtOrBelow(const std::string& path, const std::string& top) {
    return path == top || path.starts_with(top + "/");
}

void makeSourceFile(const TransferStage& stage) {
    makeFile(stage.from, "item");
}

void makeSourceTree(const TransferStage& stage) {
    makeTree(stage.from, "item");
}

/// Files enough to be copied by two threads, all but the large one and the sparse one.
void makeWideTree(const TransferStage& stage) {
    makeTree(stage.from, "item");
    for (int i = 0; i < 12; ++i)
        makeFile(stage.from, "item/file" + std::to_string(i));
    stage.from.file("item/empty", "");
    stage.from.file("item/large", std::string(70'000, 'x'));
}

void makeFileOverFile(const TransferStage& stage) {
    makeFile(stage.from, "item");
    stage.to.file("target/item", oldContents);
}

void makeTreeOverFile(const TransferStage& stage) {
    makeTree(stage.from, "item");
    stage.to.file("target/item", oldContents);
}

void makeFileOverTree(const TransferStage& stage) {
    makeFile(stage.from, "item");
    stage.to.folder("target/item");
    stage.to.file("target/item/old", oldContents);
}

void makeMerge(const TransferStage& stage) {
    stage.from.folder("item");
    makeFile(stage.from, "item/both");
    makeFile(stage.from, "item/only");
    makeTree(stage.from, "item/tree");
    stage.to.folder("target/item");
    stage.to.file("target/item/both", oldContents);
    stage.to.file("target/item/kept", oldContents);
}

void makeSeveral(const TransferStage& stage) {
    for (const char* name : {"one", "two", "three"})
        makeFile(stage.from, name);
    stage.to.file("target/two", oldContents);
}

const std::vector<TransferPiece> single = {{"item", "target/item"}};
const std::vector<TransferPiece> numbered = {{"item", "target/item (2)"}};
const std::vector<TransferPiece> merged = {
    {"item/both", "target/item/both"}, {"item/only", "target/item/only"}, {"item/tree", "target/item/tree"}};
const std::vector<TransferPiece> several = {
    {"one", "target/one"}, {"two", "target/two"}, {"three", "target/three"}};

std::vector<TransferScenario> allScenarios() {
    using enum ConflictChoice;
    return {
        {"CopyFile", Kind::copy, false, skip, {"item"}, single, makeSourceFile},
        {"CopyTree", Kind::copy, false, skip, {"item"}, single, makeSourceTree},
        {"CopyWideTree", Kind::copy, false, skip, {"item"}, single, makeWideTree},
        {"CopyFileReplacing", Kind::copy, false, replace, {"item"}, single, makeFileOverFile},
        {"CopyTreeReplacingFile", Kind::copy, false, replace, {"item"}, single, makeTreeOverFile},
        {"CopyFileReplacingFolder", Kind::copy, false, replace, {"item"}, single, makeFileOverTree},
        {"CopyMerging", Kind::copy, false, replace, {"item"}, merged, makeMerge},
        {"CopyKeepingBoth", Kind::copy, false, keepBoth, {"item"}, numbered, makeFileOverFile},
        {"CopySkipping", Kind::copy, false, skip, {"item"}, single, makeFileOverFile},
        {"CopyIntoOwnFolder",
         Kind::copy,
         false,
         skip,
         {"item"},
         {{"item", "target/item" + Texts::localized("name.copySuffix")}},
         [](const TransferStage& stage) { makeTree(stage.to, "target/item"); },
         true},
        {"CopySeveral", Kind::copy, false, replace, {"one", "two", "three"}, several, makeSeveral},
        {"MoveFileAcross", Kind::move, true, skip, {"item"}, single, makeSourceFile},
        {"MoveTreeAcross", Kind::move, true, skip, {"item"}, single, makeSourceTree},
        {"MoveAcrossReplacing", Kind::move, true, replace, {"item"}, single, makeFileOverFile},
        {"MoveAcrossReplacingFolder", Kind::move, true, replace, {"item"}, single, makeFileOverTree},
        {"MoveAcrossMerging", Kind::move, true, replace, {"item"}, merged, makeMerge},
        {"MoveAcrossKeepingBoth", Kind::move, true, keepBoth, {"item"}, numbered, makeFileOverFile},
        {"MoveSeveralAcross", Kind::move, true, replace, {"one", "two", "three"}, several, makeSeveral},
        {"MoveTree", Kind::move, false, skip, {"item"}, single, makeSourceTree},
        {"MoveReplacing", Kind::move, false, replace, {"item"}, single, makeFileOverFile},
        {"MoveTreeReplacingFile", Kind::move, false, replace, {"item"}, single, makeTreeOverFile},
        {"MoveReplacingFolder", Kind::move, false, replace, {"item"}, single, makeFileOverTree},
        {"MoveMerging", Kind::move, false, replace, {"item"}, merged, makeMerge},
    };
}

} // namespace

const std::vector<TransferScenario>& transferScenarios() {
    static const std::vector<TransferScenario> all = allScenarios();
    return all;
}

const TransferScenario& transferScenario(const std::string& name) {
    return *std::ranges::find_if(transferScenarios(), [&](const auto& one) { return one.name == name; });
}

std::expected<TransferVolumes, std::string> TransferVolumes::make() {
    TransferVolumes volumes;
    for (auto* volume : {&volumes.first_, &volumes.second_}) {
        auto made = TestMount::tmpfs();
        if (!made) return std::unexpected(made.error());
        *volume = std::move(*made);
    }
    return volumes;
}

TransferTrial::TransferTrial(const TransferScenario& scenario, const TransferStage& stage, Seen seen)
    : scenario_(scenario), stage_(stage), seen_(std::move(seen)) {
    scenario_.make(stage_);
    sourceRoot_ = scenario_.isInOwnFolder ? stage_.to.path("target") : stage_.from.path();
    for (const auto& item : scenario_.items)
        items_.emplace_back(FileReference::sampling(*FileURL::fromPath(given(joined(sourceRoot_, item)))));
    sourcesBefore_ = snapshotOf(sourceRoot_);
    targetsBefore_ = snapshotOf(stage_.to.path());
}

const OperationReport& TransferTrial::run(std::vector<ErrorDecision> errorAnswers) {
    const FileOperationService service{std::make_shared<NoTrash>()};
    answers_.conflictAnswers.assign(8, {scenario_.answer, false});
    answers_.errorAnswers.assign(errorAnswers.begin(), errorAnswers.end());
    report_ = service.transfer(scenario_.kind, items_, *FileURL::fromPath(given(stage_.to.path("target"))),
                               answers_.hooks());
    told_.clear();
    for (const auto& item : report_.items)
        if (item.outcome.error() &&
            item.outcome.error()->which() == FileOperationError::Case::partialCopyLeftBehind)
            told_.insert(item.outcome.error()->name());
    sourcesNow_ = snapshotOf(sourceRoot_);
    targetsNow_ = snapshotOf(stage_.to.path());
    return report_;
}

/// Its own result, or that of the folder it is in.
const ItemResult* TransferTrial::resultOf(const std::string& source) const {
    for (std::string path = source;; path = headOf(path)) {
        for (const auto& item : report_.items)
            if (item.source && item.source->path() == given(joined(sourceRoot_, path))) return &item;
        if (path.find('/') == std::string::npos) return nullptr;
    }
}

/// The source without what the report says was left out of it.
TreeSnapshot TransferTrial::wanted(const TransferPiece& piece) const {
    auto tree = partOf(sourcesBefore_, piece.source);
    for (const auto& item : report_.items) {
        const std::string top = given(joined(sourceRoot_, piece.source)) + "/";
        if (!item.source || !item.source->path().starts_with(top) || item.outcome.which() != Case::failed)
            continue;
        const auto leftOut = item.source->path().substr(top.size());
        std::erase_if(tree, [&](const auto& entry) { return isAtOrBelow(entry.first, leftOut); });
    }
    return tree;
}

bool TransferTrial::isToldAside(const TransferPiece& piece, const TreeSnapshot& old) const {
    return std::ranges::any_of(told_, [&](const std::string& name) {
        return differences(old, partOf(targetsNow_, joined(headOf(piece.target), name))).empty();
    });
}

void TransferTrial::judge(const TransferPiece& piece, std::vector<std::string>& lines) const {
    const auto say = [&](const std::string& what) { lines.push_back(piece.source + ": " + what); };
    const auto source = partOf(sourcesBefore_, piece.source), old = partOf(targetsBefore_, piece.target);
    const auto sourceNow = partOf(sourcesNow_, piece.source), targetNow = partOf(targetsNow_, piece.target);
    const auto unlikeNew = differences(wanted(piece), targetNow, Compare::metadata);
    const bool isNew = !targetNow.empty() && unlikeNew.empty();
    const bool isOld = differences(old, targetNow).empty();
    const bool isKept = differences(source, sourceNow).empty();
    const std::string target = tailOf(piece.target);

    for (const auto& before : source) {
        const auto isAsBefore = [&](const TreeSnapshot& tree) {
            const auto found = tree.find(before.first);
            return found != tree.end() && differences({before}, {*found}, Compare::data).empty();
        };
        if (!isAsBefore(sourceNow) && !isAsBefore(targetNow)) say("lost " + before.first);
    }
    if (!isOld && !isNew) {
        if (!targetNow.empty()) say("neither old nor new at the target: " + unlikeNew.front());
        if (!old.empty() && !isToldAside(piece, old)) say("the old item is not where the report says");
    }

    const ItemResult* result = resultOf(piece.source);
    if (!result) return say("no result");
    switch (result->outcome.which()) {
    case Case::completed:
        if (!isNew) say("completed, but not there: " + (unlikeNew.empty() ? "empty" : unlikeNew.front()));
        if (scenario_.kind == Kind::move && !sourceNow.empty()) say("moved, but still at the source");
        if (scenario_.kind == Kind::copy && !isKept) say("copied, but the source is not as it was");
        break;
    case Case::copiedSourceKept:
        if (!isNew) say("copied, but not there: " + (unlikeNew.empty() ? "empty" : unlikeNew.front()));
        if (sourceNow.empty()) say("source kept, but gone");
        break;
    case Case::failed:
    case Case::skipped:
    case Case::cancelled:
        if (!isKept) say("not done, but the source is not as it was");
        if (!isOld && !told_.contains(target) && !(targetNow.empty() && isToldAside(piece, old)))
            say("not done, but the target is not as it was");
    }
}

/// No names but those that were there, those that were wanted, and those that the report tells of.
void TransferTrial::judgeNames(std::vector<std::string>& lines) const {
    std::set<std::string> found;
    for (const auto& now : targetsNow_) {
        const auto& path = now.first;
        const bool isWanted = std::ranges::any_of(
            scenario_.pieces, [&](const auto& piece) { return isAtOrBelow(path, piece.target); });
        if (isWanted) continue;
        const auto before = targetsBefore_.find(path);
        if (before != targetsBefore_.end()) {
            if (!differences({*before}, {now}, Compare::data).empty())
                lines.push_back(path + " at the destination is not as it was");
            continue;
        }
        const auto staging = std::ranges::find_if(
            told_, [&](const std::string& name) { return path.find("/" + name) != std::string::npos; });
        if (staging == told_.end())
            lines.push_back("left behind untold: " + path);
        else
            found.insert(*staging);
    }
    for (const auto& before : targetsBefore_) {
        const auto& path = before.first;
        if (!targetsNow_.contains(path) && std::ranges::none_of(scenario_.pieces, [&](const auto& piece) {
                return isAtOrBelow(path, piece.target);
            }))
            lines.push_back(path + " at the destination is gone");
    }
    for (const auto& name : told_)
        if (!found.contains(name) && std::ranges::none_of(scenario_.pieces, [&](const auto& piece) {
                return tailOf(piece.target) == name;
            }))
            lines.push_back("told as left behind, but not there: " + name);
    if (!scenario_.isInOwnFolder)
        for (const auto& [path, entry] : sourcesNow_)
            if (!sourcesBefore_.contains(path)) lines.push_back("new at the source: " + path);
}

std::vector<std::string> TransferTrial::broken() const {
    std::vector<std::string> lines;
    for (const auto& piece : scenario_.pieces)
        judge(piece, lines);
    judgeNames(lines);
    return lines;
}

std::string textOf(const OperationReport& report) {
    std::string text;
    for (const auto& item : report.items) {
        text.append(item.source ? item.source->path() : "-").append(": ");
        text.append(rawValue(item.outcome.which()));
        if (item.outcome.error()) {
            const auto& error = *item.outcome.error();
            text.append(" ").append(rawValue(error.which())).append(" ").append(error.name());
            if (error.errorNumber()) text.append(std::to_string(*error.errorNumber()));
        }
        text.append("\n");
    }
    return text;
}

} // namespace ombrel::testing
