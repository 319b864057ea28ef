#include "base/FileName.h"
#include "base/RawValue.h"
#include "cli/Commands.h"
#include "cli/JSONObject.h"
#include "cli/Location.h"
#include "cli/MainLoop.h"
#include "cli/Output.h"
#include "services/AccessManager.h"
#include "services/FileBookmarkStore.h"
#include "services/SystemSecurityScope.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>

namespace ombrel::cli {
namespace {

using Grant = AccessManager::Grant;

std::string textOf(const QUuid& id) {
    return id.toString(QUuid::WithoutBraces).toUpper().toStdString();
}

/// The stored grants, looked for, and what is done with them.
class Grants {
public:
    Grants(const Arguments& arguments, const Session& session)
        : arguments_(arguments), session_(session), output_(session.output),
          store_(std::make_shared<FileBookmarkStore>()),
          manager_(std::make_shared<SystemSecurityScope>(), store_) {}

    /// False when Ctrl+C came first.
    [[nodiscard]] bool load() {
        manager_.restore();
        tellStoreError();
        for (const auto& record : manager_.records())
            if (const auto bookmark = BookmarkData::decoded(record.bookmark))
                storedPaths_[record.id] = bookmark->path;
        return settle();
    }

    void list() {
        for (const auto& grant : manager_.grants())
            print(grant);
    }

    /// Tells of each that cannot be used.
    void resolve(const std::vector<Grant>& grants) {
        for (const auto& grant : grants) {
            print(grant);
            if (!grant->isActive()) output_.failed(pathOf(grant), {grant->state().messageKey});
        }
    }

    [[nodiscard]] ExitStatus add(const std::vector<FileURL>& folders) {
        for (const auto& folder : folders) {
            std::optional<AccessManager::Granted> granted;
            manager_.addGrant(folder.marked(FileURL::Mark::directory), nullptr,
                              [&](AccessManager::Granted result) { granted = std::move(result); });
            if (!runUntil([&] { return granted.has_value(); }, session_.stop)) return ExitStatus::interrupted;
            if (!*granted) {
                output_.failed(folder.path(), {"access.bookmarkCreationFailed"});
                continue;
            }
            print(**granted);
            if (!(**granted)->isActive()) output_.failed(folder.path(), {(**granted)->state().messageKey});
        }
        return save();
    }

    [[nodiscard]] ExitStatus remove(const std::vector<Grant>& grants) {
        for (const auto& grant : grants)
            manager_.remove(grant);
        return save();
    }

    /// Those that the operands behind the verb name, by identifier or folder; tells which names none.
    [[nodiscard]] std::vector<Grant> named() {
        std::vector<Grant> found;
        for (const auto word : std::span(arguments_.operands()).subspan(1)) {
            const auto folder = locationOf(word);
            const auto place = std::ranges::find_if(manager_.grants(), [&](const Grant& grant) {
                return FileName::loweredASCII(word) == FileName::loweredASCII(textOf(grant->id())) ||
                       (folder && pathOf(grant) == folder->standardized().path());
            });
            if (place == manager_.grants().end())
                output_.failed(word, {"cli.grants.unknown"});
            else
                found.push_back(*place);
        }
        return found;
    }

    [[nodiscard]] const std::vector<Grant>& all() const { return manager_.grants(); }

private:
    [[nodiscard]] bool settle() {
        return runUntil([&] { return !manager_.isBusy(); }, session_.stop);
    }

    [[nodiscard]] ExitStatus save() {
        // What was begun reaches the disk also after Ctrl+C.
        (void)runUntil([&] { return !manager_.isBusy(); }, {});
        tellStoreError();
        return ExitStatus::success;
    }

    void tellStoreError() {
        if (const auto& error = manager_.lastStoreError()) output_.failed(store_->fileURL().path(), *error);
    }

    /// Where it is, or where it was when it was last found; empty when not even that can be read.
    [[nodiscard]] std::string pathOf(const Grant& grant) const {
        if (grant->url()) return grant->url()->path();
        const auto stored = storedPaths_.find(grant->id());
        return stored == storedPaths_.end() ? std::string() : stored->second.path();
    }

    void print(const Grant& grant) {
        const auto state = rawValue(grant->state().which);
        if (!arguments_.has("json")) {
            output_.write(std::string(state) + '\t' + textOf(grant->id()) + '\t' + pathOf(grant));
            output_.write({arguments_.has("0") ? "\0" : "\n", 1});
            return;
        }
        JSONObject object;
        object.add("id", textOf(grant->id()));
        object.add("state", state);
        object.add("name", grant->displayName());
        object.addBytes("path", pathOf(grant));
        if (const auto stored = storedPaths_.find(grant->id()); stored != storedPaths_.end())
            object.addBytes("storedPath", stored->second.path());
        object.add("message", grant->state().message());
        const auto record = std::ranges::find(manager_.records(), grant->id(), &BookmarkRecord::id);
        if (record != manager_.records().end())
            object.add("added",
                       std::chrono::floor<std::chrono::seconds>(record->addedAt).time_since_epoch().count());
        output_.write(std::move(object).line());
    }

    const Arguments& arguments_;
    const Session& session_;
    Output& output_;
    std::shared_ptr<FileBookmarkStore> store_;
    AccessManager manager_;
    std::map<QUuid, FileURL> storedPaths_; // before they were looked for
};

ExitStatus runGrants(const Arguments& arguments, const Session& session) {
    auto& output = session.output;
    const auto& operands = arguments.operands();
    const auto verb = operands.front();
    const bool isAdd = verb == "add", isRemove = verb == "remove", isResolve = verb == "resolve";
    if (verb != "list" && !isAdd && !isRemove && !isResolve)
        return output.wrongUsage(
            {"cli.error.unknownVerb", {FileName::displayText(verb), "list, add, remove, resolve"}},
            &grantsCommand);
    if ((isAdd || isRemove) && operands.size() < 2)
        return output.wrongUsage({"cli.error.missingOperand", {"FOLDER"}}, &grantsCommand);
    if (verb == "list" && operands.size() > 1)
        return output.wrongUsage({"cli.error.tooManyOperands", {FileName::displayText(operands[1])}},
                                 &grantsCommand);
    const auto folders =
        locationsOf(isAdd ? std::span(operands).subspan(1) : std::span<const std::string_view>());
    if (!folders) return output.wrongUsage(folders.error(), &grantsCommand);
    Grants grants(arguments, session);
    if (!grants.load()) return ExitStatus::interrupted;
    if (isAdd) return grants.add(*folders);
    if (isRemove) return grants.remove(grants.named());
    if (isResolve)
        grants.resolve(operands.size() > 1 ? grants.named() : grants.all());
    else
        grants.list();
    return ExitStatus::success;
}

} // namespace

const Command grantsCommand = {
    .name = "grants",
    .summaryKey = "cli.grants.summary",
    .operands = "list | add FOLDER… | remove FOLDER… | resolve [FOLDER…]",
    .fewestOperands = 1,
    .mostOperands = std::numeric_limits<std::size_t>::max(),
    .options = {},
    .run = runGrants,
};

} // namespace ombrel::cli
