#include "operations/ReplacedItem.h"

#include "listing/POSIXRename.h"
#include "operations/CopyFailure.h"
#include "operations/Relocation.h"

#include <cerrno>

namespace ombrel {

using Error = FileOperationError;

void ReplacedItem::begin(const std::string& name, const FileStatus& existing, FileURL url) {
    giveUp();
    name_ = name;
    url_ = std::move(url);
    aside_.emplace(destination_->fd(), name, existing, !destination_->volume().traits.renumbersInodes);
}

void ReplacedItem::giveUp() {
    if (!aside_) return;
    (void)aside_->putBack();
    end();
}

void ReplacedItem::end() {
    for (auto& name : aside_->leftBehind())
        left_->emplace_back(*url_, std::move(name));
    aside_.reset();
}

ReplacedItem::Result<void> ReplacedItem::renameOver(const ConfirmedSource& source, bool sourceNumbersLast) {
    if (const auto away = aside_->takeAway(); !away) {
        const bool isNotThere = away.error().isOther || away.error().cause.number == ENOENT;
        return std::unexpected(isNotThere ? Error(Error::Case::destinationExists)
                                          : CopyFailure::ofCopy(away.error().cause).error);
    }
    const POSIX::Place target{destination_->fd(), name_.c_str()};
    const auto renamed = relocate(source.place(), source.status(), target);
    const bool isThere = renamed || POSIX::areOneItem(source.place(), target);
    if (!isThere) {
        if (const auto back = aside_->putBack(); !back) return std::unexpected(Error::from(back.error()));
        const int number = renamed.error().number;
        return std::unexpected(number == EXDEV ? Error::posix(EXDEV) : Error::from(number));
    }
    if (renamed && gaveBackAnother(source.place(), source.status(), sourceNumbersLast, target)) {
        (void)aside_->putBack();
        return std::unexpected(Error::Case::sourceChanged);
    }
    aside_->remove();
    end();
    if (!renamed) return std::unexpected(Error::sourceRemovalFailed(renamed.error().number));
    return {};
}

ReplacedItem::Result<bool> ReplacedItem::makeWayFor(StagedItem& staged) {
    const auto made = aside_->makeWayFor(staged);
    if (made) return true;
    if (made.error().isOther) return std::unexpected(Error::Case::destinationExists);
    if (made.error().cause.number != ENOENT || aside_->isAside())
        return std::unexpected(CopyFailure::ofCopy(made.error().cause).error);
    giveUp();
    return false;
}

} // namespace ombrel
