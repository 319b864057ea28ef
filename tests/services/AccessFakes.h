#pragma once

#include "services/BookmarkStore.h"
#include "services/FolderPicker.h"
#include "services/SecurityScopeSystem.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ombrel::testing {

/// A system whose bookmarks are "bookmark of <path>" and whose answers a test chooses. It writes down the
/// calls.
class ScriptedScopes final : public SecurityScopeSystem {
public:
    bool startAccessing(const FileURL& url) override {
        const std::scoped_lock lock(mutex_);
        calls_.push_back("start " + url.path());
        if (refused.contains(url.path())) return false;
        ++open_[url.path()];
        return true;
    }
    void stopAccessing(const FileURL& url) override {
        const std::scoped_lock lock(mutex_);
        calls_.push_back("stop " + url.path());
        --open_[url.path()];
    }
    std::expected<std::string, Failure> makeBookmark(const FileURL& url) override {
        const std::scoped_lock lock(mutex_);
        calls_.push_back("make " + url.path());
        if (unmakeable.contains(url.path())) return std::unexpected(Failure{false, "posix", 5});
        return "bookmark of " + url.path();
    }
    std::expected<Resolved, Failure> resolveBookmark(const std::string& bookmark) override {
        std::unique_lock lock(mutex_);
        const auto path = bookmark.substr(std::string("bookmark of ").size());
        changed_.wait(lock, [&] { return !hanging_.contains(path); });
        calls_.push_back("resolve " + path);
        if (const auto failure = failures.find(path); failure != failures.end())
            return std::unexpected(failure->second);
        const auto moved = movedTo.find(path);
        return Resolved{*FileURL::fromPath(moved == movedTo.end() ? path : moved->second),
                        moved != movedTo.end()};
    }
    bool isReadableDirectory(const FileURL& url) override {
        const std::scoped_lock lock(mutex_);
        calls_.push_back("read " + url.path());
        return !unreadable.contains(url.path());
    }

    /// From now on resolving the bookmark of `path` hangs, or goes on.
    void hang(const std::string& path, bool hangs) {
        const std::scoped_lock lock(mutex_);
        if (hangs)
            hanging_.insert(path);
        else
            hanging_.erase(path);
        changed_.notify_all();
    }
    [[nodiscard]] std::vector<std::string> takeCalls() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(calls_, {});
    }
    /// Scopes started and not stopped; -1 for one that was stopped once too often (as one that came with a
    /// picked folder is).
    [[nodiscard]] int openScopes(const std::string& path) {
        const std::scoped_lock lock(mutex_);
        return open_[path];
    }

    std::set<std::string> refused;              ///< scopes that do not start
    std::set<std::string> unreadable;           ///< folders
    std::set<std::string> unmakeable;           ///< bookmarks
    std::map<std::string, Failure> failures;    ///< of resolving
    std::map<std::string, std::string> movedTo; ///< resolved elsewhere, and stale

private:
    std::mutex mutex_; // guards everything below
    std::condition_variable changed_;
    std::set<std::string> hanging_;
    std::vector<std::string> calls_;
    std::map<std::string, int> open_;
};

/// Keeps records in memory.
class MemoryStore final : public BookmarkStore {
public:
    std::expected<std::vector<BookmarkRecord>, Failure> load() override {
        const std::scoped_lock lock(mutex_);
        if (loadFault) return std::unexpected(Failure{*loadFault});
        return records_;
    }
    std::expected<void, Failure> save(const std::vector<BookmarkRecord>& records) override {
        const std::scoped_lock lock(mutex_);
        if (saveFault) return std::unexpected(Failure{*saveFault});
        records_ = records;
        ++saves_;
        return {};
    }
    [[nodiscard]] std::vector<BookmarkRecord> records() {
        const std::scoped_lock lock(mutex_);
        return records_;
    }
    [[nodiscard]] int saves() {
        const std::scoped_lock lock(mutex_);
        return saves_;
    }
    /// A record of the folder at `path`.
    void add(const std::string& path) {
        const std::scoped_lock lock(mutex_);
        records_.push_back({QUuid::createUuid(), "bookmark of " + path, "stored name", {}});
    }

    std::optional<Fault> loadFault;
    std::optional<Fault> saveFault;

private:
    std::mutex mutex_; // guards what follows
    std::vector<BookmarkRecord> records_;
    int saves_ = 0;
};

/// Picks what the test says.
class ScriptedPicker final : public FolderPicker {
public:
    void pickFolder(const Request& request, std::function<void(std::optional<FileURL>)> done) override {
        requests.push_back(request);
        done(answer);
    }
    void showFailure(const std::string& message) override { failures.push_back(message); }

    std::optional<FileURL> answer;
    std::vector<Request> requests;
    std::vector<std::string> failures;
};

} // namespace ombrel::testing
