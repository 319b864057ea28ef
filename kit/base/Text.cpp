#include "base/Text.h"

#include <memory>
#include <mutex>

namespace ombrel {
namespace {

// Never destroyed: a worker that outlives main() may still ask for a text.
struct Shared {
    std::mutex mutex; // guards lookUp
    std::shared_ptr<const Texts::LookUp> lookUp;
};

Shared& shared() {
    static auto& instance = *new Shared;
    return instance;
}

std::string looked(std::string_view key, std::optional<std::int64_t> count) {
    std::shared_ptr<const Texts::LookUp> lookUp;
    {
        const std::scoped_lock lock(shared().mutex);
        lookUp = shared().lookUp;
    }
    return lookUp && *lookUp ? (*lookUp)(key, count) : std::string();
}

std::string bare(const Text& text) {
    std::string result(text.key);
    if (text.arguments.empty() && !text.count) return result;
    result += '(';
    if (text.count) result += std::to_string(*text.count);
    for (std::size_t i = 0; i < text.arguments.size(); ++i) {
        if (i > 0 || text.count) result += ", ";
        result += text.arguments[i];
    }
    return result + ')';
}

} // namespace

std::string Text::localized() const {
    const std::string pattern = looked(key, count);
    if (pattern.empty()) return bare(*this);
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        const bool isPlaceholder = pattern[i] == '{' && i + 2 < pattern.size() && pattern[i + 2] == '}' &&
                                   pattern[i + 1] >= '1' && pattern[i + 1] <= '9';
        const auto index = isPlaceholder ? static_cast<std::size_t>(pattern[i + 1] - '1') : arguments.size();
        if (index < arguments.size()) {
            result += arguments[index];
            i += 2;
        } else {
            result += pattern[i];
        }
    }
    return result;
}

namespace Texts {

std::string localized(std::string_view key, std::vector<std::string> arguments) {
    return Text{key, std::move(arguments)}.localized();
}

void connect(LookUp lookUp) {
    auto next = std::make_shared<const LookUp>(std::move(lookUp));
    const std::scoped_lock lock(shared().mutex);
    shared().lookUp = std::move(next);
}

} // namespace Texts
} // namespace ombrel
