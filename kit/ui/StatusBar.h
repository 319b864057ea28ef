#pragma once

#include <QWidget>

#include <memory>
#include <vector>

class QAction;
class QHBoxLayout;
class QLabel;

namespace ombrel {

class BrowserModel;
class FileView;
class HomeModel;
class SelectionSize;
class Theme;

/// What is shown, what is selected and what could not be read, in words.
class StatusBar final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit StatusBar(const Theme& theme, QWidget* parent = nullptr);
    ~StatusBar() override;

    /// Speaks of this pane and its view from now on; both must live until it follows others.
    void follow(BrowserModel& model, const FileView& view);

    /// What is there to count while the pane is at home; must outlive it.
    void setHome(const HomeModel& home);
    /// What a drop would do now; nothing while nothing is dragged.
    void setDropEffect(const QString& text);
    /// Shows the two views that are used most as switches, which do what these actions do.
    void addSwitches(QAction* details, QAction* largeIcons);
    /// Puts `chip` to the right end, and takes it over.
    void take(QWidget* chip);

    /// The parts that are shown, from the left.
    [[nodiscard]] QStringList parts() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void refresh();
    [[nodiscard]] QString homeText() const;
    void takeSizes();

    const Theme* theme_;
    BrowserModel* model_ = nullptr;
    const FileView* view_ = nullptr;
    const HomeModel* home_ = nullptr;
    std::unique_ptr<SelectionSize> selectionSize_; ///< of the pane that is followed
    std::vector<QLabel*> labels_;
    QHBoxLayout* switches_ = nullptr; ///< nothing at home
    QString dropEffect_;
};

} // namespace ombrel
