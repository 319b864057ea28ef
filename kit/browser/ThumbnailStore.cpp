#include "browser/ThumbnailStore.h"

#include "base/MainThread.h"
#include "base/UserFolders.h"
#include "base/Worker.h"
#include "browser/ThumbnailCache.h"
#include "browser/ThumbnailService.h"
#include "listing/MountTable.h"
#include "services/AppServices.h"

#include <QPointer>

#include <algorithm>
#include <deque>
#include <list>
#include <mutex>
#include <optional>
#include <system_error>
#include <unordered_map>
#include <utility>

namespace ombrel {
namespace {

using Original = ThumbnailCache::Original;

constexpr int mostThreads = 2;
/// What an entry takes besides its pixels, about.
constexpr std::size_t entryBytes = 512;

/// One picture: of a file, for a room.
struct Key {
    FileURL url;
    QSize box;
    friend bool operator==(const Key&, const Key&) = default;
};
struct KeyHash {
    std::size_t operator()(const Key& key) const noexcept {
        return std::hash<FileURL>{}(key.url) ^
               static_cast<std::size_t>(key.box.width() << 16 ^ key.box.height());
    }
};

struct Entry {
    Key key;
    Original original;
    QImage image;         ///< null: there is none
    bool isKnown = false; ///< for this state of the file
    [[nodiscard]] std::size_t bytes() const {
        return static_cast<std::size_t>(image.sizeInBytes()) + entryBytes;
    }
};

/// How far the search for a picture has come.
enum class Stage : std::uint8_t {
    find,      ///< the cache is to be looked at
    service,   ///< the service is at it
    findAgain, ///< the service has done what it can
    make,      ///< it is to be made here
};

struct Job {
    Key key;
    Original original;
    Stage stage = Stage::find;
};

enum class Outcome : std::uint8_t { found, missing, none, changed };

struct Answer {
    Job job;
    Outcome outcome = Outcome::none;
    QImage image;
};

/// What the cache holds, better too small than none at all; what it comes to without that is `otherwise`.
Answer findAny(const Job& job, const ThumbnailCache& cache, Outcome otherwise) {
    const auto image = cache.find(job.original, ThumbnailCache::sizeFor(job.key.box), true);
    if (image) return {job, Outcome::found, ImageThumbnails::fitted(*image, job.key.box)};
    return {job, otherwise, {}};
}

Answer find(const Job& job, const ThumbnailCache& cache, const ThumbnailStore::Setting& setting) {
    const auto image = cache.find(job.original, ThumbnailCache::sizeFor(job.key.box), false);
    if (image) return {job, Outcome::found, ImageThumbnails::fitted(*image, job.key.box)};
    if (cache.holds(job.key.url)) return {job, Outcome::none, {}};
    const bool isHopeless = cache.isKnownToFail(job.original) || setting.isOnNetwork(job.key.url);
    const bool isLastResort = job.stage == Stage::findAgain && !ImageThumbnails::canMake(job.original.type);
    if (isHopeless || isLastResort) return findAny(job, cache, Outcome::none);
    return {job, Outcome::missing, {}};
}

Answer make(const Job& job, const ThumbnailCache& cache) {
    const auto size = ThumbnailCache::sizeFor(job.key.box);
    const auto made = ImageThumbnails::make(job.original, ThumbnailCache::pixels(size));
    if (!made) return findAny(job, cache, Outcome::changed);
    if (made->image.isNull()) {
        cache.keepFailure(job.original);
        return findAny(job, cache, Outcome::none);
    }
    cache.keep(job.original, size, made->image, made->dimensions);
    return {job, Outcome::found, ImageThumbnails::fitted(made->image, job.key.box)};
}

Original originalOf(FileItemView item) {
    const auto modified = item.modificationDate();
    const auto size = item.size();
    const auto type = item.typeIdentifier();
    return {.url = item.url(),
            .modified = modified.hasValue() ? modified.value().seconds : 0,
            .size = size.hasValue() ? size.value() : 0,
            .type = type.hasValue() ? std::string(type.value()) : std::string()};
}

bool isSameState(const Original& a, FileItemView item) {
    const auto modified = item.modificationDate();
    const auto size = item.size();
    return modified.hasValue() && a.modified == modified.value().seconds && size.hasValue() &&
           a.size == size.value();
}

/// What the workers take their jobs from.
struct Bench {
    std::mutex mutex; // guards all
    std::deque<Job> jobs;
    int threads = 0;
    std::vector<Key> inHand;
};

} // namespace

struct ThumbnailStore::State {
    State(ThumbnailStore& store, Setting given)
        : owner(&store), setting(std::move(given)), cache(setting.cache) {}

