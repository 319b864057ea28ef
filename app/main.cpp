#include "app/Arguments.h"
#include "app/Instance.h"
#include "app/Lifetime.h"
#include "app/Picture.h"
#include "app/PictureContent.h"
#include "app/PictureSeries.h"
#include "app/Services.h"
#include "app/Windows.h"
#include "base/PathInput.h"
#include "base/Worker.h"
#include "listing/SystemCall.h"
#include "services/InterfaceLanguage.h"
#include "services/QtConnections.h"
#include "services/SettingsFollower.h"
#include "ui/BrowserWindow.h"
#include "ui/DesktopAppearance.h"
#include "ui/FolderPickerDialog.h"
#include "ui/OmbrelStyle.h"
#include "ui/OnboardingDialog.h"
#include "ui/SystemPasteboard.h"
#include "ui/Theme.h"

#include <QApplication>
#include <QFile>
#include <QIcon>

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace ombrel {
namespace {

constexpr int wrongUsage = 2;
/// How long an ending program waits for threads that may hang in a dead mount.
constexpr std::chrono::seconds patience(2);

/// For what needs no window: prints, and answers with the status to end with.
int answer(const std::expected<Arguments, Text>& arguments) {
    if (!arguments) {
        std::fprintf(stderr, "%s\n%s\n", arguments.error().localized().c_str(),
                     Texts::localized("app.error.seeHelp").c_str());
        return wrongUsage;
    }
    if (arguments->request == Arguments::Request::version)
        std::printf("ombrel %s\n", OMBREL_VERSION);
    else
        std::printf("%s", Arguments::help().c_str());
    return 0;
}

bool hasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

/// Without a desktop nothing says how things should look: what follows is the same on every machine.
void prepareOffscreen() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt makes it when it is missing, and complains when nobody has named one.
    if (qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("XDG_RUNTIME_DIR", "/tmp/runtime-" + QByteArray::number(::getuid()));
}

void chooseOffscreenLook(QApplication& application) {
    constexpr int fontPixels = 13;
    QFont font(QStringLiteral("Noto Sans"));
    font.setPixelSize(fontPixels);
    application.setFont(font);
    QIcon::setThemeSearchPaths({QStringLiteral("/usr/share/icons"), QStringLiteral(":/icons")});
    QIcon::setThemeName(QStringLiteral("hicolor"));
}

/// The colours and the style, as long as it lives.
class Look final : public QObject {
public:
    explicit Look(const Appearance& appearance) : theme(appearance) {
        QCoreApplication::instance()->installEventFilter(this);
        QApplication::setStyle(new OmbrelStyle(theme));
        QApplication::setPalette(theme.palette());
        QObject::connect(&theme, &Theme::changed, &theme,
                         [this] { QApplication::setPalette(theme.palette()); });
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        // The desktop's font has become another one.
        if (watched == QCoreApplication::instance() && event->type() == QEvent::ApplicationFontChange)
            theme.setInterfaceFont(QApplication::font());
        return QObject::eventFilter(watched, event);
    }

    Theme theme;
};

int makePictures(QApplication& application, const Arguments& arguments, const PictureContent& content) {
    chooseOffscreenLook(application);
#ifndef NDEBUG
    SystemCall::forbidOnMainThread(true);
#endif
    bool isFilled = false;
    std::thread([&] { isFilled = content.fill(); }).join();
    if (!isFilled) {
        const QtConnections connections(InterfaceLanguage::choose());
        std::fprintf(stderr, "%s\n", Texts::localized("app.error.pictureFiles").c_str());
        return 1;
    }
    Look look({.isMotionReduced = true});
    const int status =
        PictureSeries(QFile::decodeName(arguments.pictureFile.c_str()), content, look.theme).make();
    if (!Worker::waitUntilNoneRuns(patience)) ::_exit(status);
    return status;
}

std::unique_ptr<BrowserWindow> showPictured(Windows& windows, const Theme& theme,
                                            const Arguments& arguments) {
    std::unique_ptr<BrowserWindow> pictured(
        windows.make(arguments.folders.empty() ? PathInput::userHomeDirectory() : arguments.folders.front()));
    pictured->resize(theme.size(ThemeSize::windowWidth), theme.size(ThemeSize::windowHeight));
    pictured->show();
    new Picture(*pictured, QFile::decodeName(arguments.pictureFile.c_str()));
    return pictured;
}

/// Opens the windows, at the first start after the way in.
void showWindows(QApplication& application, Windows& windows, const Theme& theme, AppServices& services,
                 const Arguments& arguments) {
    const auto openWindows = [&windows, &arguments] { windows.open(arguments.folders); };
    // Who asks for a folder is not kept from it.
    if (!arguments.folders.empty() || services.settings().didCompleteOnboarding()) return openWindows();
    auto* const onboarding = new OnboardingDialog(theme, services);
    QObject::connect(onboarding, &QDialog::finished, &application, openWindows);
    onboarding->show();
}

int runApplication(QApplication& application, const Arguments& arguments) {
    std::optional<Instance> instance;
    if (arguments.request == Arguments::Request::windows) {
        if (auto bus = Instance::sessionBus()) instance.emplace(*std::move(bus));
        if (instance && instance->handOver(arguments.folders)) return 0;
    }
    auto settings = std::make_unique<AppSettings>();
    const auto language = InterfaceLanguage::choose(settings->launchInterfaceLanguage());
    QLocale::setDefault(language.locale);
    const QtConnections connections(language);
#ifndef NDEBUG
    SystemCall::forbidOnMainThread(true);
#endif
    const bool isPicture = arguments.request == Arguments::Request::picture;
    auto appearance = DesktopAppearance::fromPalette(QGuiApplication::palette());
    if (isPicture) {
        chooseOffscreenLook(application);
        appearance = {.isDark = arguments.isDark, .isHighContrast = false, .isMotionReduced = true};
    }
    Look look(appearance);
    Theme& theme = look.theme;
    DesktopAppearance desktop(theme);
    SystemPasteboard pasteboard;
    FolderPickerDialog folderPicker([] { return QApplication::activeWindow(); });
    const auto services = makeServices(std::move(settings), pasteboard);
    services->access().setFolderPicker(&folderPicker);
    std::optional<Windows> windows(std::in_place, theme, *services);
    const Lifetime lifetime(theme, *services,
                            [&windows](const FileURL& folder) { windows->open(std::optional(folder)); });
    if (instance)
        instance->serve([&windows](const std::vector<FileURL>& folders) { windows->open(folders); });
    SettingsFollower follower(services->settings());
    std::unique_ptr<BrowserWindow> pictured;
    if (isPicture) {
        pictured = showPictured(*windows, theme, arguments);
    } else {
        desktop.follow();
        services->start();
        follower.start();
        QObject::connect(&application, &QGuiApplication::applicationStateChanged, &follower,
                         [&follower](Qt::ApplicationState state) {
                             if (state == Qt::ApplicationActive) follower.refresh();
                         });
        showWindows(application, *windows, theme, *services, arguments);
    }
    const int status = QApplication::exec();
    // Who starts the program from now on has one of his own.
    instance.reset();
    follower.stop();
    services->stop();
    pictured.reset();
    windows.reset();
    // A worker that still hangs, in a dead mount say, would meet globals that are gone.
    if (!Worker::waitUntilNoneRuns(patience)) ::_exit(status);
    return status;
}

} // namespace
} // namespace ombrel

