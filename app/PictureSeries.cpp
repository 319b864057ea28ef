#include "app/PictureSeries.h"

#include "base/FileName.h"
#include "browser/ThumbnailStore.h"
#include "operations/OperationProgress.h"
#include "services/OperationJob.h"
#include "ui/BrowserWindow.h"
#include "ui/ContextMenu.h"
#include "ui/DetailsPane.h"
#include "ui/FileView.h"
#include "ui/LocalizedText.h"
#include "ui/OnboardingDialog.h"
#include "ui/PaneArea.h"
#include "ui/ProgressWindow.h"
#include "ui/SettingsWindow.h"
#include "ui/WindowActions.h"

#include <QApplication>
#include <QDir>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace ombrel {
namespace {

constexpr QSize screen(1280, 800), progressPicture(560, 482);
constexpr int largeBand = 30, smallBand = 34;
constexpr QPoint menuCorner(452, 228);

/// The widget that stands in the middle of a picture, with its frame.
QPoint centred(const QWidget& widget, int band) {
    return {(screen.width() - widget.width()) / 2, (screen.height() - widget.height() - band) / 2};
}

/// How far the second job is, of two.
OperationProgress partMoved() {
    OperationProgress progress;
    progress.completedItems = 3;
    progress.totalItems = 12;
    progress.completedBytes = 28;
    progress.totalBytes = 100;
    progress.phase = OperationProgress::Phase::copying;
    return progress;
}

} // namespace

PictureSeries::PictureSeries(QString folder, const PictureContent& content, Theme& theme)
    : folder_(std::move(folder)), content_(&content), theme_(&theme) {}

PictureSeries::~PictureSeries() = default;

int PictureSeries::make() {
    if (!QDir(folder_).exists() && !QDir().mkdir(folder_)) {
        const QtConnections connections(InterfaceLanguage::choose());
        complain(localized("app.error.pictureFolder", {FileName::displayText(folder_.toStdString())}));
        return 1;
    }
    for (const auto language : {Language::english, Language::german, Language::chinese})
        if (!makeAll(language)) return 1;
    return 0;
}

bool PictureSeries::makeAll(Language language) {
    language_ = language;
    setDark(false);
    world_ = std::make_unique<PictureWorld>(*content_, *theme_, language);
    using Step = bool (PictureSeries::*)();
    constexpr auto steps = std::to_array<Step>(
        {&PictureSeries::prepare, &PictureSeries::makeBrowser, &PictureSeries::makeMenu,
         &PictureSeries::makeOverlay, &PictureSeries::makeProgress, &PictureSeries::makeConflicts,
         &PictureSeries::makeSettings, &PictureSeries::makeOnboarding});
    const bool isMade = std::ranges::all_of(steps, [this](Step step) { return (this->*step)(); });
    if (!isMade && !hasComplained_) complain(localized("app.error.pictureState", {last_}));
    world_->endJobs();
    window_.reset();
    world_.reset();
    return isMade;
}

bool PictureSeries::prepare() {
    if (!world_->restoreGrants(false)) return false;
    window_ = std::make_unique<BrowserWindow>(BrowserWindow::Setting{.theme = *theme_,
                                                                     .services = world_->services(),
                                                                     .home = content_->home(),
                                                                     .startingAt = content_->survey()});
    window_->setAttribute(Qt::WA_DeleteOnClose, false);
    using enum BrowserTabsModel::Activation;
    window_->tabs().addTab(content_->survey().appending("Reports"), stayBehind);
    window_->tabs().addTab(std::nullopt, stayBehind);
    window_->resize(screen.width(), screen.height() - largeBand);
    window_->show();
    window_->activateWindow();
    return PictureWorld::runUntil([this] { return world_->isReady(); });
}

// ---- The states

bool PictureSeries::makeBrowser() {
    if (!open(content_->projects()) || !open(content_->survey()) || !select({"Equipment checklist.odt"}))
        return false;
    hover("Field notes week 16.md");
    if (!takeBrowser("main-details")) return false;
    window_->model().setViewMode(ViewMode::icons);
    if (!select({"IMG_4812.jpg", "IMG_4813.jpg", "IMG_4814.jpg"})) return false;
    window_->view().scrollTo(0);
    hover("Field notes week 16.md");
    if (!takeBrowser("main-icons")) return false;
    window_->model().setViewMode(ViewMode::details);
    // What is pinned is shown as a pin in the tree, and not in its branch.
    AppSettings& settings = world_->services().settings();
    auto pins = settings.pinnedFolders();
    for (const FileURL& folder : {content_->survey(), content_->survey().appending("Reports")})
        pins.emplace_back(folder);
    settings.setPinnedFolders(pins);
    constexpr std::size_t homeTab = 1;
    window_->tabs().select(homeTab);
    const bool isTaken = takeBrowser("home");
    window_->tabs().select(0);
    settings.setPinnedFolders(PinnedFolder::defaults());
    return isTaken;
}

