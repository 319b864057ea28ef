#include "support/ChildProcess.h"
#include "support/TempTree.h"

#include <QByteArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <map>
#include <ranges>
#include <string>
#include <vector>

namespace ombrel {
namespace {

using ::testing::AllOf;
using testing::ChildProcess;
using testing::ChildResult;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::Eq;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using testing::TempTree;
using ::testing::UnorderedElementsAre;

std::vector<std::string> commandLine(std::vector<std::string> words) {
    words.insert(words.begin(), {OMBRELCTL_PATH, "list"});
    return words;
}

ChildResult list(std::vector<std::string> words, const ChildProcess::Setting& setting = {}) {
    return ChildProcess(commandLine(std::move(words)), setting).finish();
}

std::vector<std::string> split(const std::string& text, char end) {
    std::vector<std::string> parts;
    for (std::size_t start = 0, next = 0; start < text.size(); start = next + 1) {
        next = std::min(text.find(end, start), text.size());
        parts.push_back(text.substr(start, next - start));
    }
    return parts;
}

/// The names that the program prints, in its order.
std::vector<std::string> listed(std::vector<std::string> words) {
    words.emplace_back("-0");
    const auto result = list(std::move(words));
    EXPECT_THAT(result.status, Eq(0)) << result.errors;
    EXPECT_THAT(result.errors, IsEmpty());
    return split(result.output, '\0');
}

/// The printed JSON objects by the names in them.
std::map<std::string, QJsonObject> objects(const std::string& output) {
    std::map<std::string, QJsonObject> found;
    for (const auto& line : split(output, '\n')) {
        QJsonParseError fault;
        const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(line), &fault);
        EXPECT_THAT(fault.error, Eq(QJsonParseError::NoError)) << line;
        found[document.object().value(QLatin1String("name")).toString().toStdString()] = document.object();
    }
    return found;
}

std::string text(const QJsonObject& object, const char* key) {
    return object.value(QLatin1String(key)).toString().toStdString();
}

void makeSocket(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_THAT(::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address), Eq(0)) << path;
    ::close(fd);
}

/// One entry of everything that a name or a kind can do to a program, made in the order given.
void makeHostileEntries(const TempTree& tree, bool backwards) {
    std::vector<std::string> files = {
        "plain",
        "two\nlines",
        "tab\there",
        "\x1B[31mred",
        "bell\a",
        " leading",
        "trailing ",
        "-rf",
        "--all",
        "\"quoted\"",
        "back\\slash",
        "invalid\xFF",
        "\xC3",
        "\xED\xA0\x80 surrogate",
        "cut \xE2\x82",
        "photo\u202Egpj.exe",
        "e\u0301",
        "\u00E9",
        "A",
        "a",
        "a2",
        "a10",
        "a02",
        ".hidden-by-dot",
        "漢字",
        "🙂",
        "...",
        std::string(255, 'x'),
        std::string(254, 'x') + '\n',
        "*",
        "?",
        "$HOME",
        "`id`",
        "%s%n",
        "Icon\r",
        "Thumbs.db",
        "\x7F",
    };
    if (backwards) std::ranges::reverse(files);
    for (const auto& name : files)
        tree.file(name);
    tree.folder("folder");
    tree.fifo("pipe");
    makeSocket(tree.path("socket"));
    tree.symlink("dangling", "nowhere\n");
    tree.symlink("loop", "loop");
    tree.symlink("to-folder", "folder");
    tree.symlink("to-pipe", "pipe");
    if (::geteuid() == 0) {
        ASSERT_THAT(::mknod(tree.path("device").c_str(), S_IFCHR | 0666, 0), Eq(0));
    }
}

// ---- What is listed

TEST(ListHostileFolder, GivesTheNamesThatTheKernelGives) {
    const TempTree tree;
    makeHostileEntries(tree, false);
    auto names = listed({"--all", tree.path()});
    std::ranges::sort(names);
    EXPECT_THAT(names, ElementsAreArray(tree.names()));
}

