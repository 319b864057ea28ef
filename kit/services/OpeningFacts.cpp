#include "services/OpeningFacts.h"

#include "base/FileName.h"
#include "base/UserFolders.h"
#include "listing/GLibPointers.h"
#include "listing/POSIX.h"
#include "listing/TypeDatabase.h"

#include <gio/gio.h>

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace ombrel {
namespace {

using GLib::Owned;

std::string contentType(const FileURL& url) {
    const Owned<GFile> file(g_file_new_for_path(url.path().c_str()));
    const Owned<GFileInfo> info(g_file_query_info(file.get(), G_FILE_ATTRIBUTE_STANDARD_CONTENT_TYPE,
                                                  G_FILE_QUERY_INFO_NONE, nullptr, nullptr));
    const char* const type = info ? g_file_info_get_content_type(info.get()) : nullptr;
    return type ? type : "application/octet-stream";
}

bool isOneOf(std::string_view type, std::initializer_list<std::string_view> types) {
    for (const auto one : types)
        if (type == one) return true;
    return false;
}

/// In the folders where only administrators and installers put desktop files, and the user's own of them.
bool isInstalledLauncher(const FileURL& url) {
    if (url.isWithin(UserFolders::data().appending("applications"))) return true;
    const char* const listed = std::getenv("XDG_DATA_DIRS");
    std::string_view folders = listed && *listed ? listed : "/usr/local/share:/usr/share";
    while (!folders.empty()) {
        const auto end = std::min(folders.find(':'), folders.size());
        const auto folder = FileURL::fromPath(folders.substr(0, end));
        if (folder && url.isWithin(folder->appending("applications"))) return true;
        folders.remove_prefix(std::min(end + 1, folders.size()));
    }
    return false;
}

std::string_view reasonKey(const FileURL& url, int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR: return POSIX::lstat(url) ? "open.error.brokenLink" : "open.error.missing";
    case ELOOP: return "open.error.brokenLink";
    case EACCES:
    case EPERM: return "open.error.denied";
    default: return {};
    }
}

} // namespace

std::expected<OpeningFacts, Text> OpeningFacts::of(const FileURL& url) {
    const std::string name = FileName::displayText(url.title());
    const auto status = POSIX::statFollowing(url);
    if (!status) {
        if (const auto key = reasonKey(url, status.error().number); !key.empty())
            return std::unexpected(Text{key, {name}});
        return std::unexpected(Text{"open.error.failed", {name, status.error().systemText()}});
    }
    if (status->isDirectory()) return OpeningFacts{.kind = Kind::folder, .type = "inode/directory"};
    if (!status->isRegular()) return std::unexpected(Text{"open.error.special", {name}});

    constexpr std::uint32_t anyoneRuns = 0111;
    OpeningFacts facts{.type = contentType(url), .mayRun = (status->mode & anyoneRuns) != 0};
    const TypeIndex type = TypeDatabase::index(facts.type);
    if (facts.type == "application/x-desktop") {
        facts.kind = Kind::launcher;
        facts.mayRun = facts.mayRun || isInstalledLauncher(url);
    } else if (isOneOf(facts.type, {"application/vnd.appimage", "application/x-iso9660-appimage"})) {
        facts.kind = Kind::program;
    } else if (facts.type == "application/x-sharedlib" && url.name().find(".so") != std::string_view::npos) {
        facts.kind = Kind::document;
    } else if (TypeDatabase::isScript(type)) {
        facts.kind = Kind::script;
    } else if (TypeDatabase::isExecutable(type)) {
        facts.kind = Kind::program;
        facts.isNative = isOneOf(facts.type, {"application/x-executable", "application/x-pie-executable",
                                              "application/x-sharedlib"});
    }
    return facts;
}

} // namespace ombrel
