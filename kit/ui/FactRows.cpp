#include "ui/FactRows.h"

#include "base/FileName.h"
#include "operations/FileOperationError.h"
#include "ui/FileClass.h"
#include "ui/Formats.h"
#include "ui/LocalizedText.h"

#include <QStringList>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace ombrel::FactRows {
namespace {

QString shown(std::string_view bytes) {
    return QString::fromStdString(FileName::displayText(bytes));
}

/// Collects the rows.
class Facts {
public:
    void add(std::string_view captionKey, const QString& value, const QString& copied = {}) {
        facts_.push_back({localized(captionKey), value, copied});
    }
    void addTime(std::string_view captionKey, const std::optional<FileTime>& time) {
        if (time) add(captionKey, Formats::dateAndTime(*time));
    }
    void addLink(const ItemValues& values) {
        if (values.linkTarget) add("ui.details.linkTarget", shown(*values.linkTarget));
    }
    [[nodiscard]] std::vector<Fact> take() { return std::move(facts_); }

private:
    std::vector<Fact> facts_;
};

QString pixels(const ItemValues::Dimensions& dimensions) {
    return localized("ui.details.pixels", {Formats::number(dimensions.width).toStdString(),
                                           Formats::number(dimensions.height).toStdString()});
}

QString list(const QString& first, const QString& second) {
    return localized("ui.properties.list", {first.toStdString(), second.toStdString()});
}

QString atLeast(const QString& size) {
    return localized("ui.details.atLeast", {size.toStdString()});
}

// ---- The details pane

std::vector<Fact> ofSeveral(const DetailsValues::Content& content, const Whereabouts& whereabouts) {
    Facts facts;
    const std::int64_t total = content.totalSize.value_or(0);
    facts.add("ui.details.totalSize", content.isTotalKnown ? Formats::size(total)
                                      : total > 0          ? atLeast(Formats::size(total))
                                                           : localized("ui.details.counting"));
    const auto& common = content.common;
    if (common.firstModified && common.lastModified)
        facts.add("ui.details.modified", Formats::period(*common.firstModified, *common.lastModified));
    if (common.folder)
        facts.add("ui.details.location", whereabouts(*common.folder), shown(common.folder->path()));
    return facts.take();
}

// ---- Permissions

/// In words, for files and for folders, which are opened where files are run.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> permissionKeys = {{
    {"ui.properties.permissions.none", "ui.properties.permissions.none"},
    {"ui.properties.permissions.run", "ui.properties.permissions.open"},
    {"ui.properties.permissions.write", "ui.properties.permissions.write"},
    {"ui.properties.permissions.writeRun", "ui.properties.permissions.writeOpen"},
    {"ui.properties.permissions.read", "ui.properties.permissions.read"},
    {"ui.properties.permissions.readRun", "ui.properties.permissions.readOpen"},
    {"ui.properties.permissions.readWrite", "ui.properties.permissions.readWrite"},
    {"ui.properties.permissions.readWriteRun", "ui.properties.permissions.readWriteOpen"},
}};

QString permissions(const ItemValues& values) {
    const auto words = [&](unsigned shift) {
        const auto& keys = permissionKeys[(*values.permissions >> shift) & 7U];
        return localized(values.isFolder ? keys.second : keys.first).toStdString();
    };
    constexpr unsigned owner = 6, group = 3;
    const QStringList lines = {
        localized("ui.properties.owner", {isolated(values.owner), words(owner)}),
        localized("ui.properties.group", {isolated(values.group), words(group)}),
        localized("ui.properties.others", {words(0)}),
    };
    return lines.join(QLatin1Char('\n'));
}

// ---- Contents

QString counted(const Contents& contents) {
    return list(localized("ui.properties.files", contents.files),
                localized("ui.properties.folders", contents.folders));
}

