#include "services/AccessManager.h"

#include "base/Text.h"
#include "services/AccessFakes.h"
#include "support/Locations.h"
#include "support/LogRecorder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

#include "qtmain/KitWorld.h"

namespace ombrel {
namespace {

using namespace std::chrono_literals;
using Owner = AccessGrant::ScopeOwner;
using Grant = AccessManager::Grant;
using testing::at;
using ::testing::Contains;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using testing::KitWorld;
using testing::LogRecorder;
using testing::MemoryStore;
using ::testing::Not;
using testing::runUntil;
using testing::runUntilQuiet;
using testing::ScriptedPicker;
using testing::ScriptedScopes;
using ::testing::StartsWith;

/// "active /path", or the state and the key of its message.
std::string summary(const Grant& grant) {
    std::string text(rawValue(grant->state().which));
    if (grant->isActive()) return text + ' ' + grant->url()->path();
    EXPECT_EQ(grant->state().message().empty(), grant->state().messageKey.empty());
    return grant->state().messageKey.empty() ? text : text + ' ' + std::string(grant->state().messageKey);
}

class Grants : public ::testing::Test {
protected:
    Grants() {
        manager.setTelemetry([this](int counter) { counted.push_back(counter); });
        manager.setFolderPicker(&picker);
    }
    void restore(std::initializer_list<const char*> paths) {
        for (const char* path : paths)
            store->add(path);
        manager.restore();
        ASSERT_TRUE(runUntil([&] { return !manager.isBusy(); }));
    }
    [[nodiscard]] std::vector<std::string> states() const {
        std::vector<std::string> found;
        for (const auto& grant : manager.grants())
            found.push_back(summary(grant));
        return found;
    }
    AccessManager::Granted add(const char* path, const Grant& replacing = nullptr) {
        std::optional<AccessManager::Granted> granted;
        manager.addGrant(at(path), replacing,
                         [&](AccessManager::Granted result) { granted = std::move(result); });
        EXPECT_FALSE(granted) << "never at once";
        EXPECT_TRUE(runUntil([&] { return granted && !manager.isBusy(); }));
        return granted.value_or(std::unexpected(AccessManager::AccessError::userCancelled));
    }
    [[nodiscard]] std::vector<std::string> storedBookmarks() const {
        std::vector<std::string> found;
        for (const auto& record : store->records())
            found.push_back(record.bookmark);
        return found;
    }

