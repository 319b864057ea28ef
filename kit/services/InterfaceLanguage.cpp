#include "services/InterfaceLanguage.h"

#include <QStringList>

#include <algorithm>
#include <array>

namespace ombrel {
namespace {

constexpr std::array<std::string_view, 16> codes = {"en", "zh-Hans", "zh-Hant", "ja", "ko", "de", "fr", "es",
                                                    "it", "pt-BR",   "nl",      "pl", "ru", "tr", "vi", "id"};

bool isPlain(const QString& localeName) {
    const auto bare = localeName.section(u'.', 0, 0);
    return bare.isEmpty() || bare == u"C" || bare == u"POSIX";
}

/// What the process's locale is for messages; empty when nothing is set.
QString messagesLocale() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (auto value = qEnvironmentVariable(variable); !value.isEmpty()) return value;
    return {};
}

} // namespace

std::span<const std::string_view> InterfaceLanguage::supported() noexcept {
    return codes;
}

std::optional<std::string_view> InterfaceLanguage::match(const QString& localeName) {
    if (isPlain(localeName)) return std::nullopt;
    const QLocale wanted(localeName.section(u'.', 0, 0).section(u'@', 0, 0).replace(u'-', u'_'));
    if (wanted.language() == QLocale::C) return std::nullopt;
    const auto* found = std::ranges::find_if(codes, [&](std::string_view code) {
        const QLocale table(
            QString::fromUtf8(code.data(), static_cast<qsizetype>(code.size())).replace(u'-', u'_'));
        // Only Chinese has two tables, told apart by script; elsewhere the language is enough.
        return table.language() == wanted.language() &&
               (table.language() != QLocale::Chinese || table.script() == wanted.script());
    });
    return found == codes.end() ? std::nullopt : std::optional(*found);
}

InterfaceLanguage InterfaceLanguage::choose(std::optional<std::string_view> asked) {
    if (asked) {
        const auto name = QString::fromUtf8(asked->data(), static_cast<qsizetype>(asked->size()));
        if (const auto code = match(name))
            return {*code, QLocale(QString(name).replace(u'-', u'_')), std::string(*asked)};
    }
    const auto environment = messagesLocale();
    QStringList wishes;
    if (environment.isEmpty() || !isPlain(environment) || environment.contains(u'.'))
        wishes = qEnvironmentVariable("LANGUAGE").split(u':', Qt::SkipEmptyParts);
    wishes.append(environment);
    for (const auto& wish : wishes) {
        // The environment's own locale knows the country ("de_AT") that a bare wish ("de") leaves open.
        const auto code = match(wish);
        if (code)
            return {*code, QLocale(match(environment) == code ? environment : wish),
                    environment.toStdString()};
    }
    return {"en", QLocale(QLocale::English, QLocale::UnitedStates), environment.toStdString()};
}

} // namespace ombrel
