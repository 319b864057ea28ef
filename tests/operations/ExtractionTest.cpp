#include "operations/ExtractedTree.h"
#include "operations/JobPlan.h"
#include "support/ArchiveWorld.h"
#include "support/FaultAt.h"
#include "support/TestMount.h"
#include "support/TreeSnapshot.h"
#include "support/Unprivileged.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>

namespace ombrel {
namespace {

using namespace testing;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;
using Case = FileOperationError::Case;
using Overall = OperationReport::Overall;

class Extraction : public ::testing::Test {
protected:
    TempTree tree;
    ArchiveWorld world;

    void SetUp() override {
        tree.folder("box"); // archives and what they become
        tree.folder("in");
    }

    /// Makes something in the folder "in" by a line of shell.
    void make(const std::string& line) { ASSERT_TRUE(shell(tree.path("in"), line)) << line; }

    /// Makes archives byte by byte: `zip`, `tar`, `cab` and `lha` take a file's name and entries.
    void craft(const std::string& python) {
        static const std::string makers = R"(
import struct, zlib, tarfile, io
def zip(path, entries, flags=0):
    out = central = b''
    for name, data, mode in entries:
        crc, size = zlib.crc32(data), len(data)
        common = struct.pack('<HHHHHIIIH', 20, flags, 0, 0, 0x5821, crc, size, size, len(name))
        central += b'PK\1\2\x14\3' + common + struct.pack('<HHHHII', 0, 0, 0, 0, mode << 16, len(out)) + name
        out += b'PK\3\4' + common + struct.pack('<H', 0) + name + data
    end = struct.pack('<HHHHIIH', 0, 0, len(entries), len(entries), len(central), len(out), 0)
    open(path, 'wb').write(out + central + b'PK\5\6' + end)
def tar(path, entries):
    with tarfile.open(path, 'w', format=tarfile.GNU_FORMAT) as archive:
        for name, kind, link, data, mode in entries:
            info = tarfile.TarInfo(name)
            info.type, info.linkname, info.mode, info.size = kind, link, mode, len(data)
            info.devmajor, info.devminor = 1, 3
            archive.addfile(info, io.BytesIO(data))
file, folder, link, hard = tarfile.REGTYPE, tarfile.DIRTYPE, tarfile.SYMTYPE, tarfile.LNKTYPE
device, pipe = tarfile.CHRTYPE, tarfile.FIFOTYPE
def cab(path, files):
    data = b''.join(d for _, d in files)
    table, offset = b'', 0
    for name, d in files:
        table += struct.pack('<IIHHHH', len(d), offset, 0, 0x5821, 0, 0x20) + name + b'\0'
        offset += len(d)
    start = 44 + len(table)
    blocks = struct.pack('<IHH', 0, len(data), len(data)) + data
    head = struct.pack('<IIIIIBBHHHHH', 0, start + len(blocks), 0, 44, 0, 3, 1, 1, len(files), 0, 0, 0)
    open(path, 'wb').write(b'MSCF' + head + struct.pack('<IHH', start, 1, 0) + table + blocks)
def lha(path, files):
    out = b''
    for name, data in files:
        crc = 0
        for byte in data:
            crc ^= byte
            for _ in range(8): crc = (crc >> 1) ^ 0xA001 if crc & 1 else crc >> 1
        head = b'-lh0-' + struct.pack('<IIIBBB', len(data), len(data), 0x58210000, 0x20, 0, len(name)) + name
        head += struct.pack('<H', crc)
        out += bytes([len(head), sum(head) & 255]) + head + data
    open(path, 'wb').write(out + b'\0')
)";
        tree.file("craft.py", makers + python);
        ASSERT_TRUE(shell(tree.path("box"), "python3 ../craft.py")) << python;
    }

