#pragma once

#include "browser/SelectionSize.h"

#include <QWidget>

#include <vector>

class QLabel;

namespace ombrel {

class BrowserModel;
class FileView;
class Theme;

/// What is shown, what is selected and what could not be read, in words.
class StatusBar final : public QWidget {
    Q_OBJECT

public:
    /// `model`, `view` and `theme` must outlive it.
    StatusBar(BrowserModel& model, const FileView& view, const Theme& theme, QWidget* parent = nullptr);

    /// The parts that are shown, from the left.
    [[nodiscard]] QStringList parts() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    void takeSizes();

    BrowserModel* model_;
    const FileView* view_;
    const Theme* theme_;
    SelectionSize selectionSize_;
    std::vector<QLabel*> labels_;
};

} // namespace ombrel
