#pragma once

#include "services/InterfaceLanguage.h"

#include <QLocale>
#include <QTranslator>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ombrel {

/// The texts of one interface language, with English beneath: a key that the language's table leaves open is
/// answered in English. Immutable once made; look-up on any thread.
class TextTables {
public:
    explicit TextTables(const InterfaceLanguage& language);

    /// The table's text for `key`, {1}, {2}, ... untouched; empty when not even English has it. `count`
    /// chooses the plural form and replaces {n}, in the digits of the language's locale.
    [[nodiscard]] std::string text(std::string_view key,
                                   std::optional<std::int64_t> count = std::nullopt) const;

private:
    QTranslator chosen_;
    QTranslator english_;
    QLocale locale_;
};

} // namespace ombrel