TEST(ListHostileFolder, HasOneOrderWhateverTheOrderOfCreation) {
    const TempTree forwards, backwards;
    makeHostileEntries(forwards, false);
    makeHostileEntries(backwards, true);
    for (const char* key : {"name", "kind", "size"})
        for (const char* direction : {"--sort=name", "--descending"})
            EXPECT_THAT(listed({"--all", direction, "--sort", key, "--first-batch", "3", forwards.path()}),
                        ElementsAreArray(listed({"--all", direction, "--sort", key, backwards.path()})))
                << key << direction;
}

TEST(ListFolder, GivesTheKernelsNamesOfRealFolders) {
    for (const std::string path : {"/usr/include", "/dev", "/proc/self"}) {
        const auto names = listed({"--all", path});
        EXPECT_THAT(names.size(), ::testing::Gt(10U));
        if (path != "/usr/include") continue;
        auto sorted = names;
        std::ranges::sort(sorted);
        EXPECT_THAT(sorted,
                    ElementsAreArray(split(ChildProcess({"/bin/ls", "-A", path}).finish().output, '\n')));
    }
}

TEST(ListFolder, LeavesHiddenAndProtectedItemsOutUnlessAskedFor) {
    const TempTree tree;
    for (const char* name : {"shown", ".dotted", "Thumbs.db", "listed-hidden"})
        tree.file(name);
    tree.file(".hidden", "listed-hidden\n");
    EXPECT_THAT(listed({tree.path()}), ElementsAre("shown"));
    EXPECT_THAT(listed({"--all", tree.path()}),
                UnorderedElementsAre("shown", ".dotted", ".hidden", "Thumbs.db", "listed-hidden"));
}

TEST(ListFolder, SortsAsAsked) {
    const TempTree tree;
    tree.file("b10.txt", "1234");
    tree.file("B2.pdf", "12");
    tree.file("a.txt", "123");
    tree.folder("m");
    EXPECT_THAT(listed({tree.path()}), ElementsAre("m", "a.txt", "B2.pdf", "b10.txt"));
    EXPECT_THAT(listed({"--descending", tree.path()}), ElementsAre("m", "b10.txt", "B2.pdf", "a.txt"));
    EXPECT_THAT(listed({"--mixed", tree.path()}), ElementsAre("a.txt", "B2.pdf", "b10.txt", "m"));
    EXPECT_THAT(listed({"--sort", "size", tree.path()}), ElementsAre("m", "B2.pdf", "a.txt", "b10.txt"));
    EXPECT_THAT(listed({"--sort=kind", tree.path()}), ElementsAre("m", "B2.pdf", "a.txt", "b10.txt"));
}

TEST(ListFolder, IsFoundByAnyPath) {
    const TempTree tree;
    tree.folder("inner");
    tree.folder("inner/\xFF odd");
    tree.file("inner/\xFF odd/found");
    tree.symlink("link", "inner");
    const auto from = [&](const std::string& operand) {
        return list({"--", operand}, {.workingFolder = tree.path("inner")}).output;
    };
    EXPECT_THAT(from("\xFF odd"), Eq("found\n"));
    EXPECT_THAT(from("../link//./\xFF odd/"), Eq("found\n"));
    EXPECT_THAT(from("."), Eq("\xFF odd\n"));
    EXPECT_THAT(listed({tree.path("inner/\xFF odd/../../link")}), ElementsAre("\xFF odd"));

    const std::string step(250, 'd');
    std::string deep = tree.path();
    int folder = ::open(deep.c_str(), O_DIRECTORY | O_CLOEXEC);
    for (int depth = 0; depth < 20; ++depth) {
        ASSERT_THAT(::mkdirat(folder, step.c_str(), 0755), Eq(0));
        const int next = ::openat(folder, step.c_str(), O_DIRECTORY | O_CLOEXEC);
        ::close(std::exchange(folder, next));
        deep += '/' + step;
    }
    ::close(::openat(folder, "at the bottom", O_CREAT | O_WRONLY | O_CLOEXEC, 0644));
    ::close(folder);
    EXPECT_THAT(listed({deep}), ElementsAre("at the bottom")) << "a path longer than PATH_MAX";
}

// ---- What a script reads

