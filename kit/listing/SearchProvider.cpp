#include "listing/SearchProvider.h"

#include "base/OwnedFd.h"
#include "listing/EntryReader.h"
#include "listing/FileItem.h"
#include "listing/FileVisibility.h"
#include "listing/FolderScouts.h"
#include "listing/HiddenNames.h"
#include "listing/ItemBlockBuilder.h"
#include "listing/NameMatcher.h"
#include "listing/POSIX.h"

#include <dirent.h>
#include <fcntl.h>

#include <chrono>
#include <deque>
#include <memory>
#include <optional>
#include <system_error>

// The walk keeps the names of the folders still to be read, grouped by the folder they lie in. A folder is
// opened by its name in the open parent, without following links, so that nothing that is renamed or swapped
// meanwhile leads the walk elsewhere. Parents stay open while they wait as long as there are few; the others
// are opened again, name by name from the folder where the search began.

namespace ombrel::SearchProvider {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t fullBatch = 200;
constexpr std::chrono::milliseconds longestWait{150};
constexpr std::size_t mostOpenParents = 16;
constexpr std::uint32_t entriesBetweenLooks = 512;
constexpr int folderFlags = O_RDONLY | O_DIRECTORY | O_NONBLOCK;

/// Sub-folders of one folder that wait to be read.
struct Group {
    FileURL parent;
    OwnedFd folder;    // the parent, when it stayed open
    std::string names; // each ends in NUL
};

class Walk {
public:
    Walk(const SearchRequest& request, const std::function<void(FileItemList)>& emit, std::stop_token stop)
        : request_(request), emit_(emit), stop_(std::move(stop)), matcher_(request.text) {}

    Ending run();

private:
    std::expected<void, POSIXFailure> read(OwnedFd folder, const FileURL& parent, std::string_view name);
    void readGroup(Group group);
    void moveScouts(const Group& group, const char* rest);
    void take(const POSIX::DirectoryEntry& entry);
    void addMatch(const POSIX::DirectoryEntry& entry);
    void keepSubfolders(OwnedFd folder);

    POSIX::Result<OwnedFd> open(const Group& group, std::string_view name);
    void closeParents();

    void closeBlock();
    void emitIfDue();
    void emit();

    bool isOver() const { return stop_.stop_requested() || matchCount_ >= resultLimit; }
    const FileURL& url();
    const HiddenNames& hidden();

    const SearchRequest& request_;
    const std::function<void(FileItemList)>& emit_;
    const std::stop_token stop_;
    NameMatcher matcher_;
    EntryReader reader_;
    OwnedFd top_;
    std::deque<Group> groups_;
    std::size_t openParents_ = 0;
    FolderScouts scouts_;

    // The folder that is being read.
    int folder_ = -1;
    const FileURL* parent_ = nullptr;
    std::string_view name_; // empty for the top
    std::string path_;
    std::optional<FileURL> url_;
    std::optional<HiddenNames> hidden_;
    bool mayHideNames_ = true; // false once it is known that the folder holds no ".hidden"
    bool sawHiddenList_ = false;
    std::optional<ItemBlockBuilder> block_;
    std::string subfolders_;
    std::uint32_t entriesSinceLook_ = 0;