int main(int argumentCount, char** argumentValues) {
    using namespace ombrel;
    // Words are bytes; the application object would make text of them.
    const std::vector<std::string_view> words(argumentValues + std::min(argumentCount, 1),
                                              argumentValues + argumentCount);
    const auto arguments = Arguments::parse(words);
    int applicationArguments = std::min(argumentCount, 1);
    using enum Arguments::Request;
    const bool draws = arguments && (arguments->request == picture || arguments->request == series);
    const bool opensWindow = draws || (arguments && arguments->request == windows);
    const bool canOpen = draws || (opensWindow && hasDisplay());
    if (!canOpen) {
        const QCoreApplication application(applicationArguments, argumentValues);
        const QtConnections connections(InterfaceLanguage::choose());
        if (!opensWindow) return answer(arguments);
        std::fprintf(stderr, "%s\n", Texts::localized("app.error.noDisplay").c_str());
        return 1;
    }
    if (draws) prepareOffscreen();
    std::optional<PictureContent> content;
    if (arguments->request == series) content.emplace().enter();
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QGuiApplication::setDesktopFileName(QStringLiteral("com.halvane.Ombrel"));
    QApplication application(applicationArguments, argumentValues);
    QApplication::setApplicationName(QStringLiteral("ombrel"));
    QApplication::setApplicationDisplayName(QString());
    QApplication::setApplicationVersion(QStringLiteral(OMBREL_VERSION));
    return content ? makePictures(application, *arguments, *content)
                   : runApplication(application, *arguments);
}