TEST(ListJSON, DescribesEachKindOfEntry) {
    const TempTree tree;
    makeHostileEntries(tree, false);
    tree.folder("Tool.app");
    tree.file("report.pdf", "12345");
    const timespec times[2] = {{0, UTIME_NOW}, {1'000'000'000, 7}};
    ::utimensat(AT_FDCWD, tree.path("report.pdf").c_str(), times, 0);
    struct stat facts{};
    ASSERT_THAT(::stat(tree.path("report.pdf").c_str(), &facts), Eq(0));

    const auto result = list({"--json", "--all", tree.path()});
    EXPECT_THAT(result.output, HasSubstr("\"modified\":1000000000.000000007"));
    auto items = objects(result.output);
    EXPECT_THAT(items.size(), Eq(tree.names().size()));

    auto& report = items["report.pdf"];
    EXPECT_THAT(report.keys().join(QLatin1Char(' ')).toStdString(),
                Eq("device error hidden inode kind modified name size target type"));
    EXPECT_THAT(text(report, "kind"), Eq("file"));
    EXPECT_THAT(text(report, "type"), Eq("application/pdf"));
    EXPECT_THAT(report.value(QLatin1String("size")).toInteger(), Eq(5));
    EXPECT_THAT(report.value(QLatin1String("inode")).toInteger(), Eq(static_cast<qint64>(facts.st_ino)));
    EXPECT_THAT(report.value(QLatin1String("device")).toInteger(), Eq(static_cast<qint64>(facts.st_dev)));
    EXPECT_TRUE(report.value(QLatin1String("target")).isNull() &&
                report.value(QLatin1String("error")).isNull());
    EXPECT_TRUE(items["folder"].value(QLatin1String("size")).isNull());
    EXPECT_TRUE(items[".hidden-by-dot"].value(QLatin1String("hidden")).toBool());

    for (const auto& [name, kind] : {std::pair("folder", "directory"),
                                     {"Tool.app", "package"},
                                     {"pipe", "other"},
                                     {"socket", "other"},
                                     {"dangling", "symlink"},
                                     {"two\nlines", "file"}})
        EXPECT_THAT(text(items[name], "kind"), Eq(kind)) << name;
    for (const auto& [name, target] :
         {std::pair("dangling", "broken"), {"loop", "loop"}, {"to-folder", "directory"}, {"to-pipe", "file"}})
        EXPECT_THAT(text(items[name], "target"), Eq(target)) << name;
}

TEST(ListJSON, CarriesTheBytesOfNamesThatAreNotUTF8) {
    const TempTree tree;
    tree.file("a\xFF\n");
    tree.file("plain");
    const auto items = objects(list({"--json", tree.path()}).output);
    ASSERT_THAT(items.size(), Eq(2U));
    const auto& odd = items.at("a\uFFFD\n");
    EXPECT_THAT(QByteArray::fromBase64(text(odd, "nameBytes").c_str()).toStdString(), Eq("a\xFF\n"));
    EXPECT_FALSE(items.at("plain").contains(QLatin1String("nameBytes")));
}

TEST(ListBatches, DoubleFromTheFirst) {
    const TempTree tree;
    for (int number = 0; number < 100; ++number)
        tree.file(std::to_string(number));
    const auto notes = [&](const char* first) {
        return split(list({"--batches", "--first-batch", first, tree.path()}).errors, '\n');
    };
    EXPECT_THAT(notes("10"), ElementsAre("snapshot 10 partial 0", "snapshot 30 partial 0",
                                         "snapshot 70 partial 0", "snapshot 100 complete 0"));
    EXPECT_THAT(notes("100"), ElementsAre("snapshot 100 partial 0", "snapshot 100 complete 0"));
    for (const char* least : {"0", "-5", "1"})
        EXPECT_THAT(notes(least).front(), Eq("snapshot 1 partial 0"));
    EXPECT_THAT(list({"--batches", tree.folder("empty").path()}).errors, Eq("snapshot 0 complete 0\n"));
}

// ---- What goes wrong

TEST(ListFailure, IsOneSentenceAboutThePath) {
    const TempTree tree;
    tree.file("file");
    tree.symlink("loop", "loop");
    tree.symlink("dangling", "nowhere");
    const auto failure = [&](const std::string& name) {
        const auto result = list({tree.path(name)});
        EXPECT_THAT(result.status, Eq(1)) << name;
        EXPECT_THAT(result.output, IsEmpty());
        EXPECT_THAT(std::ranges::count(result.errors, '\n'), Eq(1));
        return result.errors;
    };
    EXPECT_THAT(failure("missing"), Eq(tree.path("missing") + ": This folder does not exist.\n"));
    EXPECT_THAT(failure("dangling"), HasSubstr("This folder does not exist."));
    EXPECT_THAT(failure("file"), Eq(tree.path("file") + ": This is not a folder.\n"));
    EXPECT_THAT(failure("file/"), HasSubstr("This is not a folder."));
    EXPECT_THAT(failure("loop"), HasSubstr("The folder could not be read: "));
    EXPECT_THAT(failure(std::string(300, 'x')), HasSubstr("The folder could not be read: "));
    EXPECT_THAT(failure("two\nlines\x1B[31m\xFF"), StartsWith(tree.path("two\uFFFDlines\uFFFD[31m\uFFFD: ")));
}

TEST(ListFailure, NamesWhatPermissionsRefuse) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become a user who owns nothing";
    const TempTree tree;
    ::chmod(tree.path().c_str(), 0755);
    const auto closed = tree.folder("closed").path(), blind = tree.folder("blind").path();
    tree.file("blind/one");
    tree.file("blind/two");
    tree.symlink("blind-link", "blind/one");
    ::chmod(closed.c_str(), 0700);
    ::chmod(blind.c_str(), 0744); // its names can be read, what they stand for cannot

    const auto refused = list({closed}, {.asNobody = true});
    EXPECT_THAT(refused.status, Eq(1));
    EXPECT_THAT(refused.errors, Eq(closed + ": You don’t have permission to open this folder.\n"));

    const auto unreadable = list({"--batches", blind}, {.asNobody = true});
    EXPECT_THAT(unreadable.status, Eq(1));
    EXPECT_THAT(unreadable.output, Eq("one\ntwo\n"));
    EXPECT_THAT(unreadable.errors,
                AllOf(HasSubstr("snapshot 2 complete 2\n"),
                      HasSubstr(blind + "/one: This item could not be examined: Permission denied.\n"),
                      HasSubstr(blind + "/two: This item could not be examined: ")));

    auto items = objects(list({"--json", blind}, {.asNobody = true}).output);
    EXPECT_THAT(text(items["one"], "error"), Eq("EACCES"));
    EXPECT_THAT(text(items["one"], "kind"), Eq("other"));
    EXPECT_TRUE(items["one"].value(QLatin1String("inode")).isNull());
    auto links = objects(list({"--json", tree.path()}, {.asNobody = true}).output);
    EXPECT_THAT(text(links["blind-link"], "target"), Eq("inaccessible"));
    EXPECT_THAT(text(links["blind-link"], "error"), Eq("EACCES"));
}

TEST(ListFailure, FollowsFromOutputThatTakesNothing) {
    const TempTree tree;
    for (int number = 0; number < 3000; ++number)
        tree.file(std::to_string(number) + std::string(100, 'x'));
    const auto full = list({tree.path()}, {.outputPath = "/dev/full"});
    EXPECT_THAT(full.status, Eq(1));
    EXPECT_THAT(full.errors, HasSubstr("No space left on device"));

    ChildProcess unheard(commandLine({tree.path()}));
    unheard.closeOutput();
    const auto result = unheard.finish();
    EXPECT_THAT(result.status, Eq(1));
    EXPECT_THAT(result.errors, IsEmpty()) << "a reader that has gone away knows";
}

TEST(ListInterrupted, EndsAtOnceEvenWhileItsReaderWaits) {
    const TempTree tree;
    for (int number = 0; number < 3000; ++number)
        tree.file(std::to_string(number) + std::string(200, 'x'));
    for (const char* format : {"-0", "--json"}) {
        ChildProcess child(commandLine({"--batches", "--first-batch", "1", format, tree.path()}));
        ASSERT_THAT(child.readErrorLine(), Eq("snapshot 1 partial 0"));
        child.signal(SIGINT);
        EXPECT_THAT(child.finishUnread(), Eq(130))
            << "600 KB do not fit the pipe, so it cannot have ended by itself";
    }
}

} // namespace
} // namespace ombrel
