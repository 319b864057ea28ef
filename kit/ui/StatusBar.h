#pragma once

#include <QStringList>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <vector>

class QAction;
class QHBoxLayout;

namespace ombrel {

class BrowserModel;
class ElidedLabel;
class FileView;
class HomeModel;
class SelectionSize;
class Theme;

/// What is shown, what is selected and what could not be read, in words. When it is short of room the parts
/// that say least leave, and the last one that stays is shortened; its tooltip then has all of them.
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

    /// What there is to say, from the left.
    [[nodiscard]] QStringList parts() const { return textsOf(parts_); }

protected:
    bool event(QEvent* event) override;
    /// Finds out why entries could not be read when somebody asks for the tooltip.
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    /// How long a part stays when there is less and less room, the first to leave first.
    enum class Worth : std::uint8_t { limit, unreadable, count, selection, answer };
    struct Part {
        QString text;
        Worth worth;
    };

    void refresh();
    /// Lets parts leave until the others fit.
    void arrange();
    /// What is left for the parts.
    [[nodiscard]] int room() const;
    [[nodiscard]] std::vector<Part> allParts() const;
    [[nodiscard]] static QStringList textsOf(const std::vector<Part>& parts);
    [[nodiscard]] QString homeText() const;
    void takeSizes();

    const Theme* theme_;
    BrowserModel* model_ = nullptr;
    const FileView* view_ = nullptr;
    const HomeModel* home_ = nullptr;
    std::unique_ptr<SelectionSize> selectionSize_; ///< of the pane that is followed
    std::vector<Part> parts_;                      ///< as the labels show them
    std::vector<ElidedLabel*> labels_;
    QHBoxLayout* switches_ = nullptr; ///< nothing at home
    QString dropEffect_;
    QString toolTip_; ///< of all parts while some are left out
};

} // namespace ombrel
