#pragma once

#include "base/Worker.h"
#include "listing/FileItem.h"
#include "listing/FileItemList.h"
#include "ui/FileClass.h"
#include "ui/FileIcons.h"

#include <QObject>
#include <QString>

#include <unordered_map>
#include <vector>

namespace ombrel {

class AppSettings;
class ClipboardService;

/// What a row of a file view shows, formatted once. Only rows that are looked at are formatted; the type's
/// words, for which the type database may have to be read, are asked for on a worker when nobody has asked
/// before.
class RowFacts final : public QObject {
    Q_OBJECT

public:
    struct Facts {
        QString name;
        QString date;
        QString type; ///< empty until it is known
        QString size;
        FileClass fileClass = FileClass::other;
        IconBadge badge = IconBadge::none;
        bool isHidden = false;
        bool isCut = false;
        bool isTypeKnown = false;
    };

    using QObject::QObject;

    /// How names are shown and what is cut; each may be missing and must outlive this. What is kept already
    /// is not formatted again.
    void setSources(const AppSettings* settings, const ClipboardService* clipboard) noexcept {
        settings_ = settings;
        clipboard_ = clipboard;
    }

    /// Valid until the next call of anything here.
    [[nodiscard]] const Facts& of(const FileItemList& items, std::size_t row);
    /// Whether a type's words are still being asked for.
    [[nodiscard]] bool isWaiting() const noexcept { return isAsking_ || !unasked_.empty(); }
    /// Shows an item by another name until its facts are forgotten.
    void setName(ItemRef item, const QString& name) {
        if (const auto known = kept_.find(item); known != kept_.end()) known->second.name = name;
    }
    /// To be called when the rows stand for other items.
    void forget();

Q_SIGNALS:
    /// More is known of some rows.
    void changed();

private:
    void ask();
    [[nodiscard]] Facts formatted(FileItemView item) const;

    const AppSettings* settings_ = nullptr;
    const ClipboardService* clipboard_ = nullptr;
    std::unordered_map<ItemRef, Facts> kept_;
    std::vector<FileItem> unasked_;
    bool isAsking_ = false;
};

} // namespace ombrel
