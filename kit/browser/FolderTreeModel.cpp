#include "browser/FolderTreeModel.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "browser/FolderTreeBranches.h"
#include "browser/FolderTreeFollower.h"
#include "browser/FolderTreeNode.h"

#include <algorithm>
#include <climits>
#include <functional>
#include <unordered_map>
#include <unordered_set>

namespace ombrel {

namespace {

using Section = HomeModel::Section;

QString localizedText(std::string_view key) {
    return QString::fromStdString(Texts::localized(key));
}

QString headTitle(Section section) {
    switch (section) {
    case Section::quickAccess: return localizedText("ui.home.quickAccess");
    case Section::locations: return localizedText("ui.home.locations");
    case Section::volumes: return localizedText("ui.home.volumes");
    }
    std::unreachable();
}

ItemFilter filterOf(const AppSettings& settings) {
    return {.showsHidden = settings.showHiddenFiles(),
            .showsProtected = !settings.hideProtectedSystemFiles()};
}

} // namespace

FolderTreeModel::FolderTreeModel(AppServices& services, HomeModel& home, const ListingFeed::Source& listings,
                                 QObject* parent)
    : QAbstractItemModel(parent), home_(home), root_(std::make_unique<Node>()),
      branches_(std::make_unique<FolderTreeBranches>(
          FolderBranch::inTurns(listings, services.treeLimiter()), filterOf(services.settings()),
          FolderTreeBranches::Told{
              [this](Node& node, const std::function<void()>& made) { change(node, made); },
              [this](Node& node) { handleProbed(node); }})),
      follower_(std::make_unique<FolderTreeFollower>(*this)) {
    root_->children = topRows();
    connect(&home, &HomeModel::changed, this, &FolderTreeModel::rebuildTop);
    connect(&services.settings(), &AppSettings::changed, this,
            [this, &settings = services.settings()] { branches_->setFilter(filterOf(settings)); });
}

FolderTreeModel::~FolderTreeModel() = default;

// ---- Rows

FolderTreeModel::Nodes FolderTreeModel::topRows() const {
    Nodes rows;
    const auto add = [&](Kind kind, std::string key, std::optional<FileURL> url, std::size_t place) {
        auto node = std::make_unique<Node>();
        node->parent = root_.get();
        node->row = static_cast<int>(rows.size());
        node->kind = kind;
        node->key = std::move(key) + (url ? url->path() : std::string());
        node->url = std::move(url);
        node->place = place;
        rows.push_back(std::move(node));
    };
    const auto addHead = [&](Section section, std::string key) {
        add(Kind::head, std::move(key), std::nullopt, static_cast<std::size_t>(section));
    };
    add(Kind::home, "home", std::nullopt, 0);
    addHead(Section::quickAccess, "pins");
    for (std::size_t i = 0; i < home_.pins().size(); ++i)
        add(Kind::pin, "pin:", home_.pins()[i].url, i);
    if (!home_.locations().empty()) addHead(Section::locations, "locations");
    for (std::size_t i = 0; i < home_.locations().size(); ++i) {
        const GrantedPlace& location = home_.locations()[i];
        add(Kind::location, "location:" + location.id.toString().toStdString(), location.url, i);
    }
    if (!home_.volumes().empty()) addHead(Section::volumes, "volumes");
    for (std::size_t i = 0; i < home_.volumes().size(); ++i)
        add(Kind::volume, "volume:", home_.volumes()[i].url, i);
    return rows;
}

FolderTreeModel::Node* FolderTreeModel::nodeOf(const QModelIndex& index) const {
    if (!index.isValid()) return root_.get();
    const auto* const above = static_cast<const Node*>(index.internalPointer());
    if (!above) return nullptr;
    if (above == root_.get()) return above->children.at(static_cast<std::size_t>(index.row())).get();
    const auto found =
        std::ranges::find(above->children, index.row(), [](const auto& node) { return node->row; });
    return found == above->children.end() ? nullptr : found->get();
}

QModelIndex FolderTreeModel::indexOf(const Node& node) const {
    return &node == root_.get() ? QModelIndex() : createIndex(node.row, 0, node.parent);
}

QModelIndex FolderTreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column != 0 || row >= rowCount(parent)) return {};
    return createIndex(row, 0, nodeOf(parent));
}

