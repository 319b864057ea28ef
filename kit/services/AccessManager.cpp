#include "services/AccessManager.h"

#include "base/Log.h"
#include "base/MainThread.h"
#include "base/Text.h"
#include "base/Worker.h"
#include "listing/SystemCall.h"

#include <QPointer>
#include <QThread>
#include <QTimer>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

namespace ombrel {
namespace {

using State = AccessGrant::State;

constexpr std::string_view unavailable = "access.unavailable";
constexpr std::string_view bookmarkInvalid = "access.bookmarkInvalid";
constexpr std::string_view denied = "access.denied";
constexpr std::string_view staleNotRenewable = "access.staleNotRenewable";

int counterOf(std::string_view key) noexcept {
    if (key == denied) return 0;
    return key == unavailable ? 2 : 1;
}

/// The one access to the store on the main thread: what was granted decides what the first window may show.
auto loadAtStart(BookmarkStore& store) {
    const SystemCall::Allowed allowed;
    return store.load();
}

} // namespace

/// What became of one bookmark.
struct AccessManager::Found {
    std::optional<SecurityScopeSystem::Failure> failure = {};
    FileURL url = {};
    bool isStarted = false;
    bool isStale = false;
    std::optional<std::string> renewed = {}; // the fresh bookmark, when a stale one could be made anew
    bool isReadable = false;

