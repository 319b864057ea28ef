#include "ui/JobHeading.h"

#include "operations/JobTexts.h"
#include "services/OperationJob.h"
#include "ui/LinkButton.h"
#include "ui/LocalizedText.h"
#include "ui/TextLabel.h"

#include <QHBoxLayout>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

/// The folders that the title's arguments name, in their order.
std::vector<std::optional<FileURL>> foldersIn(const OperationJob& job, std::size_t arguments) {
    std::vector<std::optional<FileURL>> folders;
    if (!job.sourceName().empty()) folders.push_back(job.sourceFolder());
    if (!job.destinationName().empty()) folders.push_back(job.destinationFolder());
    // A title that names only one of the two names the one that its kind is about.
    if (folders.size() > arguments) {
        const bool isBySource =
            job.title() == titleOf(job.kind(), job.itemCount(), job.sourceName(), std::string());
        folders = {isBySource ? job.sourceFolder() : job.destinationFolder()};
    }
    folders.resize(arguments);
    return folders;
}

constexpr QChar mark(0x1);

} // namespace

JobHeading::JobHeading(const Theme& theme, const OperationJob& job, OpenFolder openFolder, QWidget* parent)
    : QWidget(parent), openFolder_(std::move(openFolder)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins({});
    row->setSpacing(0);
    Text title = job.title();
    const auto names = title.arguments;
    const auto folders = foldersIn(job, names.size());
    // Where the names stand in the sentence the language decides.
    for (std::size_t i = 0; i < names.size(); ++i)
        title.arguments[i] = QString(mark).toStdString() + std::to_string(i) + QString(mark).toStdString();
    const QStringList parts = localized(title).split(mark);
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const bool isName = i % 2 == 1;
        if (parts[i].isEmpty()) continue;
        if (!isName) {
            auto* const words = new ElidedLabel(theme, Qt::ElideRight, ThemeColor::textSecondary, this);
            words->setText(parts[i]);
            row->addWidget(words);
            continue;
        }
        const auto which = parts[i].toULongLong();
        if (which >= names.size()) continue;
        const QString name = QString::fromStdString(names[which]);
        if (folders[which]) {
            addFolder(theme, name, *folders[which]);
        } else {
            auto* const words = new ElidedLabel(theme, Qt::ElideMiddle, ThemeColor::text, this);
            words->setText(name);
            row->addWidget(words);
        }
    }
    row->addStretch();
}

void JobHeading::addFolder(const Theme& theme, const QString& name, const FileURL& folder) {
    auto* const link = new LinkButton(theme, std::nullopt, this);
    link->setLabel(name);
    link->setToolTip(localized("ui.progress.openFolder", {name.toStdString()}));
    connect(link, &QAbstractButton::clicked, this, [this, folder] {
        if (openFolder_) openFolder_(folder);
    });
    layout()->addWidget(link);
}

} // namespace ombrel
