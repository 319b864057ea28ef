#include "services/TextTables.h"

#include <QByteArray>
#include <QString>

#include <limits>

// Outside every namespace, because that is where the resource compiler declares what it makes.
static void registerTables() {
    Q_INIT_RESOURCE(ombrel_texts);
}

namespace ombrel {
namespace {

void load(QTranslator& translator, std::string_view code) {
    // A table that is still empty does not load; every key then falls back to English.
    (void)translator.load(QStringLiteral(":/texts/ombrel_%1.qm")
                              .arg(QString::fromUtf8(code.data(), static_cast<qsizetype>(code.size()))));
}

/// A number that has the plural form of `count` in every language and fits the translator's parameter: forms
/// depend on 0 to 2 themselves and otherwise on the last digits.
int pluralNumber(std::int64_t count) noexcept {
    constexpr std::int64_t period = 1'000'000;
    if (count < 0) count = count == std::numeric_limits<std::int64_t>::min() ? 0 : -count;
    return static_cast<int>(count < period ? count : count % period + period);
}

} // namespace

TextTables::TextTables(const InterfaceLanguage& language) : locale_(language.locale) {
    registerTables();
    load(english_, "en");
    if (language.code != "en") load(chosen_, language.code);
}

std::string TextTables::text(std::string_view key, std::optional<std::int64_t> count) const {
    const QByteArray id(key.data(), static_cast<qsizetype>(key.size()));
    const int number = count ? pluralNumber(*count) : -1;
    QString found = chosen_.translate(nullptr, id.constData(), nullptr, number);
    if (found.isEmpty()) found = english_.translate(nullptr, id.constData(), nullptr, number);
    if (count) found.replace(QStringLiteral("{n}"), locale_.toString(static_cast<qlonglong>(*count)));
    return found.toStdString();
}

} // namespace ombrel