    ThumbnailStore* owner;
    const Setting setting;
    const ThumbnailCache cache;
    ThumbnailService service;
    std::list<Entry> entries; ///< the latest looked at first
    std::unordered_map<Key, std::list<Entry>::iterator, KeyHash> places;
    std::size_t bytes = 0;
    std::unordered_map<const QObject*, std::vector<Request>> viewers;
    std::unordered_map<Key, Job, KeyHash> searches; ///< of what is wanted and not known
    std::shared_ptr<Bench> bench = std::make_shared<Bench>();

    Entry* entry(const Key& key) {
        const auto place = places.find(key);
        if (place == places.end()) return nullptr;
        entries.splice(entries.begin(), entries, place->second);
        return &entries.front();
    }

    void keep(const Job& job, QImage image) {
        if (Entry* const known = entry(job.key)) {
            bytes -= known->bytes();
            places.erase(job.key);
            entries.pop_front();
        }
        entries.push_front(
            {.key = job.key, .original = job.original, .image = std::move(image), .isKnown = true});
        places.emplace(job.key, entries.begin());
        bytes += entries.front().bytes();
        while (bytes > setting.budget && entries.size() > 1) {
            bytes -= entries.back().bytes();
            places.erase(entries.back().key);
            entries.pop_back();
        }
    }

