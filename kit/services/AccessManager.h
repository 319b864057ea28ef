#pragma once

#include "base/SerialWorker.h"
#include "base/Text.h"
#include "services/AccessGrant.h"
#include "services/BookmarkStore.h"
#include "services/FolderPicker.h"
#include "services/SecurityScopeSystem.h"

#include <QObject>
#include <QUuid>

#include <chrono>
#include <cstdint>
#include <expected>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ombrel {

/// The folders that the user has granted: keeps them across starts, finds them again, and knows which of them
/// covers a path.
///
/// Main thread only. Whatever touches a folder or the store runs on workers, one for each folder that is
/// looked for, so that a dead mount holds up nothing else; what they find is applied here. A grant whose
/// folder does not answer within `patience` is unavailable until it does.
class AccessManager final : public QObject {
    Q_OBJECT

public:
    enum class AccessError : std::uint8_t { userCancelled, bookmarkCreationFailed, storeFailed };
    using Grant = std::shared_ptr<AccessGrant>;
    using Granted = std::expected<Grant, AccessError>;
    /// Counts one failure: 0 access denied, 1 bookmark unusable, 2 folder not there.
    using Telemetry = std::function<void(int counter)>;

    AccessManager(std::shared_ptr<SecurityScopeSystem> system, std::shared_ptr<BookmarkStore> store,
                  QObject* parent = nullptr);

    void setTelemetry(Telemetry count) { telemetry_ = std::move(count); }
    /// The dialog that `requestAccess` uses; it must outlive the manager or be taken away (nullptr).
    void setFolderPicker(FolderPicker* picker) noexcept { picker_ = picker; }
    /// Five seconds at first.
    void setPatience(std::chrono::milliseconds patience) noexcept { patience_ = patience; }

    /// In the order in which they were added.
    [[nodiscard]] const std::vector<Grant>& grants() const noexcept { return grants_; }
    /// One for each grant, in the same order.
    [[nodiscard]] const std::vector<BookmarkRecord>& records() const noexcept { return records_; }
    /// Why the list could not be loaded or saved the last time; cleared by a successful save.
    [[nodiscard]] const std::optional<Text>& lastStoreError() const noexcept { return lastStoreError_; }
    /// Why the last folder could not be granted.
    [[nodiscard]] const std::optional<Text>& lastAccessError() const noexcept { return lastAccessError_; }
    [[nodiscard]] std::size_t activeScopeCount() const noexcept;
    /// Whether a folder is being looked for or the list is being saved.
    [[nodiscard]] bool isBusy() const noexcept { return underWay_ > 0; }

    /// Loads the list, blocking, and begins to look for each folder. The grants are published as unavailable,
    /// without a message, and each becomes what it is when its folder was found or not.
    void restore();
    /// Looks for the folder of every grant that is unavailable.
    void retryUnavailable();
    /// Looks for the folder of one grant again.
    void activate(const Grant& grant);

    /// Lets the user pick a folder and grants it. `messageKey` of the text that says what for; `done` is
    /// called with nothing when the user cancelled or the folder could not be granted, which the user has
    /// been told then.
    void requestAccess(const std::optional<FileURL>& startingAt, std::string_view messageKey,
                       const Grant& replacing, std::function<void(Grant)> done);
    /// Grants a folder that the user picked. A grant of it that is active already is answered instead; those
    /// of it that are not, and `replacing`, are replaced. A picked folder that still cannot be read becomes a
    /// grant that needs reauthorization. `done` is called later, unless the manager goes before.
    void addGrant(const FileURL& url, const Grant& replacing, std::function<void(Granted)> done);
    void remove(const Grant& grant);
    /// Saves the list, soon.
    void persist();

    /// The active grant with the longest path that `url` equals or lies below; empty when there is none.
    [[nodiscard]] Grant grantCovering(const FileURL& url) const;
    /// Gives all scopes back; when the program ends.
    void stopAll();

Q_SIGNALS:
    /// A grant came or went, or one of them changed.
    void grantsChanged();
    void lastStoreErrorChanged();
    void lastAccessErrorChanged();
    /// `isBusy` has become false.
    void settled();

private:
    /// A folder that is being looked for.
    struct Search {
        std::uint64_t ticket = 0;
        bool isWaitedFor = true;
        bool isToBeRepeated = false; // it was asked for again meanwhile
    };
    struct Found;
    struct Picked;

    void search(const Grant& grant);
    void finishSearch(const QUuid& id, std::uint64_t ticket, const Found& found);
    void stopWaiting(const QUuid& id, std::uint64_t ticket);
    void endSearch(const QUuid& id);
    void apply(AccessGrant& grant, const Found& found);
    [[nodiscard]] Granted finishGrant(const FileURL& url, const Grant& replacing, const Picked& picked);
    Grant append(const FileURL& url, const Picked& picked);

    [[nodiscard]] Grant grantOf(const QUuid& id) const;
    [[nodiscard]] BookmarkRecord* recordOf(const QUuid& id);
    [[nodiscard]] std::vector<Grant> grantsOf(const FileURL& url) const;
    [[nodiscard]] Grant activeGrantOf(const FileURL& url) const;
    void drop(AccessGrant& grant);
    void refuse(AccessGrant& grant, AccessGrant::State::Case state, std::string_view key);
    void publish(AccessGrant& grant);
    void setStoreError(std::optional<Text> message);
    void setAccessError(std::optional<Text> message);
    void beginWork() { ++underWay_; }
    void endWork();

    std::shared_ptr<SecurityScopeSystem> system_;
    std::shared_ptr<BookmarkStore> store_;
    Telemetry telemetry_;
    FolderPicker* picker_ = nullptr;
    std::chrono::milliseconds patience_ = std::chrono::seconds(5);

    std::vector<Grant> grants_;
    std::vector<BookmarkRecord> records_;
    std::optional<Text> lastStoreError_;
    std::optional<Text> lastAccessError_;
    std::map<QUuid, Search> searches_; // under way, by grant
    std::uint64_t lastTicket_ = 0;
    int underWay_ = 0;
    SerialWorker worker_;
};

} // namespace ombrel
