#include "ui/RowFacts.h"

#include "base/FileName.h"
#include "base/MainThread.h"
#include "listing/FileTypeNames.h"
#include "listing/TypeDatabase.h"
#include "services/AppSettings.h"
#include "services/ClipboardService.h"
#include "ui/Formats.h"

#include <QPointer>
#include <QTimer>

#include <system_error>
#include <utility>

namespace ombrel {
namespace {

/// Some screens full; what lies beyond is formatted again when it is looked at again.
constexpr std::size_t keptRows = 1000;

} // namespace

RowFacts::Facts RowFacts::formatted(FileItemView item) const {
    Facts facts;
    const std::string_view name = settings_ ? settings_->displayName(item) : item.name();
    facts.name = QString::fromStdString(FileName::displayText(name));
    const bool isAnythingCut = clipboard_ && !clipboard_->cutURLs().empty();
    facts.isCut = isAnythingCut && clipboard_->cutURLs().contains(item.url());
    facts.badge = FileIcons::badgeOf(item);
    facts.isHidden = item.isHidden();
    if (const auto date = item.modificationDate(); date.hasValue())
        facts.date = Formats::dateAndTime(date.value());
    const bool isFile = item.kind().which() == FileKind::Case::file;
    if (const auto size = item.size(); isFile && size.hasValue()) facts.size = Formats::size(size.value());
    return facts;
}

const RowFacts::Facts& RowFacts::of(const FileItemList& items, std::size_t row) {
    const ItemRef ref = items.order()[row];
    if (kept_.size() >= keptRows && !kept_.contains(ref)) kept_.clear();
    const auto [place, isNew] = kept_.try_emplace(ref);
    Facts& facts = place->second;
    const FileItemView item = items.view(ref);
    if (isNew) facts = formatted(item);
    if (facts.isTypeKnown) return facts;
    const auto fileClass = FileClasses::known(item);
    const auto type = FileTypeNames::known(item);
    if (fileClass) facts.fileClass = *fileClass;
    if (type) facts.type = QString::fromStdString(*type);
    facts.isTypeKnown = fileClass && type;
    if (!facts.isTypeKnown && isNew) {
        unasked_.push_back(items.item(row));
        if (!isAsking_) ask();
    }
    return facts;
}

void RowFacts::forget() {
    kept_.clear();
    unasked_.clear();
}

void RowFacts::ask() {
    isAsking_ = true;
    // Later, so that all rows of one painting are asked for together.
    QTimer::singleShot(0, this, [this] {
        auto body = [self = QPointer(this),
                     items = std::exchange(unasked_, {})](const std::stop_token&) mutable {
            for (const FileItem& item : items) {
                static_cast<void>(FileTypeNames::name(item));
                static_cast<void>(TypeDatabase::fileType(FileName::extension(item.name())));
            }
            items.clear();
            MainThread::post([self] {
                if (!self) return;
                self->isAsking_ = false;
                Q_EMIT self->changed();
                if (!self->unasked_.empty()) self->ask();
            });
        };
        try {
            Worker("ombrel-types", std::move(body)).detach();
        } catch (const std::system_error&) {
            // Without a thread the types stay blank until the rows are formatted again.
            isAsking_ = false;
        }
    });
}

} // namespace ombrel