    void searchWanted();
    void work();
    void take(Answer answer);
    void askService(const std::vector<Key>& keys);
    void end(const Key& key, QImage image);
};

/// Lets the workers do what is wanted now, in that order, and nothing else.
void ThumbnailStore::State::searchWanted() {
    std::unordered_map<Key, Job, KeyHash> wanted;
    std::deque<Job> jobs;
    for (const auto& [viewer, requests] : viewers) {
        for (const Request& request : requests) {
            Key key{request.item.url(), request.box};
            const Entry* const known = entry(key);
            if ((known && known->isKnown && isSameState(known->original, request.item)) ||
                wanted.contains(key))
                continue;
            const auto before = searches.find(key);
            const bool goesOn =
                before != searches.end() && isSameState(before->second.original, request.item);
            Job job = goesOn ? before->second : Job{key, originalOf(request.item), Stage::find};
            wanted.emplace(key, job);
            if (job.stage != Stage::service) jobs.push_back(std::move(job));
        }
    }
    searches = std::move(wanted);
    service.giveUp([this](const QString& uri) {
        return std::ranges::any_of(searches, [&](const auto& each) {
            return each.second.stage == Stage::service && each.first.url.uri() == uri.toStdString();
        });
    });
    const std::scoped_lock lock(bench->mutex);
    std::erase_if(jobs, [this](const Job& job) {
        return std::ranges::find(bench->inHand, job.key) != bench->inHand.end();
    });
    bench->jobs = std::move(jobs);
    while (bench->threads < mostThreads && std::cmp_less(bench->threads, bench->jobs.size())) {
        ++bench->threads;
        work();
    }
}

/// Starts a thread, which ends when there is nothing left to do.
void ThumbnailStore::State::work() {
    auto body = [self = QPointer(owner), bench = bench, setting = setting,
                 cache = cache](const std::stop_token&) {
        for (;;) {
            Job job;
            {
                const std::scoped_lock lock(bench->mutex);
                if (bench->jobs.empty()) {
                    --bench->threads;
                    return;
                }
                job = std::move(bench->jobs.front());
                bench->jobs.pop_front();
                bench->inHand.push_back(job.key);
            }
            Answer answer = job.stage == Stage::make ? make(job, cache) : find(job, cache, setting);
            {
                const std::scoped_lock lock(bench->mutex);
                std::erase(bench->inHand, job.key);
            }
            MainThread::post([self, answer = std::move(answer)]() mutable {
                if (self) self->state_->take(std::move(answer));
            });
        }
    };
    try {
        Worker("ombrel-thumbs", std::move(body)).detach();
    } catch (const std::system_error&) {
        // Without a thread the pictures stay away until something is wanted again.
        --bench->threads;
    }
}

void ThumbnailStore::State::end(const Key& key, QImage image) {
    const auto search = searches.extract(key);
    if (search.empty()) return;
    keep(search.mapped(), std::move(image));
    Q_EMIT owner->changed(key.url);
}

void ThumbnailStore::State::take(Answer answer) {
    const auto search = searches.find(answer.job.key);
    const bool isWanted = search != searches.end() && search->second.original == answer.job.original;
    const bool isMeant = isWanted && search->second.stage == answer.job.stage;
    switch (answer.outcome) {
    case Outcome::found:
        if (isWanted) return end(answer.job.key, std::move(answer.image));
        // Nobody waits for it any more, but it has been made.
        keep(answer.job, std::move(answer.image));
        break;
    case Outcome::none:
        if (isMeant) return end(answer.job.key, std::move(answer.image));
        break;
    case Outcome::changed:
        // The listing will tell of the new state, and then it is asked for again.
        if (isMeant) return end(answer.job.key, {});
        break;
    case Outcome::missing: break;
    }
    // A search that began anew meanwhile has waited for the worker to let go of the file.
    if (!isMeant) {
        if (search != searches.end()) searchWanted();
        return;
    }
    Job& job = search->second;
    const bool canMake = ImageThumbnails::canMake(job.original.type);
    if (job.stage == Stage::find && setting.asksService) {
        job.stage = Stage::service;
        service.whenKnown([self = QPointer(owner), key = job.key] {
            if (self) self->state_->askService({key});
        });
        return;
    }
    if (!canMake) return end(job.key, {});
    job.stage = Stage::make;
    searchWanted();
}

void ThumbnailStore::State::askService(const std::vector<Key>& keys) {
    for (const Key& key : keys) {
        const auto search = searches.find(key);
        if (search == searches.end() || search->second.stage != Stage::service) continue;
        const QString type = QString::fromStdString(search->second.original.type);
        if (service.makes(type)) {
            service.ask({{QString::fromStdString(key.url.uri()), type}},
                        QString::fromLatin1(ThumbnailCache::name(ThumbnailCache::sizeFor(key.box))));
            continue;
        }
        search->second.stage = Stage::findAgain;
    }
    searchWanted();
}

ThumbnailStore::Setting ThumbnailStore::standard() {
    return {.cache = UserFolders::cache().appending("thumbnails", FileURL::Mark::directory),
            .isOnNetwork = [](const FileURL& url) {
                const auto table = MountTable::current();
                const Mount* const mount = table.containing(url);
                return mount && mount->traits.isNetwork;
            }};
}

ThumbnailStore& ThumbnailStore::of(AppServices& services) {
    auto* const made = services.findChild<ThumbnailStore*>(QString(), Qt::FindDirectChildrenOnly);
    return made ? *made : *new ThumbnailStore(standard(), &services);
}

ThumbnailStore::ThumbnailStore(Setting setting, QObject* parent)
    : QObject(parent), state_(std::make_unique<State>(*this, std::move(setting))) {
    connect(&state_->service, &ThumbnailService::finished, this, [this](const QString& uri) {
        for (auto& [key, job] : state_->searches)
            if (job.stage == Stage::service && key.url.uri() == uri.toStdString())
                job.stage = Stage::findAgain;
        state_->searchWanted();
    });
}

ThumbnailStore::~ThumbnailStore() {
    const std::scoped_lock lock(state_->bench->mutex);
    state_->bench->jobs.clear();
}

bool ThumbnailStore::mayHave(FileItemView item) {
    if (item.kind().which() != FileKind::Case::file) return false;
    const auto size = item.size();
    return size.hasValue() && size.value() > 0 && item.modificationDate().hasValue();
}

QImage ThumbnailStore::thumbnail(FileItemView item, QSize box) {
    const Entry* const entry = state_->entry({item.url(), box});
    return entry ? entry->image : QImage();
}

bool ThumbnailStore::isKnown(FileItemView item, QSize box) const {
    const Entry* const entry = state_->entry({item.url(), box});
    return entry && entry->isKnown && isSameState(entry->original, item);
}

void ThumbnailStore::want(const QObject& viewer, std::span<const Request> requests) {
    if (!state_->viewers.contains(&viewer))
        connect(&viewer, &QObject::destroyed, this, [this, gone = &viewer] {
            state_->viewers.erase(gone);
            state_->searchWanted();
        });
    state_->viewers[&viewer].assign(requests.begin(), requests.end());
    std::erase_if(state_->viewers[&viewer], [](const Request& each) { return !mayHave(each.item); });
    state_->searchWanted();
}

std::size_t ThumbnailStore::bytesKept() const noexcept {
    return state_->bytes;
}

bool ThumbnailStore::isSettled() const noexcept {
    return state_->searches.empty();
}

} // namespace ombrel
