#pragma once

#include "base/FileURL.h"
#include "ui/FileClass.h"

#include <QWidget>

namespace ombrel {

class Theme;

/// A large icon of one item, by its name. What has to be asked of the type database is asked on a worker.
class ItemPicture final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    ItemPicture(const Theme& theme, const FileURL& url, bool isDirectory, QWidget* parent = nullptr);

    [[nodiscard]] FileClass fileClass() const noexcept { return fileClass_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* theme_;
    FileClass fileClass_ = FileClass::other;
};

} // namespace ombrel