    KitWorld world;
    std::shared_ptr<ScriptedScopes> system = std::make_shared<ScriptedScopes>();
    std::shared_ptr<MemoryStore> store = std::make_shared<MemoryStore>();
    ScriptedPicker picker;
    std::vector<int> counted;
    AccessManager manager{system, store};
};

using GrantsRestored = Grants;

TEST_F(GrantsRestored, ArePublishedFirstAndThenBecomeWhatTheyAre) {
    system->failures["/gone"] = {true, "posix", 2};
    system->failures["/odd"] = {false, "bookmark", 1};
    system->refused = {"/unscoped", "/closed"};
    system->unreadable = {"/closed", "/locked"};
    for (const char* path : {"/a/one", "/", "/gone", "/odd", "/unscoped", "/closed", "/locked"})
        store->add(path);
    manager.restore();
    EXPECT_EQ(manager.grants().size(), 7U);
    for (const auto& grant : manager.grants()) {
        EXPECT_EQ(summary(grant), "unavailable");
        EXPECT_EQ(grant->displayName(), "stored name");
        EXPECT_EQ(grant->url(), std::nullopt);
    }
    ASSERT_TRUE(runUntil([&] { return !manager.isBusy(); }));
    EXPECT_THAT(states(),
                ElementsAre("active /a/one", "active /", "unavailable access.unavailable",
                            "needsReauthorization access.bookmarkInvalid", "active /unscoped",
                            "needsReauthorization access.denied", "needsReauthorization access.denied"));
    std::ranges::sort(counted);
    EXPECT_THAT(counted, ElementsAre(0, 0, 1, 2));
    EXPECT_EQ(manager.grants()[0]->displayName(), "one");
    EXPECT_EQ(manager.grants()[1]->displayName(), "/");
    EXPECT_EQ(manager.grants()[0]->scopeOwner(), Owner::bookmark);
    EXPECT_EQ(manager.grants()[4]->scopeOwner(), Owner::none);
    EXPECT_EQ(manager.grants()[5]->url(), std::nullopt);
    EXPECT_EQ(manager.activeScopeCount(), 2U);
    EXPECT_EQ(system->openScopes("/locked"), 0);
    manager.stopAll();
    EXPECT_EQ(manager.activeScopeCount(), 0U);
    EXPECT_EQ(system->openScopes("/a/one"), 0);
    EXPECT_EQ(summary(manager.grants()[0]), "active /a/one");
}

TEST_F(GrantsRestored, AskTheSystemInOrder) {
    system->movedTo["/a"] = "/b";
    restore({"/a"});
    EXPECT_THAT(system->takeCalls(), ElementsAre("resolve /a", "start /b", "make /b", "read /b"));
    manager.restore();
    ASSERT_TRUE(runUntil([&] { return !manager.isBusy(); }));
    EXPECT_THAT(system->takeCalls(), ElementsAre("stop /b", "resolve /b", "start /b", "read /b"));
    EXPECT_EQ(system->openScopes("/b"), 1);
}

TEST_F(GrantsRestored, RenewStaleBookmarks) {
    system->movedTo = {{"/old", "/new"}, {"/stuck", "/there"}};
    system->unmakeable = {"/there"};
    store->add("/old");
    store->add("/stuck");
    const auto before = store->records();
    restore({});
    EXPECT_THAT(states(), ElementsAre("active /new", "needsReauthorization access.staleNotRenewable"));
    const auto after = store->records();
    EXPECT_THAT(storedBookmarks(), ElementsAre("bookmark of /new", "bookmark of /stuck"));
    EXPECT_EQ(after[0].id, before[0].id);
    EXPECT_EQ(after[0].displayName, before[0].displayName);
    EXPECT_EQ(after[0].addedAt, before[0].addedAt);
    EXPECT_THAT(counted, ElementsAre(1));
    EXPECT_EQ(system->openScopes("/there"), 0);
    EXPECT_EQ(manager.grants()[1]->scopeOwner(), Owner::none);
}

TEST_F(GrantsRestored, NotFromAStoreThatCannotBeRead) {
    store->add("/a");
    store->loadFault = BookmarkStore::Fault::damaged;
    manager.restore();
    EXPECT_THAT(manager.grants(), IsEmpty());
    EXPECT_EQ(manager.lastStoreError(), Text{"access.storeUnreadable"});
    store->loadFault.reset();
    ASSERT_TRUE(add("/b"));
    EXPECT_EQ(manager.lastStoreError(), std::nullopt) << "a save that succeeds clears it";
}

TEST_F(GrantsRestored, AreLoggedByReasonAndNotByName) {
    const LogRecorder log;
    system->failures = {{"/away", {true, "posix", 2}}, {"/broken", {false, "bookmark", 1}}};
    store->saveFault = BookmarkStore::Fault::unwritable;
    restore({"/away", "/broken", "/fine"});
    ASSERT_TRUE(add("/new"));
    const auto lines = log.lines();
    EXPECT_THAT(lines, IsSupersetOf({"error access: bookmark resolution failed: posix 2",
                                     "error access: bookmark resolution failed: bookmark 1"}));
    EXPECT_THAT(lines, Contains(StartsWith("error access: bookmark store save failed")));
    EXPECT_THAT(lines, Each(Not(HasSubstr("/"))));
}

using GrantsThatAreAway = Grants;

TEST_F(GrantsThatAreAway, ComeBackWhenTheyAreTriedAgain) {
    system->failures = {{"/a", {true, "posix", 2}}, {"/b", {false, "posix", 12}}};
    restore({"/a", "/b", "/c"});
    (void)system->takeCalls();
    system->failures.clear();
    manager.retryUnavailable();
    ASSERT_TRUE(runUntil([&] { return !manager.isBusy(); }));
    EXPECT_THAT(states(),
                ElementsAre("active /a", "needsReauthorization access.bookmarkInvalid", "active /c"));
    EXPECT_THAT(system->takeCalls(), ElementsAre("resolve /a", "start /a", "read /a"));
}

TEST_F(GrantsThatAreAway, DoNotHoldUpOthersWhenTheyHang) {
    manager.setPatience(50ms);
    system->hang("/dead", true);
    restore({"/dead", "/b"});
    ASSERT_TRUE(runUntil([&] { return manager.grants()[1]->isActive(); }));
    EXPECT_THAT(states(), ElementsAre("unavailable access.unavailable", "active /b"));
    manager.retryUnavailable();
    manager.retryUnavailable();
    EXPECT_FALSE(manager.isBusy()) << "one thread that hangs is enough";
    system->hang("/dead", false);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(states(), ElementsAre("active /dead", "active /b"));
    EXPECT_EQ(system->openScopes("/dead"), 1);
}

TEST_F(GrantsThatAreAway, AreAskedAgainWhenThatWasWantedWhileTheyHung) {
    manager.setPatience(20ms);
    system->failures["/dead"] = {true, "posix", 107};
    system->hang("/dead", true);
    restore({"/dead"});
    manager.retryUnavailable();
    system->hang("/dead", false);
    std::vector<std::string> calls;
    ASSERT_TRUE(runUntil([&] {
        std::ranges::move(system->takeCalls(), std::back_inserter(calls));
        return calls.size() > 1 && !manager.isBusy();
    }));
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(calls, ElementsAre("resolve /dead", "resolve /dead"));
    EXPECT_THAT(system->takeCalls(), IsEmpty());
    EXPECT_THAT(states(), ElementsAre("unavailable access.unavailable"));
}

TEST_F(GrantsThatAreAway, GiveTheirScopeBackWhenTheyAreFoundTooLate) {
    system->hang("/a", true);
    store->add("/a");
    manager.restore();
    manager.remove(manager.grants().front());
    system->hang("/a", false);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_THAT(manager.grants(), IsEmpty());
    EXPECT_THAT(store->records(), IsEmpty());
    EXPECT_EQ(system->openScopes("/a"), 0);
    EXPECT_FALSE(manager.isBusy());
}

TEST(GrantsOfAManagerThatIsGone, GiveTheirScopeBack) {
    const KitWorld world;
    const auto system = std::make_shared<ScriptedScopes>();
    {
        const auto store = std::make_shared<MemoryStore>();
        store->add("/a");
        AccessManager manager(system, store);
        system->hang("/a", true);
        manager.restore();
        manager.addGrant(at("/b"), nullptr, [](const auto&) { FAIL() << "nobody is there to be told"; });
    }
    system->hang("/a", false);
    ASSERT_TRUE(runUntilQuiet());
    EXPECT_EQ(system->openScopes("/a"), 0);
    EXPECT_EQ(system->openScopes("/b"), -1) << "the picked folder's own";
}

using GrantsAdded = Grants;

TEST_F(GrantsAdded, AreStoredAndActive) {
    const auto grant = add("/a/b");
    ASSERT_TRUE(grant);
    EXPECT_EQ(summary(*grant), "active /a/b");
    EXPECT_EQ((*grant)->scopeOwner(), Owner::openPanel);
    EXPECT_TRUE((*grant)->isAccessing());
    ASSERT_EQ(store->records().size(), 1U);
    EXPECT_EQ(store->records()[0].id, (*grant)->id());
    EXPECT_EQ(store->records()[0].displayName, "b");
    EXPECT_LT(std::chrono::system_clock::now() - store->records()[0].addedAt, 1min);
    ASSERT_TRUE(add("/"));
    EXPECT_EQ(store->records()[1].displayName, "/");
}

TEST_F(GrantsAdded, OnceForAFolderThatIsGranted) {
    const auto first = add("/a/b");
    system->unmakeable = {"/a/x/../b"};
    const auto again = add("/a/x/../b");
    ASSERT_TRUE(again);
    EXPECT_EQ(*again, *first);
    EXPECT_EQ(store->saves(), 1);
    EXPECT_EQ(system->openScopes("/a/x/../b"), -1) << "the picked folder's own scope is given back";
}

TEST_F(GrantsAdded, OnceWhenTheFolderIsPickedTwiceAtOnce) {
    std::vector<AccessManager::Granted> granted;
    for (int i = 0; i < 2; ++i)
        manager.addGrant(at("/a"), nullptr,
                         [&](AccessManager::Granted result) { granted.push_back(result); });
    ASSERT_TRUE(runUntil([&] { return granted.size() == 2 && !manager.isBusy(); }));
    EXPECT_EQ(granted[0], granted[1]);
    EXPECT_EQ(store->records().size(), 1U);
}

TEST_F(GrantsAdded, InPlaceOfThoseThatCannotBeUsed) {
    restore({"/a", "/b", "/c"});
    const auto a = manager.grants()[0], b = manager.grants()[1];
    system->unreadable = {"/a"};
    manager.activate(a);
    ASSERT_TRUE(runUntil([&] { return !manager.isBusy(); }));
    EXPECT_EQ(summary(a), "needsReauthorization access.denied");
    system->unreadable.clear();
    ASSERT_TRUE(add("/a", b));
    EXPECT_THAT(states(), ElementsAre("active /c", "active /a"));
    EXPECT_THAT(storedBookmarks(), ElementsAre("bookmark of /c", "bookmark of /a"));
    EXPECT_EQ(system->openScopes("/b"), 0);
}

TEST_F(GrantsAdded, NotWithoutABookmark) {
    system->unmakeable = {"/a"};
    const auto granted = add("/a");
    ASSERT_FALSE(granted);
    EXPECT_EQ(granted.error(), AccessManager::AccessError::bookmarkCreationFailed);
    EXPECT_EQ(manager.lastAccessError(), Text{"access.bookmarkCreationFailed"});
    EXPECT_THAT(manager.grants(), IsEmpty());
    EXPECT_EQ(store->saves(), 0);
    EXPECT_EQ(system->openScopes("/a"), -1);
}

TEST_F(GrantsAdded, AsRefusedWhenTheyStillCannotBeRead) {
    system->unreadable = {"/a"};
    const auto grant = add("/a");
    ASSERT_TRUE(grant);
    EXPECT_EQ(summary(*grant), "needsReauthorization access.denied");
    EXPECT_EQ(manager.grantCovering(at("/a")), nullptr);
    EXPECT_EQ(manager.activeScopeCount(), 0U);
    system->unreadable.clear();
    const auto again = add("/a");
    EXPECT_NE(*again, *grant);
    EXPECT_THAT(states(), ElementsAre("active /a"));
}

TEST_F(GrantsAdded, AlsoWhenTheListCannotBeSaved) {
    store->saveFault = BookmarkStore::Fault::unwritable;
    ASSERT_TRUE(add("/a"));
    EXPECT_THAT(states(), ElementsAre("active /a"));
    EXPECT_EQ(manager.lastStoreError(), Text{"access.storeFailed"});
    store->saveFault.reset();
    ASSERT_TRUE(add("/b"));
    EXPECT_EQ(manager.lastStoreError(), std::nullopt);
    EXPECT_EQ(store->records().size(), 2U);
}

using AccessRequested = Grants;

TEST_F(AccessRequested, GrantsWhatTheUserPicks) {
    picker.answer = at("/picked");
    Grant granted;
    manager.requestAccess(at("/start"), "access.panel.knownFolder", nullptr,
                          [&](Grant grant) { granted = grant; });
    ASSERT_TRUE(runUntil([&] { return granted && !manager.isBusy(); }));
    EXPECT_EQ(summary(granted), "active /picked");
    ASSERT_EQ(picker.requests.size(), 1U);
    EXPECT_EQ(picker.requests[0].startingAt, at("/start"));
    EXPECT_EQ(picker.requests[0].message, "Allow Ombrel to open this folder.");
    EXPECT_EQ(picker.requests[0].prompt, "Allow");
}

TEST_F(AccessRequested, TellsNothingWhenTheUserCancelsAndWhyWhenItFails) {
    int answers = 0;
    const auto refused = [&](const Grant& grant) {
        EXPECT_EQ(grant, nullptr);
        ++answers;
    };
    manager.requestAccess(std::nullopt, {}, nullptr, refused);
    EXPECT_EQ(answers, 1);
    EXPECT_THAT(picker.failures, IsEmpty());
    EXPECT_EQ(picker.requests[0].message, "Choose a folder that Ombrel may open.");
    picker.answer = at("/bad");
    system->unmakeable = {"/bad"};
    manager.requestAccess(std::nullopt, {}, nullptr, refused);
    ASSERT_TRUE(runUntil([&] { return answers == 2; }));
    EXPECT_THAT(picker.failures, ElementsAre("The permission could not be made."));
    manager.setFolderPicker(nullptr);
    manager.requestAccess(std::nullopt, {}, nullptr, refused);
    EXPECT_EQ(answers, 3);
}

using GrantCovering = Grants;

TEST_F(GrantCovering, IsTheActiveOneWithTheLongestPath) {
    system->unreadable = {"/closed"};
    restore({"/v/x", "/v/x/y", "/docs", "/closed", "/z/../docs"});
    const auto covering = [&](std::string_view path) {
        const auto grant = manager.grantCovering(at(path));
        return grant ? grant->url()->path() : std::string("none");
    };
    EXPECT_EQ(covering("/v/x"), "/v/x");
    EXPECT_EQ(covering("/v/x/a"), "/v/x");
    EXPECT_EQ(covering("/v/x/y/z"), "/v/x/y");
    EXPECT_EQ(covering("/v/x/y/../q"), "/v/x");
    EXPECT_EQ(covering("/v/xy"), "none");
    EXPECT_EQ(covering("/v"), "none");
    EXPECT_EQ(covering("/docs/a"), "/z/../docs") << "length counts as the paths were given";
    EXPECT_EQ(covering("/closed/a"), "none");
    ASSERT_TRUE(add("/"));
    EXPECT_EQ(covering("/anything"), "/");
    EXPECT_EQ(covering("/v/x"), "/v/x");
}

} // namespace
} // namespace ombrel
