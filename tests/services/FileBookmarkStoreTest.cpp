#include "services/FileBookmarkStore.h"

#include "services/PropertyList.h"
#include "support/TempTree.h"
#include "support/TestMount.h"
#include "support/Unprivileged.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>

namespace ombrel {
namespace {

using Fault = BookmarkStore::Fault;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;
using testing::TempTree;
using testing::TestMount;

BookmarkRecord record(const char* name) {
    using namespace std::chrono;
    const sys_time<microseconds> added = sys_days(2026y / March / 4) + 5h + 6min + 7s + 250ms;
    return {QUuid::createUuid(), std::string("\0bookmark of \xFF", 14) + name, name, added};
}

std::vector<std::string> names(const std::vector<BookmarkRecord>& records) {
    std::vector<std::string> found;
    for (const auto& each : records)
        found.push_back(each.displayName);
    return found;
}

bool convert(const std::string& from, const std::string& to) {
    return std::system(("plistutil -i '" + from + "' -o '" + to + "'").c_str()) == 0;
}

class BookmarkFile : public ::testing::Test {
protected:
    [[nodiscard]] FileBookmarkStore store() const {
        return FileBookmarkStore(tree.url("data/Locations.plist"));
    }
    [[nodiscard]] std::vector<std::string> stored() const { return names(store().load().value()); }
    void damage(std::string_view bytes) const {
        std::filesystem::create_directories(tree.path("data"));
        // A file that is cut and filled again is written to the disk at once; a new one is not.
        std::filesystem::remove(tree.path("data/Locations.plist"));
        tree.file("data/Locations.plist", bytes);
    }

