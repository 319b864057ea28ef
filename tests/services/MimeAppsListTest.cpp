#include "services/MimeAppsList.h"

#include <gtest/gtest.h>

#include <string>

namespace ombrel {
namespace {

std::string chosen(std::string_view text) {
    return MimeAppsList::withDefault(text, "text/plain", "new.desktop");
}

TEST(MimeAppsList, GainsItsGroupsWhereThereAreNone) {
    const std::string made = "[Default Applications]\ntext/plain=new.desktop;\n\n"
                             "[Added Associations]\ntext/plain=new.desktop;\n";
    EXPECT_EQ(chosen(""), made);
    EXPECT_EQ(chosen(made), made);
}

TEST(MimeAppsList, KeepsEveryOtherLineAsItIs) {
    EXPECT_EQ(chosen("# by hand\n"
                     "[Added Associations]\n"
                     "image/png=paint.desktop\n"
                     " text/plain = old.desktop;new.desktop;other.desktop\n"
                     "\n"
                     "[Removed Associations]\n"
                     "text/plain=new.desktop;editor.desktop;\n"
                     "[Unknown Group]\n"
                     "text/plain=untouched.desktop\n"
                     "[Default Applications]\n"
                     "text/plain2=x.desktop\n"
                     "text/plain=old.desktop"),
              "# by hand\n"
              "[Added Associations]\n"
              "image/png=paint.desktop\n"
              "text/plain=new.desktop;old.desktop;other.desktop;\n"
              "\n"
              "[Removed Associations]\n"
              "text/plain=editor.desktop;\n"
              "[Unknown Group]\n"
              "text/plain=untouched.desktop\n"
              "[Default Applications]\n"
              "text/plain2=x.desktop\n"
              "text/plain=new.desktop;\n");
}

TEST(MimeAppsList, TakesAwayARemovalOfTheApplicationAlone) {
    EXPECT_EQ(chosen("[Removed Associations]\ntext/plain=new.desktop\nimage/png=new.desktop\n"),
              "[Removed Associations]\nimage/png=new.desktop\n\n"
              "[Default Applications]\ntext/plain=new.desktop;\n\n"
              "[Added Associations]\ntext/plain=new.desktop;\n");
}

} // namespace
} // namespace ombrel
