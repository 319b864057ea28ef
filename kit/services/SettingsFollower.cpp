#include "services/SettingsFollower.h"

#include <utility>

namespace ombrel {
namespace {

using Event = DirectoryWatcher::Event;

constexpr DirectoryWatcher::Seconds coalescingDelay(0.25);

} // namespace

SettingsFollower::SettingsFollower(AppSettings& settings, FileURL home, FileURL config, QObject* parent)
    : QObject(parent), settings_(settings), locator_(std::move(home), std::move(config)),
      settingsFolder_{settings.fileURL().parent(),
                      {coalescingDelay, [this](Event event) { noteSettings(event); }}},
      config_{locator_.config(), {coalescingDelay, [this](Event event) { noteConfig(event); }}} {
    connect(&locator_, &KnownFolderLocator::changed, this,
            [this] { settings_.setKnownFolders(locator_.folders()); });
}

void SettingsFollower::start() {
    if (std::exchange(isStarted_, true)) return;
    refresh();
}

void SettingsFollower::refresh() {
    if (!isStarted_) return;
    settings_.reload();
    locator_.refresh();
    for (auto* watched : {&settingsFolder_, &config_})
        if (!watched->isWatched) watch(*watched);
}

void SettingsFollower::stop() {
    isStarted_ = false;
    for (auto* watched : {&settingsFolder_, &config_}) {
        watched->watcher.stop();
        watched->isWatched = false;
    }
}

void SettingsFollower::watch(Watched& watched) {
    watched.watcher.watch(watched.folder, [this, &watched](const auto& outcome) {
        watched.isWatched = outcome.has_value();
        // What happened before it was watched.
        if (watched.isWatched && &watched == &settingsFolder_) settings_.reload();
        if (!watched.isWatched || &watched != &config_) return;
        locator_.refresh();
        if (!settingsFolder_.isWatched) watch(settingsFolder_);
    });
}

void SettingsFollower::noteSettings(Event event) {
    if (event == Event::directoryInvalidated) {
        settingsFolder_.isWatched = false;
        watch(settingsFolder_);
    }
    settings_.reload();
}

void SettingsFollower::noteConfig(Event event) {
    if (event == Event::directoryInvalidated) {
        config_.isWatched = false;
        watch(config_);
    }
    // The settings' own folder may have been made just now.
    if (!settingsFolder_.isWatched) watch(settingsFolder_);
    locator_.refresh();
}

} // namespace ombrel