QModelIndex FolderTreeModel::parent(const QModelIndex& index) const {
    if (!index.isValid()) return {};
    return indexOf(*static_cast<const Node*>(index.internalPointer()));
}

int FolderTreeModel::rowCount(const QModelIndex& parent) const {
    const Node* const node = nodeOf(parent);
    if (!node) return 0;
    if (node == root_.get()) return static_cast<int>(node->children.size());
    if (!node->branch) return 0;
    const auto& branch = *node->branch;
    if (branch.items().empty()) return branch.failure() || branch.isSlow() ? 1 : 0;
    return static_cast<int>(std::min<std::size_t>(branch.items().size(), INT_MAX));
}

int FolderTreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

FolderTreeModel::Kind FolderTreeModel::kindOf(const QModelIndex& index) const {
    const auto& above = *static_cast<const Node*>(index.internalPointer());
    if (&above == root_.get()) return above.children[static_cast<std::size_t>(index.row())]->kind;
    return above.branch->items().empty() ? Kind::notice : Kind::folder;
}

// Views ask this of every row that is open, seen or not.
bool FolderTreeModel::hasChildren(const QModelIndex& parent) const {
    if (!parent.isValid()) return true;
    const Kind kind = kindOf(parent);
    if (kind == Kind::notice || (kind != Kind::folder && !canOpen(parent))) return false;
    const Node* const node = nodeOf(parent);
    if (node && node->branch) return !node->branch->isComplete() || !node->branch->items().empty();
    if (node) return node->hasFolders;
    const auto& above = *static_cast<const Node*>(parent.internalPointer());
    return above.probes.has(above.branch->items()[static_cast<std::size_t>(parent.row())].name());
}

FolderTreeModel::Entry FolderTreeModel::entry(const QModelIndex& index) const {
    if (!index.isValid()) return {};
    const auto& above = *static_cast<const Node*>(index.internalPointer());
    if (&above != root_.get()) {
        const auto& branch = *above.branch;
        if (branch.items().empty())
            return {.kind = Kind::notice,
                    .title = branch.failure()
                                 ? QString::fromStdString(branch.failure()->localizedDescription())
                                 : localizedText("ui.tree.loading")};
        const auto item = branch.items()[static_cast<std::size_t>(index.row())];
        return {.kind = Kind::folder,
                .title = QString::fromStdString(FileName::displayText(item.name())),
                .url = item.url().marked(FileURL::Mark::directory)};
    }
    const Node& node = *above.children[static_cast<std::size_t>(index.row())];
    Entry entry{.kind = node.kind, .title = {}, .url = node.url};
    switch (node.kind) {
    case Kind::home: entry.title = localizedText("ui.home.title"); break;
    case Kind::head: entry.title = headTitle(static_cast<Section>(node.place)); break;
    case Kind::pin:
        entry.place = node.place;
        entry.title = home_.pins()[node.place].title;
        entry.known = home_.pins()[node.place].pin.known();
        break;
    case Kind::location:
        entry.place = node.place;
        entry.location = &home_.locations()[node.place];
        entry.title = entry.location->title;
        break;
    case Kind::volume:
        entry.place = node.place;
        entry.volume = &home_.volumes()[node.place];
        entry.title = entry.volume->isEjecting ? localizedText("ui.volume.ejecting") : entry.volume->title;
        break;
    case Kind::folder:
    case Kind::notice: break;
    }
    return entry;
}

QVariant FolderTreeModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole: return entry(index).title;
    case Qt::AccessibleDescriptionRole: {
        const Entry shown = entry(index);
        if (!shown.location || shown.location->isActive()) return {};
        return localizedText(shown.location->needsPermission() ? "ui.location.needsPermission"
                                                               : "ui.location.unavailable");
    }
    case Qt::ToolTipRole: {
        const Entry shown = entry(index);
        if (shown.location && !shown.location->reason.isEmpty()) return shown.location->reason;
        if (!shown.url) return shown.kind == Kind::notice ? QVariant(shown.title) : QVariant();
        return QString::fromStdString(FileName::displayText(shown.url->path()));
    }
    default: return {};
    }
}

Qt::ItemFlags FolderTreeModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::ItemIsDropEnabled;
    const Kind kind = kindOf(index);
    if (kind == Kind::head || kind == Kind::notice) return Qt::ItemNeverHasChildren;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

// ---- Changes. Indexes that others hold follow their rows by what these are called.

