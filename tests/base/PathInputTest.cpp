#include "base/PathInput.h"

#include <gmock/gmock.h>
#include <pwd.h>
#include <unistd.h>

#include <string>

namespace ombrel {
namespace {

const FileURL home = *FileURL::fromPath("/home/me/");
const FileURL shown = *FileURL::fromPath("/srv/shown");

/// The path, or the refusal's name.
std::string outcome(std::string_view text, const std::optional<FileURL>& base = shown) {
    const auto result = PathInput::parse(text, base, home);
    return result ? result->path() : std::string(rawValue(result.error()));
}

struct Row {
    std::string_view text, outcome;
};

TEST(TypedAddress, LosesTheWhiteSpaceAroundIt) {
    constexpr Row rows[] = {
        {"", "empty"},
        {" \t\r\n\v\f", "empty"},
        {"\xC2\xA0\xE3\x80\x80\xE2\x80\xA8\xC2\x85", "empty"},
        {"  /tmp \n", "/tmp"},
        {"\xE2\x80\x89/tmp\xE2\x81\x9F", "/tmp"},
        {"/a b/c", "/a b/c"},
        {"/tmp/ends /", "/tmp/ends "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
}

TEST(TypedAddress, IsAnAbsolutePath) {
    constexpr Row rows[] = {
        {"/", "/"},
        {"//", "/"},
        {"/..", "/"},
        {"/usr//share/./doc/../man/", "/usr/share/man"},
        {"/caf\xE9/\xFF", "/caf\xE9/\xFF"},
        {"/C:/Users", "/C:/Users"},
        {"/100%25", "/100%25"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
    EXPECT_TRUE(PathInput::parse("/usr/share/", shown, home)->isMarkedDirectory());
}

TEST(TypedAddress, StartsAtHomeWithATilde) {
    constexpr Row rows[] = {
        {"~", "/home/me"},          {"~/", "/home/me"}, {"~/Documents/../Desktop", "/home/me/Desktop"},
        {"~//etc", "/home/me/etc"}, {"~/../..", "/"},   {"~root", "/srv/shown/~root"},
        {"~~", "/srv/shown/~~"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
    const auto unresolved = *FileURL::fromPath("/home/../me");
    EXPECT_EQ(PathInput::parse("~", {}, unresolved)->path(), "/home/../me");
    EXPECT_EQ(PathInput::parse("~/x", {}, unresolved)->path(), "/me/x");
}

TEST(TypedAddress, IsAFileURI) {
    constexpr Row rows[] = {
        {"file:///tmp/a%20b", "/tmp/a b"},
        {"FILE:///tmp/../etc/", "/etc"},
        {"file:/tmp", "/tmp"},
        {"file://localhost/tmp", "/tmp"},
        {"file:///", "/"},
        {"file:///caf%E9/%ff", "/caf\xE9/\xFF"},
        {"file:///tmp/%2E%2E/etc", "/etc"},
        {"file:", "invalid"},
        {"file:relative", "invalid"},
        {"file: not one", "invalid"},
        {"file://elsewhere.invalid/tmp", "invalid"},
        {"file:///tmp/%", "invalid"},
        {"file:///tmp/%4", "invalid"},
        {"file:///tmp/%zz", "invalid"},
        {"file:///tmp/a%00b", "invalid"},
        {"file:///tmp/a#part", "invalid"},
        {"file:///tmp/a?query", "invalid"},
        {"files:///tmp", "/srv/shown/files:/tmp"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
}

TEST(TypedAddress, OfWindowsIsRefusedAsSuch) {
    constexpr Row rows[] = {
        {"C:", "windowsPath"},
        {" d: ", "windowsPath"},
        {"c:/Users", "windowsPath"},
        {"Z:\\Users", "windowsPath"},
        {"\\\\server\\share", "windowsPath"},
        {"\\\\", "windowsPath"},
        {"C:x", "/srv/shown/C:x"},
        {"C", "/srv/shown/C"},
        {"1:/x", "/srv/shown/1:/x"},
        {"\xC3\xA9:/x", "/srv/shown/\xC3\xA9:/x"},
        {"\\one", "/srv/shown/\\one"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
}

TEST(TypedAddress, IsOtherwiseRelativeToTheShownFolder) {
    constexpr Row rows[] = {
        {"docs", "/srv/shown/docs"},
        {"a/b/../c", "/srv/shown/a/c"},
        {"..", "/srv"},
        {"../../../..", "/"},
        {".", "/srv/shown"},
        {"https://example.org/x", "/srv/shown/https:/example.org/x"},
        {"$HOME/x", "/srv/shown/$HOME/x"},
        {"%USERPROFILE%", "/srv/shown/%USERPROFILE%"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(outcome(row.text), row.outcome) << row.text;
        EXPECT_EQ(outcome(row.text, std::nullopt), "relativeWithoutBase") << row.text;
    }
    EXPECT_EQ(PathInput::parse("x", FileURL(), home)->path(), "/x");
}

TEST(TypedAddress, WithANulIsInvalidWhateverItsForm) {
    for (const char* start : {"/tmp/", "~/", "C:", "docs", "file:///", "\\\\"})
        EXPECT_EQ(outcome(std::string(start) + '\0' + "x"), "invalid") << start;
}

TEST(HomeOfTheUser, IsTheUserDatabases) {
    const auto* entry = ::getpwuid(::getuid());
    if (!entry || !entry->pw_dir || entry->pw_dir[0] != '/') GTEST_SKIP() << "the user has no entry";
    EXPECT_EQ(PathInput::userHomeDirectory(), *FileURL::fromPath(entry->pw_dir));
    EXPECT_TRUE(PathInput::userHomeDirectory().isMarkedDirectory());
}

} // namespace
} // namespace ombrel