bool PictureSeries::makeMenu() {
    if (!select({"Contact sheet north ridge.pdf", "Budget 2026.ods"})) return false;
    window_->actions().refresh();
    QMenu menu(window_.get());
    window_->contextMenu().fill(menu, window_->model());
    menu.popup(window_->mapToGlobal(menuCorner - QPoint(0, largeBand)));
    menu.setActiveAction(window_->actions().of(FileCommand::moveIntoNewFolder));
    return takeOver("context-menu", menu, 0, menuCorner);
}

bool PictureSeries::makeOverlay() {
    const ClosedFolders closed;
    return open(content_->restricted()) && takeBrowser("overlay-permission");
}

bool PictureSeries::makeProgress() {
    constexpr int items = 1284, itemsDone = 822, samples = 42;
    constexpr double giga = 1024.0 * 1024 * 1024, total = 41.1 * giga, done = 26.35 * giga;
    const auto copying =
        world_->standingJob(FileOperationKind::copy, content_->survey().appending("02 Photographs"), items,
                            content_->at("media/ines/Survey drive"));
    const auto moving = world_->standingJob(FileOperationKind::move, content_->home().appending("Downloads"),
                                            12, content_->survey().appending("Reports"));
    const auto works = [](const auto& job) { return job->stage() == OperationJob::Stage::working; };
    if (!PictureWorld::runUntil(
            [&] { return works(copying) && works(moving) && !world_->progress().isEmpty(); }))
        return false;
    OperationProgress progress{.totalItems = items,
                               .totalBytes = static_cast<std::int64_t>(total),
                               .currentName = "Ridge north 0827.jpg",
                               .phase = OperationProgress::Phase::copying};
    double now = 1e9; // beyond any clock of this machine
    for (int i = 0; i <= samples; ++i) {
        const double share = static_cast<double>(i) / samples;
        progress.completedItems = static_cast<std::int64_t>(itemsDone * share);
        progress.completedBytes = static_cast<std::int64_t>(done * share);
        const double speed = 72e6 + 20e6 * std::sin(i * 0.7) + 9e6 * std::sin(i * 1.9);
        now += done / samples / speed;
        copying->apply(progress, now);
    }
    moving->apply(partMoved(), now);
    moving->pause();
    // The time that is left is told once it has not changed for a while.
    const QWidget& frame = world_->progress().window();
    const auto isTold = [&frame] {
        const auto labels = frame.findChildren<QLabel*>();
        return std::ranges::none_of(labels, [](const QLabel* label) {
            return label->isVisible() && label->text() == localized("progress.calculating");
        });
    };
    if (!PictureWorld::runUntil(isTold)) return false;
    if (QWidget* const focused = frame.focusWidget()) focused->clearFocus();
    const bool isTaken =
        take("progress-copying", world_->progress().window(), {.canvas = progressPicture, .band = smallBand});
    world_->endJobs();
    return isTaken;
}

bool PictureSeries::makeConflicts() {
    constexpr QPoint batchCorner(360, 150), singleCorner(360, 84);
    ProgressWindow& progress = world_->progress();
    const auto asks = [&](const std::shared_ptr<OperationJob>& job) {
        return PictureWorld::runUntil([&] { return job->prompt() && progress.window().isVisible(); });
    };
    if (!open(content_->survey()) || !select({"01 Site plans"})) return false;
    const auto many = world_->copyPhotographs(content_->survey().appending("01 Site plans"));
    const auto moving = world_->standingJob(FileOperationKind::move, content_->home().appending("Downloads"),
                                            12, content_->survey().appending("Reports"));
    if (!asks(many) ||
        !PictureWorld::runUntil([&] { return moving->stage() == OperationJob::Stage::working; }))
        return false;
    moving->apply(partMoved(), 1e9);
    if (!takeOver("progress-conflict-batch", progress.window(), smallBand, batchCorner)) return false;
    world_->endJobs();
    if (!select({})) return false;
    const auto one = world_->copyPhotographs(content_->survey());
    const bool isTaken =
        asks(one) && takeOver("progress-conflict-single", progress.window(), smallBand, singleCorner);
    world_->endJobs();
    return isTaken;
}

bool PictureSeries::makeSettings() {
    if (!world_->restoreGrants(true) || !select({"Equipment checklist.odt"})) return false;
    SettingsWindow settings(*theme_, world_->services());
    settings.setAttribute(Qt::WA_DeleteOnClose, false);
    settings.select(SettingsWindow::Page::locations);
    settings.show();
    settings.activateWindow();
    const auto buttons = settings.findChildren<QPushButton*>();
    for (QPushButton* const button : buttons)
        if (button->isVisible() && button->text() == localized("settings.locations.reauthorize"))
            button->setFocus(Qt::OtherFocusReason);
    return takeOver("settings-locations", settings, smallBand, centred(settings, smallBand));
}

bool PictureSeries::makeOnboarding() {
    OnboardingDialog onboarding(*theme_, world_->services());
    onboarding.setAttribute(Qt::WA_DeleteOnClose, false);
    onboarding.show();
    onboarding.activateWindow();
    const auto buttons = onboarding.findChildren<QPushButton*>();
    for (QPushButton* const button : buttons)
        if (button->text() == localized("ui.onboarding.next")) button->click();
    if (onboarding.step() != 1) return false;
    return take("onboarding-preset", onboarding,
                {.canvas = screen, .band = smallBand, .corner = centred(onboarding, smallBand)});
}