void FolderTreeModel::invalidate(const Nodes& gone) {
    if (gone.empty()) return;
    std::unordered_set<const void*> nodes;
    const std::function<void(const Node&)> collect = [&](const Node& node) {
        nodes.insert(&node);
        branches_->forget(node);
        for (const auto& child : node.children)
            collect(*child);
    };
    for (const auto& node : gone)
        collect(*node);
    for (const auto& held : persistentIndexList())
        if (nodes.contains(held.internalPointer())) changePersistentIndex(held, {});
}

void FolderTreeModel::rebuildTop() {
    Q_EMIT layoutAboutToBeChanged();
    std::vector<std::pair<QModelIndex, const Node*>> held;
    for (const auto& index : persistentIndexList())
        if (index.internalPointer() == root_.get()) held.emplace_back(index, nodeOf(index));
    Nodes before = std::exchange(root_->children, topRows());
    for (auto& row : root_->children) {
        const auto known =
            std::ranges::find_if(before, [&](const auto& node) { return node && node->key == row->key; });
        if (known == before.end()) continue;
        (*known)->row = row->row;
        (*known)->place = row->place;
        row = std::move(*known);
    }
    std::erase(before, nullptr);
    for (const auto& [index, node] : held) {
        const bool isGone = std::ranges::any_of(before, [&](const auto& gone) { return gone.get() == node; });
        changePersistentIndex(index, isGone ? QModelIndex() : indexOf(*node));
    }
    for (const auto& row : root_->children) {
        if (!row->branch || canOpen(indexOf(*row))) continue;
        auto closed = std::make_unique<Node>();
        // What is below it goes; the row itself stays.
        closed->children = std::move(row->children);
        closed->branch = std::move(row->branch);
        branches_->forget(*row);
        for (const auto& index : persistentIndexList())
            if (index.internalPointer() == row.get()) changePersistentIndex(index, {});
        before.push_back(std::move(closed));
    }
    invalidate(before);
    Q_EMIT layoutChanged();
    before.clear();
    advance();
}

void FolderTreeModel::change(Node& node, const std::function<void()>& change) {
    std::vector<std::pair<QModelIndex, std::string>> held;
    Q_EMIT layoutAboutToBeChanged({QPersistentModelIndex(indexOf(node))});
    const auto& before = node.branch->items();
    for (const auto& index : persistentIndexList()) {
        if (index.internalPointer() != &node) continue;
        const auto row = static_cast<std::size_t>(index.row());
        held.emplace_back(index, row < before.size() ? std::string(before[row].name()) : std::string());
    }
    change();
    Nodes gone;
    move(node, held, gone);
    invalidate(gone);
    Q_EMIT layoutChanged({QPersistentModelIndex(indexOf(node))});
    node.probes.askAnew();
    reopen(node);
    advance();
}

/// Gives what is held of the rows below `node`, and the nodes there, their new rows.
void FolderTreeModel::move(Node& node, const std::vector<std::pair<QModelIndex, std::string>>& held,
                           Nodes& gone) {
    std::unordered_map<std::string_view, int> rows; // of the names that matter
    for (const auto& [index, name] : held)
        rows.emplace(name, -1);
    for (const auto& child : node.children)
        rows.emplace(child->key, -1);
    const auto& items = node.branch->items();
    if (!rows.empty()) {
        for (std::size_t row = 0; row < items.size(); ++row)
            if (const auto wanted = rows.find(items[row].name()); wanted != rows.end())
                wanted->second = static_cast<int>(row);
    }
    for (const auto& [index, name] : held) {
        const int row = rows[name];
        changePersistentIndex(index, row < 0 ? QModelIndex() : createIndex(row, 0, &node));
    }
    for (auto& child : node.children) {
        child->row = rows[child->key];
        if (child->row < 0) gone.push_back(std::move(child));
    }
    std::erase(node.children, nullptr);
}

// ---- Branches

bool FolderTreeModel::canOpen(const QModelIndex& index) const {
    const Entry shown = entry(index);
    return shown.url && shown.isOpenable();
}

bool FolderTreeModel::isOpen(const QModelIndex& index) const {
    const Node* const node = index.isValid() ? nodeOf(index) : nullptr;
    return node && node->branch;
}

bool FolderTreeModel::isReading(const QModelIndex& index) const {
    return isOpen(index) && !nodeOf(index)->branch->isComplete() && !nodeOf(index)->branch->failure();
}

