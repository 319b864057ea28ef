#include "services/SystemWorkspace.h"

#include "base/FileName.h"
#include "base/PathInput.h"
#include "base/UserFolders.h"
#include "listing/GLibPointers.h"
#include "listing/NameCollation.h"
#include "listing/StoreFile.h"
#include "services/DetachedProcess.h"
#include "services/MimeAppsList.h"
#include "services/TerminalCommand.h"

#include <gio/gdesktopappinfo.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

namespace ombrel {
namespace {

using GLib::CString;
using GLib::Failure;
using GLib::Owned;
using Application = Owned<GDesktopAppInfo>;

constexpr auto plainText = "text/plain";
constexpr auto emptyFile = "application/x-zerosize";

/// A location that GIO's answer can be compared and kept by; nothing for an application of another kind.
std::optional<DesktopApplication> described(GDesktopAppInfo* info) {
    auto* const general = G_APP_INFO(info);
    const char* const path = g_desktop_app_info_get_filename(info);
    auto file = path ? FileURL::fromPath(path) : std::unexpected(FileURL::Fault::notAbsolute);
    if (!file) return std::nullopt;
    DesktopApplication application{.id = {}, .name = {}, .icon = {}, .file = *std::move(file)};
    if (const char* const id = g_app_info_get_id(general)) application.id = id;
    if (const char* const name = g_app_info_get_display_name(general)) application.name = name;
    if (GIcon* const icon = g_app_info_get_icon(general)) {
        // Of a theme's icon its name, of a file its path.
        const CString text(g_icon_to_string(icon));
        if (text) application.icon = text.get();
    }
    return application;
}

std::optional<DesktopApplication> described(GAppInfo* info) {
    return G_IS_DESKTOP_APP_INFO(info) ? described(G_DESKTOP_APP_INFO(info)) : std::nullopt;
}

/// What a list of GIO's holds; the list goes.
std::vector<DesktopApplication> taken(GList* list) {
    std::vector<DesktopApplication> applications;
    for (GList* one = list; one; one = one->next)
        if (auto application = described(G_APP_INFO(one->data)))
            applications.push_back(*std::move(application));
    g_list_free_full(list, g_object_unref);
    return applications;
}

Application applicationOf(const DesktopApplication& application) {
    if (!application.id.empty())
        if (Application found(g_desktop_app_info_new(application.id.c_str())); found) return found;
    return Application(g_desktop_app_info_new_from_filename(application.file.path().c_str()));
}

Application defaultOf(const std::string& type) {
    Owned<GAppInfo> info(g_app_info_get_default_for_type(type.c_str(), FALSE));
    if (!info || !G_IS_DESKTOP_APP_INFO(info.get())) return {};
    return Application(G_DESKTOP_APP_INFO(info.release()));
}

/// What a file of no bytes is going to be, by its name.
std::string typeToChooseBy(const FileURL& url, const std::string& type) {
    if (type != emptyFile || defaultOf(type)) return type;
    gboolean isUnsure = FALSE;
    const CString guess(g_content_type_guess(std::string(url.name()).c_str(), nullptr, 0, &isUnsure));
    return guess && !isUnsure ? guess.get() : plainText;
}

struct LaunchContext {
    Owned<GAppLaunchContext> context{g_app_launch_context_new()};