    TempTree tree;
    const BookmarkRecord a = record("a"), b = record("d\xC3\xA9p\xC3\xB4t"), c = record("c");
};

TEST_F(BookmarkFile, HoldsTheRecordsInTheirOrder) {
    EXPECT_THAT(store().load().value(), IsEmpty());
    EXPECT_FALSE(tree.exists("data"));
    ASSERT_TRUE(store().save({b, a}));
    EXPECT_THAT(store().load().value(), ElementsAre(b, a));
    EXPECT_THAT(tree.contents("data/Locations.plist"), StartsWith("bplist00"));
    ASSERT_TRUE(store().save({}));
    EXPECT_THAT(stored(), ElementsAre(b.displayName, a.displayName)) << "this one never knew of them";
}

TEST_F(BookmarkFile, IsReadAndWrittenByAnotherProgram) {
    ASSERT_TRUE(store().save({a, b}));
    const auto xml = tree.path("data/list.xml"), file = tree.path("data/Locations.plist");
    if (!convert(file, xml)) GTEST_SKIP() << "no plistutil";
    EXPECT_THAT(tree.contents("data/list.xml"),
                ::testing::AllOf(HasSubstr("<key>id</key>"), HasSubstr("<key>displayName</key>"),
                                 HasSubstr("<date>2026-03-04T05:06:07Z</date>"),
                                 HasSubstr("d\xC3\xA9p\xC3\xB4t"),
                                 HasSubstr(a.id.toString(QUuid::WithoutBraces).toUpper().toStdString())));
    std::filesystem::remove(file);
    ASSERT_TRUE(convert(xml, file));
    EXPECT_THAT(stored(), ElementsAre(a.displayName, b.displayName));
    EXPECT_EQ(store().load().value().front().bookmark, a.bookmark);
    std::filesystem::rename(xml, file);
    EXPECT_THAT(stored(), ElementsAre(a.displayName, b.displayName)) << "the XML form is read too";
}

TEST_F(BookmarkFile, MergesWhatTwoProgramsChanged) {
    ASSERT_TRUE(store().save({a, b}));
    auto one = store(), other = store();
    ASSERT_TRUE(one.load() && other.load());
    ASSERT_TRUE(one.save({a, b, c}));
    auto renewed = b;
    renewed.bookmark = "renewed";
    ASSERT_TRUE(other.save({renewed}));
    EXPECT_THAT(store().load().value(), ElementsAre(renewed, c)) << "a was removed, c added, b renewed";
    ASSERT_TRUE(one.save({a, b, c, record("d")}));
    EXPECT_THAT(stored(), ElementsAre(b.displayName, "c", "d")) << "what the other removed stays away";
    EXPECT_EQ(store().load().value().front().bookmark, "renewed");
}

TEST_F(BookmarkFile, KeepsMembersOfALaterVersion) {
    const PropertyList::Root array(plist_new_array());
    for (const auto& each : {a, b}) {
        const plist_t dictionary = plist_new_dict();
        PropertyList::setString(dictionary, "id", each.id.toString(QUuid::WithoutBraces).toStdString());
        PropertyList::setData(dictionary, "bookmark", each.bookmark);
        PropertyList::setString(dictionary, "displayName", each.displayName);
        PropertyList::setDate(dictionary, "addedAt", each.addedAt);
        PropertyList::setNumber(dictionary, "colour", 7);
        plist_array_append_item(array.get(), dictionary);
    }
    damage(PropertyList::binary(array));
    auto file = store();
    auto records = file.load().value();
    EXPECT_THAT(records, ElementsAre(a, b)) << "lower-case identifiers are read";
    records.front().bookmark = "renewed";
    ASSERT_TRUE(file.save(records));
    const auto root = PropertyList::parse(tree.contents("data/Locations.plist"));
    for (std::uint32_t i = 0; i < 2; ++i)
        EXPECT_EQ(PropertyList::numberAt(plist_array_get_item(root.get(), i), "colour"), 7U);
}

TEST_F(BookmarkFile, IsNoListWhenAMemberIsMissingOrMistyped) {
    const auto withMember = [&](const char* key, plist_t value) {
        const PropertyList::Root array(plist_new_array());
        const plist_t dictionary = plist_new_dict();
        PropertyList::setString(dictionary, "id", "0E6C8F3A-93B5-4A9F-8F0E-3D7E5B1C2A4D");
        PropertyList::setData(dictionary, "bookmark", "x");
        PropertyList::setString(dictionary, "displayName", "x");
        PropertyList::setDate(dictionary, "addedAt", a.addedAt);
        if (value)
            plist_dict_set_item(dictionary, key, value);
        else
            plist_dict_remove_item(dictionary, key);
        plist_array_append_item(array.get(), dictionary);
        damage(PropertyList::binary(array));
        const auto loaded = store().load();
        return loaded                                   ? std::string("loaded")
               : loaded.error().fault == Fault::damaged ? "damaged"
                                                        : "unreadable";
    };
    EXPECT_EQ(withMember("extra", plist_new_uint(1)), "loaded");
    for (const char* key : {"id", "bookmark", "displayName", "addedAt"}) {
        EXPECT_EQ(withMember(key, nullptr), "damaged") << key;
        EXPECT_EQ(withMember(key, plist_new_bool(1)), "damaged") << key;
    }
    EXPECT_EQ(withMember("id", plist_new_string("no identifier")), "damaged");
    EXPECT_EQ(withMember("id", plist_new_string("{0E6C8F3A-93B5-4A9F-8F0E-3D7E5B1C2A4D}")), "damaged");
}

TEST_F(BookmarkFile, IsKeptAsideWhenDamaged) {
    ASSERT_TRUE(store().save({a, b}));
    const auto whole = tree.contents("data/Locations.plist");
    const PropertyList::Root dictionary(plist_new_dict());
    for (const std::string& bytes : {std::string(), whole.substr(0, whole.size() / 2), std::string("no list"),
                                     PropertyList::binary(dictionary)}) {
        damage(bytes);
        auto file = store();
        EXPECT_EQ(file.load().error().fault, Fault::damaged);
        ASSERT_TRUE(file.save({c}));
        EXPECT_THAT(stored(), ElementsAre("c"));
        EXPECT_EQ(tree.contents("data/Locations.plist.damaged"), bytes);
        std::filesystem::remove(tree.path("data/Locations.plist.damaged"));
    }
}

TEST_F(BookmarkFile, IsSurvivedWhateverIsInIt) {
    ASSERT_TRUE(store().save({a, b, c}));
    const auto whole = tree.contents("data/Locations.plist");
    for (std::size_t length = 0; length < whole.size(); ++length) {
        damage(whole.substr(0, length));
        EXPECT_FALSE(store().load()) << length;
    }
    std::minstd_rand random(1);
    for (int round = 0; round < 3000; ++round) {
        auto bytes = whole;
        for (int change = 0; change < 3; ++change)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        damage(bytes);
        const auto loaded = store().load();
        EXPECT_TRUE(loaded || loaded.error().fault == Fault::damaged);
    }
}

TEST_F(BookmarkFile, IsNotReplacedWhenItCannotBeRead) {
    std::filesystem::create_directories(tree.path("data/Locations.plist"));
    auto file = store();
    EXPECT_EQ(file.load().error().fault, Fault::unreadable);
    EXPECT_EQ(file.save({a}).error().fault, Fault::unreadable);
    EXPECT_TRUE(std::filesystem::is_directory(tree.path("data/Locations.plist")));
}

TEST_F(BookmarkFile, StaysAsItWasInAReadOnlyFolder) {
    ASSERT_TRUE(store().save({a}));
    std::filesystem::permissions(tree.path(), std::filesystem::perms(0755));
    std::filesystem::permissions(tree.path("data"), std::filesystem::perms(0755));
    std::filesystem::permissions(tree.path("data/Locations.plist"), std::filesystem::perms(0644));
    EXPECT_TRUE(testing::asNobody([&] {
        auto file = store();
        return file.load().has_value() && file.save({a, b}).error().fault == Fault::unwritable;
    }));
    EXPECT_THAT(stored(), ElementsAre("a"));
    std::filesystem::permissions(tree.path("data/Locations.plist"), std::filesystem::perms(0600));
    EXPECT_TRUE(testing::asNobody([&] { return store().load().error().fault == Fault::unreadable; }));
}

TEST_F(BookmarkFile, StaysAsItWasOnAFullDisk) {
    const auto mount = TestMount::tmpfs({}, "size=64k");
    if (!mount) GTEST_SKIP() << mount.error();
    FileBookmarkStore file((*mount)->url().appending("Locations.plist"));
    ASSERT_TRUE(file.save({a}));
    {
        std::ofstream filler((*mount)->path() + "/filler");
        while (filler.write("x", 1).flush()) {
        }
    }
    const auto saved = file.save({a, b});
    EXPECT_EQ(saved.error().fault, Fault::unwritable);
    EXPECT_EQ(saved.error().reason.number, ENOSPC);
    EXPECT_THAT(file.load().value(), ElementsAre(a));
    std::filesystem::remove((*mount)->path() + "/filler");
    EXPECT_TRUE(file.save({a, b}));
    EXPECT_THAT(file.load().value(), ElementsAre(a, b));
}

} // namespace
} // namespace ombrel