QModelIndex FolderTreeModel::child(const QModelIndex& parent, std::string_view name) const {
    if (!isOpen(parent)) return {};
    const auto& items = nodeOf(parent)->branch->items();
    for (std::size_t row = 0; row < items.size(); ++row)
        if (items[row].name() == name) return index(static_cast<int>(row), 0, parent);
    return {};
}

void FolderTreeModel::open(const QModelIndex& index) {
    if (!index.isValid() || isOpen(index) || !canOpen(index)) return;
    const Entry shown = entry(index);
    Node* node = nodeOf(index);
    if (!node) {
        auto* const above = static_cast<Node*>(index.internalPointer());
        auto made = std::make_unique<Node>();
        node = made.get();
        node->parent = above;
        node->row = index.row();
        node->key = above->branch->items()[static_cast<std::size_t>(index.row())].name();
        node->url = shown.url;
        above->children.push_back(std::move(made));
    }
    follower_->noteOpened(index);
    branches_->open(*node);
    Q_EMIT opened(index);
    advance();
}

void FolderTreeModel::close(const QModelIndex& index, By who) {
    if (!isOpen(index)) return;
    Node& node = *nodeOf(index);
    if (who == By::hand) follower_->noteClosedByHand(index);
    Q_EMIT layoutAboutToBeChanged({QPersistentModelIndex(index)});
    for (const auto& held : persistentIndexList())
        if (held.internalPointer() == &node) changePersistentIndex(held, {});
    const auto dropped = branches_->close(node);
    invalidate(dropped.children);
    Q_EMIT layoutChanged({QPersistentModelIndex(index)});
    advance();
}

void FolderTreeModel::reopen(Node& node) {
    if (node.toReopen.empty() || node.branch->items().empty()) return;
    const auto wanted = std::exchange(node.toReopen, {});
    const auto parent = indexOf(node);
    for (int row = 0; row < rowCount(parent); ++row) {
        const FileURL url = node.branch->items()[static_cast<std::size_t>(row)].url();
        if (!wanted.contains(url)) continue;
        const auto child = index(row, 0, parent);
        open(child);
        if (Node* const opened = nodeOf(child))
            std::ranges::copy_if(wanted, std::inserter(opened->toReopen, opened->toReopen.end()),
                                 [&](const FileURL& each) { return each != url && each.isWithin(url); });
    }
}

void FolderTreeModel::refresh() {
    branches_->refresh();
}

// ---- Which closed folders have folders

void FolderTreeModel::look(const QModelIndexList& rows) {
    std::vector<Node*> parents;
    for (const auto& index : rows) {
        auto* const above = static_cast<Node*>(index.internalPointer());
        if (!index.isValid() || !above->branch) continue;
        const auto& items = above->branch->items();
        const auto row = static_cast<std::size_t>(index.row());
        if (row >= items.size() || !above->probes.ask(items[row].name())) continue;
        if (std::ranges::find(parents, above) == parents.end()) parents.push_back(above);
    }
    for (Node* const node : parents)
        branches_->probe(*node);
}

void FolderTreeModel::handleProbed(Node& node) {
    const auto parent = indexOf(node);
    if (const int rows = rowCount(parent); rows > 0)
        Q_EMIT dataChanged(index(0, 0, parent), index(rows - 1, 0, parent));
}

// ---- The folder that is shown

QModelIndex FolderTreeModel::current() const {
    return follower_->current();
}

bool FolderTreeModel::isSearching() const noexcept {
    return follower_->isSearching();
}

void FolderTreeModel::setOrigin(const QModelIndex& index) {
    follower_->setOrigin(index);
}

void FolderTreeModel::tellOfFolders(const FileURL& folder, bool hasFolders) {
    const QModelIndex shown = current();
    if (!shown.isValid() || nodeOf(shown) || kindOf(shown) != Kind::folder || entry(shown).url != folder)
        return;
    auto& above = *static_cast<Node*>(shown.internalPointer());
    above.probes.keep({{std::string(folder.name()), hasFolders}});
    Q_EMIT dataChanged(shown, shown);
}

void FolderTreeModel::follow(const std::optional<FileURL>& folder) {
    follower_->follow(folder);
    advance();
}

void FolderTreeModel::advance() {
    if (follower_->advance()) Q_EMIT currentChanged();
}

} // namespace ombrel
