#include "services/DetachedProcess.h"

#include "listing/GLibPointers.h"

#include <glib.h>
#include <unistd.h>

#include <memory>

namespace ombrel::DetachedProcess {
namespace {

using Environment = std::unique_ptr<char*, decltype([](char** list) { g_strfreev(list); })>;

Environment environmentWith(const StartupEnvironment& additions) {
    char** list = g_get_environ();
    for (const auto& name : ownStartupVariables())
        list = g_environ_unsetenv(list, name.c_str());
    for (const auto& [name, value] : additions)
        list = g_environ_setenv(list, name.c_str(), value.c_str(), TRUE);
    return Environment(list);
}

} // namespace

std::vector<std::string> ownStartupVariables() {
    return {"DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN"};
}

std::expected<void, std::string> start(const std::vector<std::string>& words, const FileURL& folder,
                                       const StartupEnvironment& environment) {
    std::vector<std::string> copies = words;
    std::vector<char*> pointers;
    for (auto& word : copies)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const auto variables = environmentWith(environment);
    // Between fork and exec, where almost nothing is allowed.
    const GSpawnChildSetupFunc leadSession = [](void*) { (void)::setsid(); };
    GError* error = nullptr;
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_STDOUT_TO_DEV_NULL | G_SPAWN_STDERR_TO_DEV_NULL);
    if (g_spawn_async(folder.path().c_str(), pointers.data(), variables.get(), flags, leadSession, nullptr,
                      nullptr, &error))
        return {};
    const GLib::Failure owned(error);
    return std::unexpected(std::string(error->message));
}

} // namespace ombrel::DetachedProcess
