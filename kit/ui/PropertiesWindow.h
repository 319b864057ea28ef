#pragma once

#include "browser/ItemProperties.h"

#include <QWidget>

namespace ombrel {

class AppServices;
class CapacityBar;
class FactTable;
class TextLabel;
class Theme;
class ValueText;

/// What there is to know of one item, of several, or of a volume; to be read and copied, not to be changed.
/// Deletes itself when closed, and what is still being counted ends with it.
class PropertiesWindow final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it; `subject` is not empty.
    PropertiesWindow(const Theme& theme, ItemProperties::Subject subject);

    /// There is one for the same things: it is shown and brought to the front.
    static PropertiesWindow& open(const Theme& theme, const ItemProperties::Subject& subject);
    /// What a folder among the places stands for: the volume that is mounted there, or the folder.
    [[nodiscard]] static ItemProperties::Subject subjectAt(const FileURL& place, const AppServices& services);

    [[nodiscard]] const ItemProperties& properties() const noexcept { return properties_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Icon;

    void layOut();
    void refresh();
    void refreshVolume();
    [[nodiscard]] QString nameNow() const;

    const Theme* theme_;
    ItemProperties properties_;
    Icon* icon_;
    ValueText* name_;
    TextLabel* problem_;
    FactTable* facts_;
    CapacityBar* capacity_;
    TextLabel* capacityWords_;
};

} // namespace ombrel