    FileItemList::Blocks batch_;
    std::size_t batchSize_ = 0;
    std::size_t matchCount_ = 0;
    Clock::time_point mark_ = Clock::now();
};

Ending Walk::run() {
    auto top = POSIX::open(request_.folder, folderFlags);
    if (!top) return std::unexpected(DirectoryError::from(top.error().number));
    if (auto another = POSIX::open({top->get(), "."}, folderFlags)) top_ = std::move(*another);
    const auto outcome = read(std::move(*top), request_.folder, {});
    while (!groups_.empty() && !isOver()) {
        Group group = std::move(groups_.front());
        groups_.pop_front();
        readGroup(std::move(group));
    }
    if (stop_.stop_requested()) return std::unexpected(Stopped<DirectoryError>::cancelled());
    emit();
    if (!outcome) return std::unexpected(DirectoryError::from(outcome.error().number));
    return {};
}

void Walk::readGroup(Group group) {
    if (group.folder) --openParents_;
    for (const char* name = group.names.data(); name < group.names.data() + group.names.size();) {
        if (isOver()) return;
        const std::string_view text(name);
        moveScouts(group, name);
        auto folder = open(group, text);
        const bool isShort = !folder && (folder.error().number == EMFILE || folder.error().number == ENFILE);
        if (isShort) {
            closeParents();
            folder = open(group, text);
        }
        if (folder) (void)read(std::move(*folder), group.parent, text);
        name += text.size() + 1;
    }
}

/// `rest` is where the names of the group that are still to be read begin.
void Walk::moveScouts(const Group& group, const char* rest) {
    if (!scouts_.areOut() && scouts_.areWanted()) {
        scouts_.sendOut();
        scouts_.announce(group.parent,
                         group.names.substr(static_cast<std::size_t>(rest - group.names.data())));
        for (const Group& later : groups_)
            scouts_.announce(later.parent, later.names);
    }
    if (scouts_.areOut()) scouts_.advance();
}

std::expected<void, POSIXFailure> Walk::read(OwnedFd folder, const FileURL& parent, std::string_view name) {
    folder_ = folder.get();
    parent_ = &parent;
    name_ = name;
    url_.reset();
    hidden_.reset();
    mayHideNames_ = true;
    sawHiddenList_ = false;
    reader_.begin(folder_);
    std::expected<void, POSIXFailure> outcome;
    while (!isOver()) {
        const auto entry = reader_.next();
        if (!entry) outcome = std::unexpected(entry.error());
        if (entry && !*entry) mayHideNames_ = sawHiddenList_;
        if (!entry || !*entry) break;
        take(**entry);
    }
    closeBlock();
    emitIfDue();
    if (!subfolders_.empty()) keepSubfolders(std::move(folder));
    return outcome;
}

void Walk::take(const POSIX::DirectoryEntry& entry) {
    if (++entriesSinceLook_ == entriesBetweenLooks) emitIfDue();
    if (entry.name.front() == '.') {
        if (entry.name == ".hidden") sawHiddenList_ = true;
        if (!request_.includesHidden) return;
    }
    const bool isMatch = matcher_.matches(entry.name);
    bool isFolder = entry.type == DT_DIR;
    if (entry.type == DT_UNKNOWN) {
        const auto status = POSIX::lstat({folder_, entry.name.data()});
        isFolder = status && status->isDirectory();
        emitIfDue();
    }
    if (!isMatch && !isFolder) return;
    if (!request_.includesProtected && FileVisibility::isProtectedSystemItem(entry.name)) return;
    if (!request_.includesHidden && hidden().contains(entry.name)) return;
    if (isMatch) addMatch(entry);
    if (isFolder && !FileItem::isPackageName(entry.name)) subfolders_.append(entry.name).push_back('\0');
}

void Walk::addMatch(const POSIX::DirectoryEntry& entry) {
    constexpr std::size_t usualMatches = 4;
    if (!block_) block_.emplace(url(), request_.generation, usualMatches);
    block_->examine({folder_, entry.name.data()}, entry.name, entry.type == DT_DIR);
    ++batchSize_;
    ++matchCount_;
    if (matchCount_ == 1 || batchSize_ >= fullBatch)
        emit();
    else
        emitIfDue();
}

void Walk::keepSubfolders(OwnedFd folder) {
    if (scouts_.areOut()) scouts_.announce(url(), subfolders_);
    const bool staysOpen = openParents_ < mostOpenParents;
    if (staysOpen) ++openParents_;
    groups_.push_back({url(), staysOpen ? std::move(folder) : OwnedFd(), std::exchange(subfolders_, {})});
}

POSIX::Result<OwnedFd> Walk::open(const Group& group, std::string_view name) {
    if (group.folder) return POSIX::open({group.folder.get(), name.data()}, folderFlags | O_NOFOLLOW);
    const std::string& top = request_.folder.path();
    const std::string& parent = group.parent.path();
    path_.assign(parent, std::min(parent.size(), request_.folder.isRoot() ? 1 : top.size() + 1));
    if (!path_.empty()) path_.push_back('/');
    path_.append(name);
    return POSIX::openWithoutLinks(top_.get(), path_, folderFlags);
}

void Walk::closeParents() {
    for (Group& group : groups_)
        group.folder = OwnedFd();
    openParents_ = 0;
}

const FileURL& Walk::url() {
    if (!url_) url_ = name_.empty() ? *parent_ : parent_->appending(name_, FileURL::Mark::directory);
    return *url_;
}

const HiddenNames& Walk::hidden() {
    if (!hidden_) hidden_ = mayHideNames_ ? HiddenNames::read(folder_) : HiddenNames();
    return *hidden_;
}

void Walk::closeBlock() {
    if (!block_) return;
    batch_.push_back(std::move(*block_).finish(hidden()));
    block_.reset();
}

void Walk::emitIfDue() {
    entriesSinceLook_ = 0;
    if (batchSize_ > 0 && Clock::now() - mark_ > longestWait) emit();
}

void Walk::emit() {
    closeBlock();
    if (batchSize_ == 0) return;
    std::vector<ItemRef> order;
    order.reserve(batchSize_);
    for (ItemRef number = 0; number < batch_.size(); ++number)
        for (ItemRef slot = 0; slot < batch_[number]->records.size(); ++slot)
            order.push_back(number << ItemBlock::slotBits | slot);
    emit_({std::make_shared<const FileItemList::Blocks>(std::exchange(batch_, {})), std::move(order)});
    batchSize_ = 0;
    mark_ = Clock::now();
}

} // namespace

Ending walk(const SearchRequest& request, const std::function<void(FileItemList)>& emit,
            std::stop_token stop) {
    return Walk(request, emit, std::move(stop)).run();
}

Stream results(SearchRequest request) {
    const auto produce = [request = std::move(request)](const Stream::Sink& sink, std::stop_token stop) {
        return walk(
            request, [&sink](FileItemList matches) { sink.yield(std::move(matches)); }, std::move(stop));
    };
    try {
        return Stream("ombrel-search", produce);
    } catch (const std::system_error& failure) {
        return Stream::ended(std::unexpected(DirectoryError::from(failure.code().value())));
    }
}

} // namespace ombrel::SearchProvider