    explicit LaunchContext(const StartupEnvironment& environment) {
        for (const auto& name : DetachedProcess::ownStartupVariables())
            g_app_launch_context_unsetenv(context.get(), name.c_str());
        for (const auto& [name, value] : environment)
            g_app_launch_context_setenv(context.get(), name.c_str(), value.c_str());
    }
};

/// Starts an application with some files, in a session of its own. Answers the system's words for a failure.
std::optional<std::string> launch(GDesktopAppInfo* info, std::span<const FileURL> urls,
                                  const StartupEnvironment& environment) {
    std::vector<std::string> uris;
    for (const auto& url : urls)
        uris.push_back(url.uri());
    GList* list = nullptr;
    for (auto uri = uris.rbegin(); uri != uris.rend(); ++uri)
        list = g_list_prepend(list, uri->data());
    const std::unique_ptr<GList, decltype(&g_list_free)> owned(list, g_list_free);
    const LaunchContext context(environment);
    GError* error = nullptr;
    bool isStarted = false;
    if (g_desktop_app_info_get_boolean(info, "DBusActivatable")) {
        isStarted = g_app_info_launch_uris(G_APP_INFO(info), list, context.context.get(), &error);
    } else {
        // Our own working folder might keep a volume busy; the application may have named another.
        std::string home = PathInput::userHomeDirectory().path();
        const CString chosen(g_desktop_app_info_get_string(info, "Path"));
        char* const folder = chosen && *chosen ? nullptr : home.data();
        const GSpawnChildSetupFunc prepare = [](void* path) {
            (void)::setsid();
            if (path && ::chdir(static_cast<const char*>(path)) != 0) (void)::chdir("/");
        };
        isStarted =
            g_desktop_app_info_launch_uris_as_manager(info, list, context.context.get(), G_SPAWN_SEARCH_PATH,
                                                      prepare, folder, nullptr, nullptr, &error);
    }
    if (isStarted) return std::nullopt;
    const Failure failure(error);
    return error ? error->message : std::string();
}

std::string shownName(const FileURL& url) {
    return FileName::displayText(url.title());
}

void addFailures(WorkspaceOpener::Problems& problems, std::span<const FileURL> urls,
                 const std::string& reason) {
    for (const auto& url : urls)
        problems.push_back({url, {"open.error.failed", {shownName(url), reason}}});
}

/// A desktop file that stands for a place instead of an application.
std::optional<std::string> linkOf(const FileURL& desktopFile) {
    const std::unique_ptr<GKeyFile, decltype(&g_key_file_unref)> file(g_key_file_new(), g_key_file_unref);
    if (!g_key_file_load_from_file(file.get(), desktopFile.path().c_str(), G_KEY_FILE_NONE, nullptr))
        return std::nullopt;
    const auto value = [&](const char* key) {
        const CString text(g_key_file_get_string(file.get(), G_KEY_FILE_DESKTOP_GROUP, key, nullptr));
        return std::string(text ? text.get() : "");
    };
    if (value(G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_LINK) return std::nullopt;
    return value(G_KEY_FILE_DESKTOP_KEY_URL);
}

/// An application or a place.
std::optional<std::string> launchDesktopFile(const FileURL& url, const StartupEnvironment& environment) {
    if (const Application info(g_desktop_app_info_new_from_filename(url.path().c_str())); info)
        return launch(info.get(), {}, environment);
    const auto link = linkOf(url);
    if (!link) return std::string();
    const LaunchContext context(environment);
    GError* error = nullptr;
    if (g_app_info_launch_default_for_uri(link->c_str(), context.context.get(), &error)) return std::nullopt;
    const Failure failure(error);
    return error ? error->message : std::string();
}

} // namespace

std::expected<OpeningFacts, Text> SystemWorkspace::examine(const FileURL& url) {
    return OpeningFacts::of(url);
}

ApplicationChoice SystemWorkspace::applicationsFor(std::span<const FileURL> urls) {
    ApplicationChoice choice;
    for (const auto& url : urls) {
        const auto facts = OpeningFacts::of(url);
        if (!facts) continue;
        auto type = typeToChooseBy(url, facts->type);
        if (std::ranges::find(choice.types, type) == choice.types.end())
            choice.types.push_back(std::move(type));
    }
    std::optional<DesktopApplication> shared; // the default of all types
    for (std::size_t i = 0; i < choice.types.size(); ++i) {
        const auto& type = choice.types[i];
        auto applications = taken(g_app_info_get_all_for_type(type.c_str()));
        const Application byDefault = defaultOf(type);
        auto own = byDefault ? described(byDefault.get()) : std::nullopt;
        // A default counts even for an application that does not list the type.
        if (own && std::ranges::find(applications, *own) == applications.end()) applications.push_back(*own);
        if (i == 0) {
            choice.applications = std::move(applications);
            shared = std::move(own);
            continue;
        }
        std::erase_if(choice.applications, [&](const DesktopApplication& application) {
            return std::ranges::find(applications, application) == applications.end();
        });
        if (shared != own) shared.reset();
    }
    if (!shared) return choice;
    if (const auto place = std::ranges::find(choice.applications, *shared);
        place != choice.applications.end()) {
        std::rotate(choice.applications.begin(), place, place + 1);
        choice.hasDefault = true;
    }
    return choice;
}

std::vector<DesktopApplication> SystemWorkspace::allApplications() {
    std::vector<std::pair<std::string, DesktopApplication>> keyed;
    GList* const all = g_app_info_get_all();
    for (GList* one = all; one; one = one->next) {
        auto* const info = G_APP_INFO(one->data);
        auto application = g_app_info_should_show(info) ? described(info) : std::nullopt;
        if (!application) continue;
        std::string key;
        NameCollation::appendKey(application->name, key);
        keyed.emplace_back(std::move(key), *std::move(application));
    }
    g_list_free_full(all, g_object_unref);
    std::ranges::stable_sort(keyed, {}, &decltype(keyed)::value_type::first);
    std::vector<DesktopApplication> applications;
    for (auto& [key, application] : keyed)
        applications.push_back(std::move(application));
    return applications;
}

std::optional<DesktopApplication> SystemWorkspace::describe(const FileURL& desktopFile) {
    const Application info(g_desktop_app_info_new_from_filename(desktopFile.path().c_str()));
    return info ? described(info.get()) : std::nullopt;
}

std::optional<DesktopApplication> SystemWorkspace::textApplication() {
    const Application info = defaultOf(plainText);
    return info ? described(info.get()) : std::nullopt;
}

WorkspaceOpener::Problems SystemWorkspace::open(std::span<const FileURL> urls,
                                                const StartupEnvironment& environment) {
    struct Group {
        Application application;
        std::string id;
        std::vector<FileURL> urls;
    };
    std::vector<Group> groups;
    Problems problems;
    for (const auto& url : urls) {
        const auto facts = OpeningFacts::of(url);
        if (!facts) {
            problems.push_back({url, facts.error()});
            continue;
        }
        Application application = defaultOf(typeToChooseBy(url, facts->type));
        if (!application) {
            problems.push_back({url, {"open.error.noApplication", {shownName(url)}}, true});
            continue;
        }
        const char* const id = g_app_info_get_id(G_APP_INFO(application.get()));
        const auto known =
            std::ranges::find_if(groups, [&](const Group& group) { return id && group.id == id; });
        if (known != groups.end())
            known->urls.push_back(url);
        else
            groups.push_back({std::move(application), id ? id : "", {url}});
    }
    for (const auto& group : groups)
        if (const auto reason = launch(group.application.get(), group.urls, environment))
            addFailures(problems, group.urls, *reason);
    return problems;
}

WorkspaceOpener::Problems SystemWorkspace::openWith(const DesktopApplication& application,
                                                    std::span<const FileURL> urls,
                                                    const StartupEnvironment& environment) {
    Problems problems;
    const Application info = applicationOf(application);
    if (!info)
        problems.push_back({urls.empty() ? application.file : urls.front(),
                            {"open.error.applicationGone", {FileName::displayText(application.name)}}});
    else if (const auto reason = launch(info.get(), urls, environment))
        addFailures(problems, urls, *reason);
    return problems;
}

WorkspaceOpener::Problems SystemWorkspace::run(const FileURL& url, const StartupEnvironment& environment) {
    Problems problems;
    const auto facts = OpeningFacts::of(url);
    if (!facts) return {{url, facts.error()}};
    if (!facts->mayRun) return {{url, {"open.error.notExecutable", {shownName(url)}}}};
    if (!facts->isNative) return open({&url, 1}, environment);
    std::optional<std::string> reason;
    if (facts->kind == OpeningFacts::Kind::launcher)
        reason = launchDesktopFile(url, environment);
    else if (const auto started = DetachedProcess::start({url.path()}, url.parent(), environment); !started)
        reason = started.error();
    if (reason) addFailures(problems, {&url, 1}, *reason);
    return problems;
}

std::optional<Text> SystemWorkspace::openTerminal(const FileURL& folder,
                                                  const StartupEnvironment& environment) {
    const char* const search = std::getenv("PATH");
    const auto words = TerminalCommand::find(folder, search && *search ? search : "/usr/bin:/bin");
    if (!words) return Text{"open.error.noTerminal"};
    const auto started = DetachedProcess::start(*words, folder, environment);
    if (!started) return Text{"open.error.terminal", {shownName(folder), started.error()}};
    return std::nullopt;
}

std::optional<Text> SystemWorkspace::setDefault(std::span<const std::string> types,
                                                const DesktopApplication& application) {
    const StoreFile file(UserFolders::config().appending("mimeapps.list"));
    const auto old = file.read();
    POSIX::Result<void> written;
    if (old) {
        std::string text = old->value_or("");
        for (const auto& type : types)
            text = MimeAppsList::withDefault(text, type, application.id);
        written = file.replace(text);
    } else {
        written = std::unexpected(old.error());
    }
    if (written) return std::nullopt;
    return Text{"open.error.defaultNotSaved",
                {FileName::displayText(application.name), written.error().systemText()}};
}

std::shared_ptr<WorkspaceOpener> WorkspaceOpener::system() {
    return std::make_shared<SystemWorkspace>();
}

} // namespace ombrel