    OperationReport extract(const std::string& archive) {
        return world.extract({tree.url("box/" + archive)});
    }
    std::optional<ArchiveFault> faultOf(const OperationReport& report) {
        const auto& facts = report.items.at(0).facts.archive;
        return facts ? facts->fault : std::nullopt;
    }
};

// ---- Kinds

TEST_F(Extraction, UnpacksEveryKindThatThereIsAToolFor) {
    tree.folder("in/sub");
    tree.file("in/f", "first");
    tree.file("in/sub/g", "second");
    ::chmod(tree.path("in/f").c_str(), 0755);
    struct Kind {
        std::string suffix, maker;
    };
    for (const auto& [suffix, maker] :
         std::vector<Kind>{{".zip", "zip -r ../box/X ."},
                           {".ZIP", "bsdtar -cf ../box/X --format zip ."},
                           {".tar", "bsdtar -cf ../box/X ."},
                           {".tar.gz", "bsdtar -czf ../box/X ."},
                           {".tgz", "bsdtar -czf ../box/X ."},
                           {".tar.bz2", "bsdtar -cjf ../box/X ."},
                           {".tbz", "bsdtar -cjf ../box/X ."},
                           {".tbz2", "bsdtar -cjf ../box/X ."},
                           {".tb2", "bsdtar -cjf ../box/X ."},
                           {".tar.xz", "bsdtar -cJf ../box/X ."},
                           {".txz", "bsdtar -cJf ../box/X ."},
                           {".tar.lzma", "bsdtar -c --lzma -f ../box/X ."},
                           {".tlz", "bsdtar -c --lzma -f ../box/X ."},
                           {".tar.Z", "bsdtar -cZf ../box/X ."},
                           {".taz", "bsdtar -cZf ../box/X ."},
                           {".cpio", "bsdtar -c --format cpio -f ../box/X ."},
                           {".cpio.gz", "bsdtar -cz --format newc -f ../box/X ."},
                           {".cpgz", "bsdtar -cz --format cpio -f ../box/X ."},
                           {".7z", "bsdtar -c --format 7zip -f ../box/X ."},
                           {".xar", "bsdtar -c --format xar -f ../box/X ."}}) {
        std::string line = maker;
        line.replace(line.find('X'), 1, "kind" + suffix);
        make(line);
        const auto report = extract("kind" + suffix);
        ASSERT_EQ(report.overall(), Overall::succeeded) << suffix << report.items.at(0).facts.toolWords;
        EXPECT_THAT(tree.names("box"), UnorderedElementsAre("kind", "kind" + suffix)) << suffix;
        EXPECT_THAT(
            differences(snapshotOf(tree.path("in")), snapshotOf(tree.path("box/kind")), Compare::data),
            IsEmpty())
            << suffix;
        const auto& reports = world.answers.reports;
        EXPECT_EQ(reports.back().completedBytes, reports.back().totalBytes) << suffix;
        ASSERT_TRUE(shell(tree.path("box"), "rm -r *"));
    }
    craft("cab('k.cab', [(b'f', b'first'), (b'sub\\\\g', b'second')])\nlha('k.lzh', [(b'f', b'first')])");
    for (const auto* name : {"k.cab", "k.lzh"})
        EXPECT_EQ(extract(name).overall(), Overall::succeeded) << name;
    EXPECT_EQ(tree.contents("box/k/f") + tree.contents("box/k/sub/g") + tree.contents("box/k (2)/f"),
              "firstsecondfirst");
}

TEST_F(Extraction, DecompressesSingleFiles) {
    tree.fileOfSize("in/data.txt", 300'000);
    make("gzip -c data.txt > ../box/one.txt.gz && bzip2 -c data.txt > ../box/two.txt.BZ2 && "
         "xz -c data.txt > ../box/three.txt.xz && bsdtar -cZf ../box/four.txt.Z --format raw data.txt && "
         "gzip -c data.txt > ../box/.gz");
    for (const auto& [archive, name] :
         {std::pair{"one.txt.gz", "one.txt"}, std::pair{"two.txt.BZ2", "two.txt"},
          std::pair{"three.txt.xz", "three.txt"}, std::pair{"four.txt.Z", "four.txt"},
          std::pair{"one.txt.gz", "one (2).txt"}, std::pair{".gz", "archive.unnamed"}}) {
        const auto report = extract(archive);
        ASSERT_EQ(report.overall(), Overall::succeeded) << archive;
        EXPECT_EQ(report.items.at(0).outcome.destination(), tree.url("box/" + std::string(name)));
        EXPECT_EQ(tree.contents("in/data.txt"), tree.contents("box/" + std::string(name)));
    }
}

TEST_F(Extraction, AnswersThatSomeKindsAreNotSupported) {
    for (const auto* name : {"a.aar", "a.yaa", "a.txt"}) {
        tree.file(std::string("box/") + name, "AA01");
        const auto report = extract(name);
        EXPECT_EQ(report.items.at(0).outcome.error(), FileOperationError::system("archive", 0));
        EXPECT_EQ(faultOf(report), ArchiveFault::unsupported);
    }
    EXPECT_TRUE(ArchiveService::isExtractable(tree.url("box/a.aar")));
    EXPECT_FALSE(ArchiveService::isExtractable(tree.url("box/a.txt")));
    EXPECT_TRUE(ArchiveService::isZip(tree.url("box/a.Zip")));
}

// ---- Where it goes

TEST_F(Extraction, DoesNotNestAFolderOfTheVeryName) {
    tree.folder("in/photos");
    tree.file("in/photos/1", "1");
    ::chmod(tree.path("in/photos").c_str(), 0555);
    make("bsdtar -cf ../box/photos.tar photos && bsdtar -cf ../box/other.tar photos && echo > second && "
         "bsdtar -cf ../box/more.tar photos second && mv ../box/more.tar ../box/photos.tgz");
    EXPECT_EQ(extract("photos.tar").items.at(0).outcome.destination()->path(), tree.path("box/photos"));
    EXPECT_THAT(tree.names("box/photos"), ElementsAre("1"));
    struct stat status{};
    ::stat(tree.path("box/photos").c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0555);
    EXPECT_EQ(extract("photos.tar").items.at(0).outcome.destination()->name(), "photos (2)");
    EXPECT_THAT(tree.names("box/photos (2)"), ElementsAre("1"));
    (void)extract("other.tar");
    EXPECT_THAT(tree.names("box/other"), ElementsAre("photos"));
    (void)extract("photos.tgz");
    EXPECT_THAT(tree.names("box/photos (3)"), ElementsAre("photos", "second"));
}

TEST_F(Extraction, RemovesTheResourceForksOfForeignZips) {
    craft("zip('a.zip', [(b'__MACOSX/._x', b'fork', 0o100644), (b'x', b'x', 0o100644)])");
    (void)extract("a.zip");
    EXPECT_THAT(tree.names("box/a"), ElementsAre("x"));
}

TEST_F(Extraction, KeepsNamesOfAnyForm) {
    tree.folder("in/sub");
    for (const auto* name :
         {"line\nend", "back\\slash", " lead", "trail ", "-rf", "Gr\xC3\xBC\xC3\x9F", "bad\xFF"})
        tree.file(std::string("in/sub/") + name, name);
    make("bsdtar -cf ../box/t.tar sub && zip -r ../box/z.zip sub && bsdtar -c --format newc -f ../box/c.cpio "
         "sub");
    for (const std::string name : {"t.tar", "z.zip", "c.cpio"}) {
        ASSERT_EQ(extract(name).overall(), Overall::succeeded) << name;
        EXPECT_EQ(tree.names("box/" + name.substr(0, 1) + "/sub"), tree.names("in/sub")) << name;
    }
    // Written with a code page, with one and a claim of UTF-8, and with another path separator.
    craft("zip('l.zip', [(b'gr\\x81\\xe1e.txt', b'1', 0), (b'\\x93\\xfa\\x96{', b'2', 0)])\n"
          "zip('u.zip', [(b'gr\\x81\\xe1e.txt', b'1', 0o100644), (b'sub/', b'', 0o40755)], 0x800)");
    ASSERT_EQ(extract("l.zip").overall(), Overall::succeeded);
    EXPECT_THAT(tree.names("box/l"), ElementsAre("gr\x81\xE1"
                                                 "e.txt",
                                                 "\x93\xFA\x96{"));
    const auto report = extract("u.zip");
    ASSERT_EQ(report.overall(), Overall::succeeded) << report.items.at(0).facts.toolWords;
    EXPECT_THAT(tree.names("box/u"), ElementsAre("gr\x81\xE1"
                                                 "e.txt",
                                                 "sub"));
}

// ---- Hostile archives

TEST_F(Extraction, WritesNothingOutside) {
    tree.folder("outside");
    tree.file("outside/file", "original");
    const auto outside = tree.path("outside");
    craft("o = '" + outside + "'\nb = o.encode()\n" + R"(
zip('up.zip', [(b'../../outside/new', b'x', 0o100644), (b'good', b'g', 0o100644)])
zip('abs.zip', [(b + b'/new', b'x', 0o100644)])
zip('link.zip', [(b'l', b, 0o120777), (b'l/new', b'x', 0o100644)])
zip('over.zip', [(b'l', b + b'/file', 0o120777), (b'l', b'x', 0o100644)])
tar('up.tar', [('../../outside/new', file, '', b'x', 0o644)])
tar('abs.tar', [(o + '/new', file, '', b'x', 0o644)])
tar('link.tar', [('l', link, o, b'', 0o777), ('l/new', file, '', b'x', 0o644)])
tar('swap.tar', [('d', folder, '', b'', 0o755), ('d', link, o, b'', 0o777), ('d/new', file, '', b'x', 0o644)])
tar('over.tar', [('l', link, o + '/file', b'', 0o777), ('l', file, '', b'x', 0o644)])
tar('hard.tar', [('h', hard, '../../outside/file', b'', 0o644), ('h', file, '', b'x', 0o644)])
tar('hardabs.tar', [('h', hard, o + '/file', b'', 0o644), ('h', file, '', b'x', 0o644)])
tar('hardlink.tar', [('l', link, o + '/file', b'', 0o777), ('h', hard, 'l', b'', 0o644), ('h', file, '', b'x', 0o644)])
tar('top.tar', [('..', folder, '', b'', 0o700), ('.', link, o, b'', 0o777)])
)");
    const auto before = snapshotOf(tree.path("outside"));
    const auto archives = tree.names("box");
    for (const auto& archive : archives) {
        (void)extract(archive);
        EXPECT_THAT(differences(before, snapshotOf(tree.path("outside"))), IsEmpty()) << archive;
    }
    for (const auto* archive : {"up.zip", "link.zip", "up.tar", "link.tar", "swap.tar", "hard.tar"})
        EXPECT_EQ(faultOf(extract(archive)), ArchiveFault::unsafe) << archive;
    // Links that nothing was written through are only links, and absolute names lose their beginning.
    EXPECT_EQ(tree.contents("box/abs" + outside + "/new"), "x");
    EXPECT_EQ(tree.contents("box/over/l"), "x");
}

TEST_F(Extraction, TakesNothingFromOutside) {
    tree.file("secret", "secret");
    craft("import gzip\nlisted = b'#mtree\\n./leak type=file mode=0644 size=6 contents=' + b'" +
          tree.path("secret") +
          "' + b'\\n'\nopen('a.tar', 'wb').write(listed)\nopen('b.zip', 'wb').write(listed)\n"
          "open('c.tgz', 'wb').write(gzip.compress(listed[7:]))");
    for (const auto* archive : {"a.tar", "b.zip", "c.tgz"})
        EXPECT_EQ(faultOf(extract(archive)), ArchiveFault::unsafe) << archive;
    EXPECT_THAT(tree.names("box"), ElementsAre("a.tar", "b.zip", "c.tgz"));
}

TEST_F(Extraction, NeutralisesWhatIsMoreThanFiles) {
    craft("tar('s.tar', [('suid', file, '', b'x', 0o6755), ('d', folder, '', b'', 0o2755), ('null', device, "
          "'', b'', "
          "0o666), ('p', pipe, '', b'', 0o644), ('ok', file, '', b'o', 0o640)])");
    const auto report = extract("s.tar");
    EXPECT_EQ(report.overall(), Overall::partiallySucceeded);
    ASSERT_EQ(report.items.size(), 2U);
    EXPECT_EQ(report.items[1].source, tree.url("box/s/null"));
    EXPECT_EQ(report.items[1].outcome.error(), FileOperationError::posix(EOPNOTSUPP));
    EXPECT_THAT(tree.names("box/s"), ElementsAre("d", "ok", "p", "suid"));
    for (const auto* name : {"suid", "d"}) {
        struct stat status{};
        ::stat(tree.path(std::string("box/s/") + name).c_str(), &status);
        EXPECT_EQ(status.st_mode & 06000, 0U) << name;
        EXPECT_EQ(status.st_uid, ::getuid());
    }
}

TEST_F(Extraction, LooksThroughWhatWasExtracted) {
    tree.folder("in/d");
    tree.file("in/d/tool", "t");
    ::chmod(tree.path("in/d/tool").c_str(), 04755);
    ASSERT_EQ(::mknod(tree.path("in/d/node").c_str(), S_IFCHR | 0600, ::makedev(1, 3)), 0);
    const OwnedFd folder(::open(tree.path("in").c_str(), O_RDONLY));
    const auto results = neutralise(folder.get(), tree.url("shown"), [] { return true; });
    ASSERT_TRUE(results);
    ASSERT_EQ(results->size(), 2U);
    for (const auto& result : *results)
        EXPECT_EQ(result.outcome.error(), result.source == tree.url("shown/d/tool")
                                              ? FileOperationError(Case::metadataNotPreserved)
                                              : FileOperationError::posix(EOPNOTSUPP));
    EXPECT_THAT(tree.names("in/d"), ElementsAre("tool"));
    struct stat status{};
    ::stat(tree.path("in/d/tool").c_str(), &status);
    EXPECT_EQ(status.st_mode & 07777, 0755U);
}

// ---- Archives that are no good

TEST_F(Extraction, TellsEncryptedArchivesFromDamagedOnes) {
    tree.fileOfSize("in/a", 200'000);
    tree.file("in/b", "b");
    make("zip -P secret ../box/e1.zip a b && zip -P secret ../box/e2.zip b && zip ../box/whole.zip a b && "
         "bsdtar -czf ../box/whole.tgz a b && bsdtar -c --format 7zip -f ../box/whole.7z a && "
         "gzip -c a > ../box/a.gz && bzip2 -c a > ../box/a.bz2 && xz -c a > ../box/a.xz && cd ../box && "
         "for f in whole.zip whole.tgz whole.7z a.gz a.bz2 a.xz; do head -c 1000 $f > cut-$f; done && "
         "for f in e.tar e.zip e.gz e.7z; do : > $f; done && cp ../in/a noise.rar && cp ../in/a noise.xz");
    for (const auto* archive : {"e1.zip", "e2.zip"}) {
        EXPECT_EQ(faultOf(extract(archive)), ArchiveFault::encrypted) << archive;
    }
    for (const auto* archive : {"cut-whole.zip", "cut-whole.tgz", "cut-whole.7z", "cut-a.gz", "cut-a.bz2",
                                "cut-a.xz", "e.tar", "e.zip", "e.gz", "e.7z", "noise.rar", "noise.xz"}) {
        const auto report = extract(archive);
        EXPECT_EQ(faultOf(report), ArchiveFault::damaged) << archive << report.items.at(0).facts.toolWords;
    }
    // Whatever was tried, only archives are left.
    for (const auto& name : tree.names("box"))
        EXPECT_TRUE(ArchiveService::isExtractable(tree.url("box/" + name))) << name;
    EXPECT_EQ(extract("absent.zip").items.at(0).outcome.error(), Case::sourceMissing);
    tree.folder("box/folder.zip");
    EXPECT_EQ(extract("folder.zip").items.at(0).outcome.error(), FileOperationError::posix(EISDIR));
}

TEST_F(Extraction, GivesAnEmptyFolderForAnEmptyArchive) {
    make("bsdtar -cf ../box/t.tar -T /dev/null");
    craft("zip('z.zip', [])");
    EXPECT_EQ(world.extract({tree.url("box/t.tar"), tree.url("box/z.zip")}).overall(), Overall::succeeded);
    EXPECT_THAT(tree.names("box/t"), IsEmpty());
    EXPECT_THAT(tree.names("box/z"), IsEmpty());
}

TEST_F(Extraction, StopsWhenTheDiskIsFullAndLeavesNothing) {
    const auto mount = TestMount::tmpfs({}, "size=2m");
    if (!mount) GTEST_SKIP() << mount.error();
    make("head -c 4000000 /dev/zero | tr '\\0' x > big && zip ../box/z.zip big && bsdtar -czf ../box/t.tgz "
         "big && "
         "gzip -c big > ../box/g.gz && bzip2 -c big > ../box/b.bz2 && xz -c big > ../box/x.xz && "
         "cp ../box/* '" +
         (*mount)->path() + "'");
    for (const auto* archive : {"z.zip", "t.tgz", "g.gz", "b.bz2", "x.xz"}) {
        const auto report = world.extract({(*mount)->url().appending(archive)});
        EXPECT_EQ(report.items.at(0).outcome.error(), Case::noSpace)
            << archive << report.items.at(0).facts.toolWords;
    }
    EXPECT_TRUE(shell((*mount)->path(), "test \"$(ls -A | tr '\\n' ' ')\" = 'b.bz2 g.gz t.tgz x.xz z.zip '"));
}

// ---- Much of everything

TEST_F(Extraction, TakesManyEntriesAndDeepFolders) {
    craft(R"(
import zipfile
with zipfile.ZipFile('many.zip', 'w') as archive:
    for i in range(100000): archive.writestr('d%d/f%d' % (i % 100, i), '')
with tarfile.open('deep.tar', 'w') as archive:
    for depth in range(1, 65):
        info = tarfile.TarInfo('/'.join(['d'] * depth)); info.type = folder; info.mode = 0o755
        archive.addfile(info)
)");
    ASSERT_EQ(world.extract({tree.url("box/many.zip"), tree.url("box/deep.tar")}).overall(),
              Overall::succeeded);
    EXPECT_TRUE(shell(tree.path("box"), "test $(find many -type f | wc -l) = 100000"));
    EXPECT_TRUE(shell(tree.path("box"), "test $(find deep -type d | wc -l) = 65"));
    const auto& reports = world.answers.reports;
    EXPECT_TRUE(std::ranges::is_sorted(reports, {}, &OperationProgress::completedBytes));
    EXPECT_TRUE(std::ranges::any_of(reports, [](const OperationProgress& progress) {
        return progress.completedBytes > 0 && progress.completedBytes < progress.totalBytes;
    }));
}

TEST_F(Extraction, StopsABombInTheMiddle) {
    make("truncate -s 200M big && gzip -1 -c big > ../box/bomb.gz && zip -1 ../box/bomb.zip big && "
         "bsdtar -cf - --format ustar big | gzip -1 > ../box/bomb.tgz");
    world.watch = [&](const OperationProgress& progress) {
        if (progress.phase == OperationProgress::Phase::copying) world.stop.request_stop();
    };
    for (const auto* archive : {"bomb.gz", "bomb.zip", "bomb.tgz"}) {
        world.stop = {};
        EXPECT_EQ(extract(archive).overall(), Overall::cancelled) << archive;
    }
    EXPECT_THAT(tree.names("box"), UnorderedElementsAre("bomb.gz", "bomb.zip", "bomb.tgz"));
}

// ---- Faults

TEST_F(Extraction, IsWholeOrNotThereWhateverCallFails) {
    tree.folder("in/t");
    tree.file("in/t/f", "first");
    tree.folder("in/t/sub");
    tree.file("in/t/sub/g", "second");
    make("bsdtar -cf ../box/t.tar t && bsdtar -cf ../box/u.tar t && gzip -c t/f > ../box/f.gz");
    for (const std::string archive : {"t.tar", "u.tar", "f.gz"}) {
        const std::string name = archive.substr(0, 1);
        for (int nth = 1;; ++nth) {
            OperationReport report{};
            std::optional<SystemCall::Kind> hit;
            {
                FaultAt fault(nth, {.errorNumber = EIO});
                report = extract(archive);
                hit = fault.hit();
            }
            const bool isThere = tree.exists("box/" + name);
            EXPECT_EQ(report.items.at(0).outcome.isSuccess(), isThere) << archive << " " << nth;
            if (isThere && archive != "f.gz") {
                EXPECT_THAT(differences(snapshotOf(tree.path("in/t")),
                                        snapshotOf(tree.path(archive == "t.tar" ? "box/t" : "box/u/t")),
                                        Compare::data),
                            IsEmpty())
                    << archive << " " << nth;
            }
            ASSERT_TRUE(shell(tree.path("box"), "rm -rf " + name + " .hom-*"));
            EXPECT_THAT(tree.names("box"), ElementsAre("f.gz", "t.tar", "u.tar"));
            if (!hit) break;
        }
    }
}

TEST_F(Extraction, NeedsNoFlagsOfTheFileSystem) {
    tree.folder("backing");
    const auto mount = TestMount::limited(tree.path("backing"));
    if (!mount) GTEST_SKIP() << mount.error();
    tree.folder("in/t");
    tree.file("in/t/f", "first");
    make("bsdtar -cf '" + (*mount)->path() + "/t.tar' t && gzip -c t/f > '" + (*mount)->path() + "/f.gz'");
    const auto url = (*mount)->url();
    EXPECT_EQ(world.extract({url.appending("t.tar"), url.appending("f.gz")}).overall(), Overall::succeeded);
    EXPECT_EQ(world.compress({url.appending("t")}, url).overall(), Overall::succeeded);
    EXPECT_EQ(tree.contents("backing/t/f") + tree.contents("backing/f"), "firstfirst");
    const auto names = tree.names("backing");
    EXPECT_THAT(names, IsSupersetOf({"f", "f.gz", "t", "t.tar", "t.zip"}));
    EXPECT_THAT(names, Each(Not(StartsWith(".hom-"))));
}

// ---- Tools and questions

TEST_F(Extraction, NamesTheToolThatIsMissing) {
    make("echo x > f && xz -k f && zip ../box/z.zip f && mv f.xz ../box/");
    world.settings.toolFolders = tree.path("in");
    for (const auto& [archive, tool] : {std::pair{"f.xz", "xz"}, std::pair{"z.zip", "bsdtar"}}) {
        const auto report = extract(archive);
        EXPECT_EQ(faultOf(report), ArchiveFault::missingTool);
        EXPECT_EQ(report.items.at(0).facts.archive->tool, tool);
    }
    EXPECT_THAT(tree.names("box"), ElementsAre("f.xz", "z.zip"));
}

TEST_F(Extraction, IsAJobLikeAnyOther) {
    tree.file("in/f", "first");
    auto plan = JobPlan::compress({{tree.url("in/f"), std::nullopt}}, tree.url("box"), "made");
    EXPECT_EQ(plan.destination, tree.url("box"));
    EXPECT_EQ(plan.work(world.hooks(), {}).overall(), Overall::succeeded);
    plan = JobPlan::extract({{tree.url("box/made.zip"), std::nullopt}});
    EXPECT_EQ(plan.destination, tree.url("box"));
    EXPECT_EQ(plan.work(world.hooks(), {}).overall(), Overall::succeeded);
    EXPECT_EQ(tree.contents("box/made/f"), "first");
}

TEST_F(Extraction, GoesOnAfterAnArchiveThatFails) {
    make("echo x > f && zip ../box/good.zip f && echo no > ../box/bad.zip");
    world.answers.errorAnswers = {{ErrorChoice::retry, false}, {ErrorChoice::skip, false}};
    const auto report = world.extract({tree.url("box/bad.zip"), tree.url("box/good.zip")});
    EXPECT_EQ(report.overall(), Overall::partiallySucceeded);
    EXPECT_EQ(world.answers.errors.size(), 2U);
    EXPECT_EQ(world.answers.errors.at(0).facts.archive->fault, ArchiveFault::damaged);
    EXPECT_EQ(tree.contents("box/good/f"), "x\n");
    world.answers.errorAnswers = {{ErrorChoice::cancel, false}};
    const auto cancelled = world.extract({tree.url("box/bad.zip"), tree.url("box/good.zip")});
    EXPECT_EQ(cancelled.overall(), Overall::cancelled);
    EXPECT_EQ(cancelled.items.size(), 2U);
}

TEST_F(Extraction, WorksForAnOrdinaryUser) {
    ::chmod(tree.path().c_str(), 0755);
    ::chmod(tree.path("box").c_str(), 0777);
    craft("tar('t.tar', [('t', folder, '', b'', 0o555), ('t/closed', folder, '', b'', 0), ('t/f', file, '', "
          "b'f', 0o400)])\n"
          "tar('dev.tar', [('null', device, '', b'', 0o666)])");
    OperationReport report{}, device{};
    if (!asNobody([&] {
            report = extract("t.tar");
            device = extract("dev.tar");
            return true;
        }))
        GTEST_SKIP() << "the user cannot be changed";
    EXPECT_EQ(report.overall(), Overall::succeeded) << report.items.at(0).facts.toolWords;
    EXPECT_EQ(tree.contents("box/t/f"), "f");
    EXPECT_EQ(device.overall(), Overall::failed);
    EXPECT_THAT(tree.names("box"), ElementsAre("dev.tar", "t", "t.tar"));
}

} // namespace
} // namespace ombrel