    /// Blocking.
    [[nodiscard]] static Found of(SecurityScopeSystem& system, const std::string& bookmark) {
        Found found;
        const auto resolved = system.resolveBookmark(bookmark);
        if (!resolved) {
            found.failure = resolved.error();
            return found;
        }
        found.url = resolved->url;
        found.isStale = resolved->isStale;
        found.isStarted = system.startAccessing(found.url);
        found.isReadable = found.isStarted || system.isReadableDirectory(found.url);
        if (!found.isReadable) return found;
        if (found.isStale) {
            if (auto fresh = system.makeBookmark(found.url)) found.renewed = *std::move(fresh);
            if (!found.renewed) return found;
        }
        found.isReadable = system.isReadableDirectory(found.url);
        return found;
    }
};

/// What became of a folder that the user picked.
struct AccessManager::Picked {
    std::expected<std::string, SecurityScopeSystem::Failure> bookmark =
        std::unexpected(SecurityScopeSystem::Failure{false, "posix", EAGAIN});
    bool isReadable = false;
};

AccessManager::AccessManager(std::shared_ptr<SecurityScopeSystem> system,
                             std::shared_ptr<BookmarkStore> store, QObject* parent)
    : QObject(parent), system_(std::move(system)), store_(std::move(store)), worker_("grants") {}

std::size_t AccessManager::activeScopeCount() const noexcept {
    return static_cast<std::size_t>(
        std::ranges::count_if(grants_, [](const Grant& grant) { return grant->isAccessing(); }));
}

void AccessManager::restore() {
    Q_ASSERT(thread() == QThread::currentThread());
    stopAll();
    while (!searches_.empty())
        endSearch(searches_.begin()->first);
    auto loaded = loadAtStart(*store_);
    if (!loaded) {
        Log::error(Log::Category::access,
                   "bookmark store load failed: " + loaded.error().reason.systemText());
        setStoreError(Text{"access.storeUnreadable"});
    }
    records_ = loaded ? *std::move(loaded) : std::vector<BookmarkRecord>();
    grants_.clear();
    for (const auto& record : records_)
        grants_.push_back(std::make_shared<AccessGrant>(record.id, record.displayName));
    Q_EMIT grantsChanged();
    for (const auto& grant : std::vector(grants_))
        search(grant);
}

void AccessManager::activate(const Grant& grant) {
    Q_ASSERT(thread() == QThread::currentThread());
    search(grant);
}

void AccessManager::retryUnavailable() {
    Q_ASSERT(thread() == QThread::currentThread());
    for (const auto& grant : std::vector(grants_))
        if (grant->state().which == State::Case::unavailable) search(grant);
}

void AccessManager::search(const Grant& grant) {
    const auto* record = recordOf(grant->id());
    if (!record) return;
    const auto [place, isNew] = searches_.try_emplace(grant->id());
    if (!isNew) {
        // A second thread beside one that hangs would only hang too.
        place->second.isToBeRepeated = true;
        return;
    }
    const auto ticket = place->second.ticket = ++lastTicket_;
    beginWork();
    grant->stop(*system_);
    try {
        Worker("grant", [self = QPointer(this), system = system_, id = grant->id(), ticket,
                         bookmark = record->bookmark](std::stop_token) {
            auto found = Found::of(*system, bookmark);
            MainThread::post([self, system, id, ticket, found = std::move(found)] {
                if (self)
                    self->finishSearch(id, ticket, found);
                else if (found.isStarted)
                    system->stopAccessing(found.url);
            });
        }).detach();
    } catch (const std::system_error&) {
        finishSearch(grant->id(), ticket, {.failure = {{true, "posix", EAGAIN}}});
        return;
    }
    QTimer::singleShot(patience_, this, [this, id = grant->id(), ticket] { stopWaiting(id, ticket); });
}

void AccessManager::finishSearch(const QUuid& id, std::uint64_t ticket, const Found& found) {
    const auto place = searches_.find(id);
    const auto grant = grantOf(id);
    if (place == searches_.end() || place->second.ticket != ticket || !grant) {
        if (found.isStarted) system_->stopAccessing(found.url);
        return;
    }
    const bool isToBeRepeated = place->second.isToBeRepeated;
    apply(*grant, found);
    if (isToBeRepeated && grant->state().which == State::Case::unavailable) {
        const bool wasWaitedFor = place->second.isWaitedFor;
        searches_.erase(id);
        search(grant);
        if (wasWaitedFor) endWork();
        return;
    }
    endSearch(id);
}

void AccessManager::stopWaiting(const QUuid& id, std::uint64_t ticket) {
    const auto place = searches_.find(id);
    if (place == searches_.end() || place->second.ticket != ticket || !place->second.isWaitedFor) return;
    place->second.isWaitedFor = false;
    Log::error(Log::Category::access, "no answer for a granted folder");
    if (const auto grant = grantOf(id)) {
        refuse(*grant, State::Case::unavailable, unavailable);
        publish(*grant);
    }
    endWork();
}

void AccessManager::endSearch(const QUuid& id) {
    const auto place = searches_.find(id);
    if (place == searches_.end()) return;
    const bool wasWaitedFor = place->second.isWaitedFor;
    searches_.erase(place);
    if (wasWaitedFor) endWork();
}

void AccessManager::apply(AccessGrant& grant, const Found& found) {
    using enum State::Case;
    if (found.failure) {
        Log::error(Log::Category::access, "bookmark resolution failed: " + found.failure->domain + ' ' +
                                              std::to_string(found.failure->code));
        if (found.failure->isNotThere)
            refuse(grant, State::Case::unavailable, ombrel::unavailable);
        else
            refuse(grant, needsReauthorization, bookmarkInvalid);
        publish(grant);
        return;
    }
    if (!found.isStarted && !found.isReadable) {
        refuse(grant, needsReauthorization, denied);
        publish(grant);
        return;
    }
    using enum AccessGrant::ScopeOwner;
    grant.activate(found.url, found.isStarted ? bookmark : none, found.isStarted);
    if (found.renewed) {
        recordOf(grant.id())->bookmark = *found.renewed;
        persist();
    }
    if (found.isStale && !found.renewed)
        refuse(grant, needsReauthorization, staleNotRenewable);
    else if (!found.isReadable)
        refuse(grant, needsReauthorization, denied);
    publish(grant);
}

void AccessManager::requestAccess(const std::optional<FileURL>& startingAt, std::string_view messageKey,
                                  const Grant& replacing, std::function<void(Grant)> done) {
    Q_ASSERT(thread() == QThread::currentThread());
    if (!done) done = [](const Grant&) {};
    if (!picker_) {
        done(nullptr);
        return;
    }
    const auto message = Texts::localized(messageKey.empty() ? "access.panel.message" : messageKey);
    picker_->pickFolder(
        {startingAt, message, Texts::localized("access.panel.prompt")},
        [self = QPointer(this), replacing, done = std::move(done)](std::optional<FileURL> url) {
            if (!self || !url) {
                done(nullptr);
                return;
            }
            self->addGrant(*url, replacing, [self, done](const Granted& granted) {
                if (!granted && self && self->picker_)
                    self->picker_->showFailure(
                        self->lastAccessError().value_or(Text{"access.bookmarkCreationFailed"}).localized());
                done(granted.value_or(nullptr));
            });
        });
}

void AccessManager::addGrant(const FileURL& url, const Grant& replacing, std::function<void(Granted)> done) {
    Q_ASSERT(thread() == QThread::currentThread());
    beginWork();
    auto answer = [self = QPointer(this), system = system_, url, replacing,
                   done = std::move(done)](const Picked& picked) {
        if (!self) {
            system->stopAccessing(url);
            return;
        }
        done(self->finishGrant(url, replacing, picked));
        if (self) self->endWork();
    };
    if (activeGrantOf(url)) {
        MainThread::post([answer = std::move(answer)] { answer({}); });
        return;
    }
    try {
        Worker("grant", [system = system_, url, answer](std::stop_token) {
            Picked picked{system->makeBookmark(url), false};
            if (picked.bookmark) picked.isReadable = system->isReadableDirectory(url);
            MainThread::post([answer, picked = std::move(picked)] { answer(picked); });
        }).detach();
    } catch (const std::system_error&) {
        MainThread::post([answer = std::move(answer)] { answer({}); });
    }
}

AccessManager::Granted AccessManager::finishGrant(const FileURL& url, const Grant& replacing,
                                                  const Picked& picked) {
    if (auto active = activeGrantOf(url)) {
        system_->stopAccessing(url);
        return active;
    }
    if (!picked.bookmark) {
        system_->stopAccessing(url);
        Log::error(Log::Category::access, "bookmark creation failed: " + picked.bookmark.error().domain +
                                              ' ' + std::to_string(picked.bookmark.error().code));
        setAccessError(Text{"access.bookmarkCreationFailed"});
        return std::unexpected(AccessError::bookmarkCreationFailed);
    }
    for (const auto& grant : grantsOf(url))
        drop(*grant);
    if (replacing) drop(*replacing);
    auto grant = append(url, picked);
    persist();
    Q_EMIT grantsChanged();
    return grant;
}

AccessManager::Grant AccessManager::append(const FileURL& url, const Picked& picked) {
    const auto now = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    BookmarkRecord record{QUuid::createUuid(), *picked.bookmark, AccessGrant::displayName(url), now};
    auto grant = std::make_shared<AccessGrant>(record.id, record.displayName);
    grant->activate(url, AccessGrant::ScopeOwner::openPanel, true);
    if (!picked.isReadable) refuse(*grant, State::Case::needsReauthorization, denied);
    records_.push_back(std::move(record));
    grants_.push_back(grant);
    return grant;
}

void AccessManager::remove(const Grant& grant) {
    Q_ASSERT(thread() == QThread::currentThread());
    drop(*grant);
    persist();
    Q_EMIT grantsChanged();
}

void AccessManager::persist() {
    beginWork();
    worker_.run([self = QPointer(this), store = store_, records = records_] {
        const auto saved = store->save(records);
        if (!saved)
            Log::error(Log::Category::access,
                       "bookmark store save failed: " + saved.error().reason.systemText());
        MainThread::post([self, isSaved = saved.has_value()] {
            if (!self) return;
            self->setStoreError(isSaved ? std::nullopt : std::optional(Text{"access.storeFailed"}));
            self->endWork();
        });
    });
}

AccessManager::Grant AccessManager::grantCovering(const FileURL& url) const {
    const auto target = url.standardized();
    Grant best;
    for (const auto& grant : grants_) {
        if (!grant->isActive() || !grant->url() || !target.isWithin(grant->url()->standardized())) continue;
        if (!best || grant->url()->path().size() > best->url()->path().size()) best = grant;
    }
    return best;
}

void AccessManager::stopAll() {
    for (const auto& grant : grants_)
        grant->stop(*system_);
}

AccessManager::Grant AccessManager::grantOf(const QUuid& id) const {
    const auto found = std::ranges::find(grants_, id, [](const Grant& grant) { return grant->id(); });
    return found == grants_.end() ? nullptr : *found;
}

BookmarkRecord* AccessManager::recordOf(const QUuid& id) {
    const auto found = std::ranges::find(records_, id, &BookmarkRecord::id);
    return found == records_.end() ? nullptr : &*found;
}

std::vector<AccessManager::Grant> AccessManager::grantsOf(const FileURL& url) const {
    const auto target = url.standardized();
    std::vector<Grant> found;
    std::ranges::copy_if(grants_, std::back_inserter(found), [&](const Grant& grant) {
        return grant->url() && grant->url()->standardized() == target;
    });
    return found;
}

AccessManager::Grant AccessManager::activeGrantOf(const FileURL& url) const {
    const auto same = grantsOf(url);
    const auto active = std::ranges::find_if(same, [](const Grant& grant) { return grant->isActive(); });
    return active == same.end() ? nullptr : *active;
}

/// The list is saved and published by the caller.
void AccessManager::drop(AccessGrant& grant) {
    const auto id = grant.id();
    grant.stop(*system_);
    endSearch(id);
    std::erase_if(records_, [&](const BookmarkRecord& record) { return record.id == id; });
    std::erase_if(grants_, [&](const Grant& each) { return each->id() == id; });
}

/// Published by the caller, so that nobody sees a state on the way to another.
void AccessManager::refuse(AccessGrant& grant, State::Case state, std::string_view key) {
    grant.state_ = {state, key};
    grant.stop(*system_);
    if (telemetry_) telemetry_(counterOf(key));
}

void AccessManager::publish(AccessGrant& grant) {
    Q_EMIT grant.changed();
    Q_EMIT grantsChanged();
}

void AccessManager::setStoreError(std::optional<Text> message) {
    if (message == lastStoreError_) return;
    lastStoreError_ = std::move(message);
    Q_EMIT lastStoreErrorChanged();
}

void AccessManager::setAccessError(std::optional<Text> message) {
    lastAccessError_ = std::move(message);
    Q_EMIT lastAccessErrorChanged();
}

void AccessManager::endWork() {
    if (--underWay_ == 0) Q_EMIT settled();
}

} // namespace ombrel
