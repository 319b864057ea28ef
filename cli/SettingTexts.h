#pragma once

#include "base/Text.h"
#include "services/AppSettings.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Settings as the words of a command line.
namespace ombrel::cli::SettingTexts {

/// One word for a value, any number for a list; none for a language that follows the desktop.
[[nodiscard]] std::vector<std::string> wordsOf(const AppSettings& settings, Setting setting);
/// The same as JSON.
[[nodiscard]] std::string jsonOf(const AppSettings& settings, Setting setting);

/// Sets it. What is wrong with the words, if anything is; nothing is set then.
[[nodiscard]] std::optional<Text> set(AppSettings& settings, Setting setting,
                                      std::span<const std::string_view> words);

} // namespace ombrel::cli::SettingTexts