/// The two rows about what folders hold.
void addContents(Facts& facts, std::string_view sizeKey, const ItemProperties& properties) {
    Contents contents = properties.contents().contents();
    // The folders that are selected count too.
    contents.folders += properties.folderCount();
    const bool isExact = contents.isComplete && contents.unreadable == 0;
    const bool isNothingKnown = !contents.isComplete && contents.files == 0 && contents.unreadable == 0;
    const QString size = Formats::sizeInFull(contents.bytes);
    facts.add(sizeKey, isExact ? size : isNothingKnown ? localized("ui.details.counting") : atLeast(size));
    QString words = counted(contents);
    if (isNothingKnown)
        words = localized("ui.details.counting");
    else if (!contents.isComplete)
        words = localized("ui.properties.countingSoFar", {words.toStdString()});
    if (contents.unreadable > 0)
        words += QLatin1Char('\n') + localized("ui.status.unreadable", contents.unreadable);
    facts.add("ui.properties.contains", words);
}

std::vector<Fact> ofOne(const ItemProperties& properties) {
    const ItemValues& values = properties.facts();
    Facts facts;
    if (!values.problem) facts.add("ui.properties.type", QString::fromStdString(values.type));
    if (!values.url.isRoot()) facts.add("ui.details.location", shown(values.url.parent().path()));
    if (values.problem) return facts.take();
    if (values.isFolder && !values.linkTarget)
        addContents(facts, "ui.details.size", properties);
    else if (values.size)
        facts.add("ui.details.size", Formats::sizeInFull(*values.size));
    if (values.dimensions) facts.add("ui.details.dimensions", pixels(*values.dimensions));
    facts.addTime("ui.details.created", values.created);
    facts.addTime("ui.details.modified", values.modified);
    facts.addTime("ui.properties.opened", values.opened);
    if (values.permissions) facts.add("ui.properties.permissions", permissions(values));
    facts.add("ui.properties.hidden", localized(values.isHidden ? "ui.properties.yes" : "ui.properties.no"));
    facts.addLink(values);
    return facts.take();
}

} // namespace

std::vector<Fact> inBrief(const DetailsValues& values, const Whereabouts& whereabouts) {
    const auto& content = values.content();
    if (content.count == 0) return {};
    if (content.count > 1) return ofSeveral(content, whereabouts);
    const ItemValues& one = content.facts;
    const bool isReading = values.isReading();
    const FileItem* const item = content.previews.empty() ? nullptr : &content.previews.front();
    Facts facts;
    if (one.size && !one.isFolder) facts.add("ui.details.size", Formats::size(*one.size));
    facts.addTime("ui.details.modified", one.modified);
    facts.addTime("ui.details.created", one.created);
    if (!one.url.isRoot()) {
        const FileURL folder = one.url.parent();
        facts.add("ui.details.location", whereabouts(folder), shown(folder.path()));
    }
    const bool isImage = item && FileClasses::known(*item) == FileClass::image;
    if (one.dimensions || (isReading && isImage))
        facts.add("ui.details.dimensions", one.dimensions ? pixels(*one.dimensions) : QString());
    if (content.items || (isReading && one.isFolder))
        facts.add("ui.details.items", content.items ? Formats::number(*content.items) : QString());
    facts.addLink(one);
    return facts.take();
}

std::vector<Fact> inFull(const ItemProperties& properties) {
    if (!properties.isRead()) return {};
    if (properties.count() == 1) return ofOne(properties);
    Facts facts;
    const auto& folder = properties.commonFolder();
    facts.add("ui.details.location",
              folder ? shown(folder->path()) : localized("ui.properties.differentFolders"));
    addContents(facts, "ui.details.totalSize", properties);
    return facts.take();
}

std::vector<Fact> inFull(const VolumePlace& volume) {
    Facts facts;
    facts.add("ui.properties.fileSystem", volume.nature);
    facts.add("ui.details.location", shown(volume.url.path()));
    if (!volume.total || !volume.available) {
        facts.add("ui.properties.capacity", localized("ui.volume.sizeUnknown"));
        return facts.take();
    }
    facts.add("ui.properties.used",
              Formats::sizeInFull(std::max<std::int64_t>(*volume.total - *volume.available, 0)));
    facts.add("ui.properties.free", Formats::sizeInFull(*volume.available));
    facts.add("ui.properties.capacity", Formats::sizeInFull(*volume.total));
    return facts.take();
}

QString nameOf(const FileURL& item) {
    return shown(item.title());
}

QString problem(const POSIXFailure& failure) {
    return localized(FileOperationError::from(failure).text());
}

} // namespace ombrel::FactRows