// ---- Getting there

bool PictureSeries::open(const FileURL& folder) {
    BrowserModel& model = window_->model();
    model.navigate(folder);
    return PictureWorld::runUntil(
        [&] { return model.currentURL() == folder && model.listingState() != ListingState::Case::loading; });
}

bool PictureSeries::select(std::initializer_list<std::string_view> names) {
    BrowserModel& model = window_->model();
    FileSelection selection = model.selection();
    selection.clear();
    std::optional<std::size_t> current;
    std::size_t found = 0;
    for (const std::string_view name : names)
        for (std::size_t row = 0; row < model.items().size(); ++row)
            if (model.items()[row].name() == name) {
                selection.change(row, FileSelection::Change::add);
                current = row;
                ++found;
            }
    model.setSelection(std::move(selection));
    model.setRow(BrowserModel::Place::current, current);
    window_->activateWindow();
    window_->paneArea().focusContent();
    return found == names.size();
}

void PictureSeries::hover(std::string_view name) {
    FileView& view = window_->view();
    BrowserModel& model = window_->model();
    for (std::size_t row = 0; row < model.items().size(); ++row) {
        if (model.items()[row].name() != name) continue;
        const QPoint at = view.rowRect(row).center();
        QMouseEvent move(QEvent::MouseMove, at, view.viewport()->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &move);
    }
}

void PictureSeries::complain(const QString& text) {
    hasComplained_ = true;
    std::fprintf(stderr, "%s\n", qUtf8Printable(text));
}

// ---- Taking the pictures

void PictureSeries::setDark(bool isDark) {
    theme_->setAppearance({.isDark = isDark, .isHighContrast = false, .isMotionReduced = true});
}

bool PictureSeries::look(QWidget& widget, QImage& result) {
    constexpr int equalLooks = 3;
    int equal = 0;
    return PictureWorld::runUntil([&] {
        if (window_->model().listingState() == ListingState::Case::loading) return false;
        // Looking asks for what is not known yet, and layouts settle in their own time.
        QImage now = widget.grab().toImage();
        const bool isSettled = window_->view().isSettled() && window_->detailsPane().isSettled() &&
                               ThumbnailStore::of(world_->services()).isSettled();
        equal = isSettled && now == result ? equal + 1 : 0;
        result = std::move(now);
        return equal == equalLooks;
    });
}

QImage PictureSeries::framed(const QImage& look, const QString& title, const Placing& placing) const {
    QImage picture = placing.below ? *placing.below : QImage(placing.canvas, QImage::Format_RGB32);
    if (!placing.below)
        picture.fill(theme_->color(placing.corner.isNull() ? ThemeColor::surface : ThemeColor::chrome));
    QPainter painter(&picture);
    const QRect band(placing.corner, QSize(look.width(), placing.band));
    if (placing.band > 0) {
        painter.fillRect(band, theme_->color(ThemeColor::track));
        painter.setFont(theme_->font(ThemeFont::body));
        painter.setPen(theme_->color(ThemeColor::textSecondary));
        painter.drawText(band, Qt::AlignCenter, title);
    }
    painter.drawImage(band.topLeft() + QPoint(0, placing.band), look);
    painter.setPen(theme_->color(ThemeColor::border));
    if (placing.band > 0 && placing.below) painter.drawRect(band.adjusted(-1, -1, 0, look.height()));
    return picture;
}

bool PictureSeries::takeBrowser(const char* name) {
    return take(name, *window_, {.canvas = screen, .band = largeBand});
}

bool PictureSeries::takeOver(const char* name, QWidget& over, int band, QPoint corner) {
    for (const bool isDark : {false, true}) {
        setDark(isDark);
        QImage below, above;
        if (!look(*window_, below) || !look(over, above)) return false;
        const QImage ground = framed(below, window_->windowTitle(), {.canvas = screen, .band = largeBand});
        if (!save(framed(above, over.windowTitle(),
                         {.canvas = screen, .band = band, .corner = corner, .below = &ground}),
                  name))
            return false;
    }
    return true;
}

bool PictureSeries::take(const char* name, QWidget& window, const Placing& placing) {
    for (const bool isDark : {false, true}) {
        setDark(isDark);
        QImage shown;
        if (!look(window, shown) || !save(framed(shown, window.windowTitle(), placing), name)) return false;
    }
    return true;
}

bool PictureSeries::save(const QImage& picture, const char* name) {
    constexpr std::array<const char*, 3> endings = {"", "-de", "-zh"};
    const QString file =
        QStringLiteral("%1/%2-%3%4.png")
            .arg(folder_, QLatin1String(name), QLatin1String(theme_->appearance().isDark ? "dark" : "light"),
                 QLatin1String(endings[static_cast<std::size_t>(language_)]));
    last_ = name;
    if (picture.save(file, "PNG")) return true;
    complain(localized("app.error.picture", {FileName::displayText(file.toStdString())}));
    return false;
}

} // namespace ombrel
