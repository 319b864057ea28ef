#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// What the shared MIME database does not say of types: which folders are packages, and which types run
/// something. Read by TypeDatabase alone.
namespace ombrel::TypeTables {

/// What a package is for. Each stands for one type, a kind of folder.
enum class Package : std::uint8_t {
    application,
    plugin,
    framework,
    systemExtension,
    installer,
    document,
    library,
    project,
    workflow,
    diskImage,
};

struct PackageType {
    Package package;
    std::string_view identifier;
    std::string_view textKey; ///< of its description
};

/// In the order of `Package`.
inline constexpr std::array<PackageType, 10> packageTypes = {{
    {Package::application, "inode/x-application-package", "type.package.application"},
    {Package::plugin, "inode/x-plugin-package", "type.package.plugin"},
    {Package::framework, "inode/x-framework-package", "type.package.framework"},
    {Package::systemExtension, "inode/x-system-extension-package", "type.package.systemExtension"},
    {Package::installer, "inode/x-installer-package", "type.package.installer"},
    {Package::document, "inode/x-document-package", "type.package.document"},
    {Package::library, "inode/x-library-package", "type.package.library"},
    {Package::project, "inode/x-project-package", "type.package.project"},
    {Package::workflow, "inode/x-workflow-package", "type.package.workflow"},
    {Package::diskImage, "inode/x-disk-image-package", "type.package.diskImage"},
}};

struct PackageExtension {
    std::string_view extension; ///< lower case
    Package package;
};

/// Folders that people handle as one thing: the packages that disks bring along from other systems, and the
/// bundles of this one (AppDir, LV2, VST3). Endings that are everyday words ("action", "component",
/// "download") are left out on purpose, because a package is not listed among the folders. Sorted by
/// extension.
inline constexpr auto packageExtensions = std::to_array<PackageExtension>({
    {"aplibrary", Package::library},
    {"app", Package::application},
    {"appdir", Package::application},
    {"appex", Package::plugin},
    {"bundle", Package::plugin},
    {"fcpbundle", Package::library},
    {"framework", Package::framework},
    {"imovielibrary", Package::library},
    {"kext", Package::systemExtension},
    {"key", Package::document},
    {"logicx", Package::project},
    {"lv2", Package::plugin},
    {"mdimporter", Package::plugin},
    {"mpkg", Package::installer},
    {"musiclibrary", Package::library},
    {"numbers", Package::document},
    {"pages", Package::document},
    {"photolibrary", Package::library},
    {"photoslibrary", Package::library},
    {"pkg", Package::installer},
    {"playground", Package::project},
    {"plugin", Package::plugin},
    {"prefpane", Package::plugin},
    {"qlgenerator", Package::plugin},
    {"rtfd", Package::document},
    {"scptd", Package::workflow},
    {"sparsebundle", Package::diskImage},
    {"systemextension", Package::systemExtension},
    {"textbundle", Package::document},
    {"tvlibrary", Package::library},
    {"vst3", Package::plugin},
    {"workflow", Package::workflow},
    {"xcdatamodeld", Package::project},
    {"xcframework", Package::framework},
    {"xcodeproj", Package::project},
    {"xcworkspace", Package::project},
});

// The three classes below decide which endings are never hidden from sight. A type belongs to a class when it
// is one of these or descends from one.

/// Machine code and what a loader runs.
inline constexpr std::array<const char*, 15> executableTypes = {
    "application/x-executable",
    "application/x-pie-executable",
    "application/x-sharedlib",
    "application/x-mach-binary",
    "application/x-pef-executable",
    "application/x-ms-dos-executable",
    "application/x-msdos-program",
    "application/x-dosexec",
    "application/x-msdownload",
    "application/vnd.microsoft.portable-executable",
    "application/x-java",
    "application/java-byte-code",
    "application/x-java-archive",
    "application/java-archive",
    "application/x-python-bytecode",
};

/// Text that an interpreter runs.
inline constexpr std::array<const char*, 24> scriptTypes = {
    "application/x-shellscript",
    "application/x-csh",
    "application/x-fishscript",
    "application/x-shar",
    "text/x-python",
    "text/x-python3",
    "text/x-script.python",
    "application/x-perl",
    "application/x-ruby",
    "application/x-php",
    "application/javascript",
    "text/javascript",
    "application/ecmascript",
    "application/vnd.coffeescript",
    "text/vbscript",
    "application/x-vbscript",
    "application/x-powershell",
    "application/x-bat",
    "application/bat",
    "text/x-lua",
    "text/tcl",
    "application/x-awk",
    "application/x-gdscript",
    "application/hta",
};

/// What starts, or installs, a program.
inline constexpr std::array<const char*, 17> applicationTypes = {
    "inode/x-application-package",
    "inode/x-installer-package",
    "application/x-desktop",
    "application/vnd.appimage",
    "application/x-iso9660-appimage",
    "application/vnd.flatpak",
    "application/vnd.flatpak.ref",
    "application/vnd.snap",
    "application/vnd.debian.binary-package",
    "application/x-rpm",
    "application/vnd.android.package-archive",
    "application/x-msi",
    "application/x-ms-shortcut",
    "application/x-java-jnlp-file",
    "application/appinstaller",
    "application/msix",
    "application/vnd.ms-appx",
};

/// The database derives JSON from JavaScript, and that from executables; what descends from these is data all
/// the same.
inline constexpr std::array<const char*, 1> dataTypes = {"application/json"};

} // namespace ombrel::TypeTables
