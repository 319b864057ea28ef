#pragma once

#include <QLocale>
#include <QString>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace ombrel {

/// The language that the interface speaks, and the locale that goes with it.
struct InterfaceLanguage {
    std::string_view code = "en"; ///< one of `supported()`; names the string table
    QLocale locale;               ///< digits, dates and sizes
    std::string collation;        ///< for NameCollation: a locale's name, empty for the root order

    /// The codes of all string tables, in the order of the menu.
    [[nodiscard]] static std::span<const std::string_view> supported() noexcept;

    /// The supported code that speaks for a locale's name in POSIX or BCP 47 form ("de_AT.UTF-8", "zh-TW",
    /// "pt").
    [[nodiscard]] static std::optional<std::string_view> match(const QString& localeName);

    /// `asked` where it is supported; otherwise the first supported language of the environment, as gettext
    /// reads it: LANGUAGE (unless the locale is plain C), then the first of LC_ALL, LC_MESSAGES and LANG that
    /// is set; otherwise English. An asked language brings its own locale and order of names; otherwise they
    /// are the environment's.
    [[nodiscard]] static InterfaceLanguage choose(std::optional<std::string_view> asked = std::nullopt);
};

} // namespace ombrel
