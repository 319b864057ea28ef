#pragma once

#include "base/FileURL.h"
#include "browser/BrowserModel.h"
#include "browser/CommandDispatcher.h"
#include "browser/KeyRouter.h"

#include <QWidget>

class QAction;

namespace ombrel {

class AppSettings;
class DetailsView;
class Overlay;
class StatusBar;
class Theme;

/// One window: it makes a pane's model and the widgets that show it, and connects them. Deletes itself when
/// closed.
class BrowserWindow final : public QWidget {
    Q_OBJECT

public:
    struct Setting {
        const Theme& theme;          ///< must outlive the window
        const AppSettings& settings; ///< likewise
        ListingFeed::Source listings;
        FileURL home; ///< where addresses begin
    };

    explicit BrowserWindow(Setting setting);
    ~BrowserWindow() override;

    [[nodiscard]] BrowserModel& model() noexcept { return model_; }
    /// What the commands do, wherever they come from. Who can do more binds it, then calls `refreshCommands`.
    [[nodiscard]] CommandDispatcher& commands() noexcept { return commands_; }
    void refreshCommands();
    [[nodiscard]] DetailsView& view() noexcept { return *view_; }
    [[nodiscard]] const StatusBar& statusBar() const noexcept { return *statusBar_; }
    [[nodiscard]] const Overlay& overlay() const noexcept { return *overlay_; }

    /// The size of a first window on a screen: as the theme has it, or most of a smaller screen.
    [[nodiscard]] static QSize firstSize(const Theme& theme, const QSize& screen);

protected:
    void mousePressEvent(QMouseEvent* event) override;

private:
    QAction* makeAction(FileCommand command);
    void bindCommands();
    void refreshTitle();
    [[nodiscard]] QString withShortcut(const QString& text, FileCommand command) const;
    void open(std::size_t row);

    const Theme* theme_;
    const AppSettings* settings_;
    BrowserModel model_;
    CommandDispatcher commands_;
    KeyRouter keys_;
    QAction* back_;
    QAction* forward_;
    QAction* up_;
    QAction* refresh_;
    DetailsView* view_;
    Overlay* overlay_;
    StatusBar* statusBar_;
};

} // namespace ombrel
