#include "listing/TypeDatabase.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "base/TextMap.h"
#include "listing/GLibPointers.h"
#include "listing/TypeTables.h"

#include <gio/gio.h>
#include <unicode/ucasemap.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <shared_mutex>
#include <span>
#include <unordered_map>

namespace ombrel::TypeDatabase {
namespace {

constexpr TypeIndex folderIndex = 1;
constexpr TypeIndex dataIndex = 2;
constexpr TypeIndex symbolicLinkIndex = 3;
constexpr TypeIndex firstPackageIndex = 4;

/// No extension of the database is nearly as long.
constexpr std::size_t longestExtension = 64;
/// Extensions that are remembered; the database has about a thousand, folders of numbered endings may have
/// millions.
constexpr std::size_t rememberedExtensions = 65536;

using GLib::CString;

constexpr std::optional<TypeTables::PackageType> packageOf(TypeIndex type) noexcept {
    const std::size_t row = type - firstPackageIndex;
    if (type < firstPackageIndex || row >= TypeTables::packageTypes.size()) return std::nullopt;
    return TypeTables::packageTypes[row];
}

enum Class : std::uint8_t { executable = 1, script = 2, application = 4, isClassified = 128 };

/// Identifiers and their numbers. Entries are never removed, and never move once made.
class Registry {
public:
    struct Entry {
        explicit Entry(std::string_view text) : identifier(text) {}
        const std::string identifier;
        std::atomic<std::uint8_t> classes = 0; // bits of Class, once they are known
    };

    Registry() {
        for (const std::string_view fixed :
             {"", "inode/directory", "application/octet-stream", "inode/symlink"})
            add(fixed);
        for (const auto& package : TypeTables::packageTypes)
            add(package.identifier);
    }

    /// Nothing for a number that was never given out.
    Entry* entry(TypeIndex type) {
        const std::shared_lock lock(mutex_);
        return type < entries_.size() ? &entries_[type] : nullptr;
    }

    TypeIndex index(std::string_view identifier) {
        {
            const std::shared_lock lock(mutex_);
            if (const auto known = indices_.find(identifier); known != indices_.end()) return known->second;
        }
        const std::unique_lock lock(mutex_);
        const auto known = indices_.find(identifier);
        return known != indices_.end() ? known->second : add(identifier);
    }

private:
    TypeIndex add(std::string_view identifier) {
        const auto type = static_cast<TypeIndex>(entries_.size());
        indices_.emplace(entries_.emplace_back(identifier).identifier, type);
        return type;
    }

    std::shared_mutex mutex_; // guards the containers
    std::deque<Entry> entries_;
    std::unordered_map<std::string_view, TypeIndex> indices_;
};

Registry& registry() {
    static auto& instance = *new Registry;
    return instance;
}

/// Held around every question to GIO. It has one lock of its own inside, so nothing is lost by it, and what
/// comes back reads the database file in turn.
std::mutex& gio() {
    static auto& mutex = []() -> std::mutex& {
        // Settles the folders of the database; when that comes late GIO reads all of it again and loses the
        // first.
        (void)g_content_type_get_mime_dirs();
        return *new std::mutex;
    }();
    return mutex;
}

bool conformsInDatabase(const std::string& identifier, const char* base) {
    const std::scoped_lock lock(gio());
    return g_content_type_is_a(identifier.c_str(), base);
}

/// What GIO says of a name with this extension alone. It may be unsure between several types of the database,
/// as for "html"; then the one with most weight stands. Only where no pattern matches is its answer a guess.
TypeIndex lookedUp(std::string_view extension) {
    if (!FileName::isValidUTF8(extension)) return 0;
    const CString type = [&] {
        const std::scoped_lock lock(gio());
        return CString(g_content_type_guess(("x." + std::string(extension)).c_str(), nullptr, 0, nullptr));
    }();
    if (!type) return 0;
    const TypeIndex found = registry().index(type.get());
    return found == dataIndex ? 0 : found;
}

/// The answers so far, for all threads.
class Extensions {
public:
    std::optional<TypeIndex> known(std::string_view extension) {
        const std::shared_lock lock(mutex_);
        const auto known = types_.find(extension);
        return known != types_.end() ? std::optional(known->second) : std::nullopt;
    }

    TypeIndex type(std::string_view extension) {
        if (const auto known = this->known(extension)) return *known;
        const TypeIndex found = lookedUp(extension);
        const std::unique_lock lock(mutex_);
        if (types_.size() < rememberedExtensions) types_.emplace(extension, found);
        return found;
    }

private:
    std::shared_mutex mutex_; // guards types_
    TextMap<TypeIndex> types_;
};

Extensions& extensions() {
    static auto& instance = *new Extensions;
    return instance;
}

/// A thread's own answers for extensions of up to eight bytes, found without a lock: a listing asks once an
/// entry.
struct RecentExtensions {
    struct Slot {
        std::uint64_t bytes; // the extension, padded with zeros; 0 in an empty slot
        TypeIndex type;
    };
    static constexpr unsigned slotBits = 8;
    std::array<Slot, 1U << slotBits> slots;

    Slot& slot(std::uint64_t bytes) noexcept {
        return slots[(bytes * 0x9E3779B97F4A7C15U) >> (64 - slotBits)];
    }
};
constinit thread_local RecentExtensions recentExtensions{};

/// An extension in lower case, without an allocation.
class Lowered {
public:
    /// `extension` is at most `longestExtension` bytes.
    explicit Lowered(std::string_view extension) noexcept : size_(extension.size()) {
        std::ranges::transform(extension, bytes_.begin(), [](char c) {
            return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
        });
    }
    [[nodiscard]] std::string_view text() const noexcept { return {bytes_.data(), size_}; }

private:
    std::array<char, longestExtension> bytes_;
    std::size_t size_;
};

bool isA(const std::string& identifier, std::span<const char* const> bases) {
    return std::ranges::any_of(bases, [&](const char* base) { return conformsInDatabase(identifier, base); });
}

std::uint8_t classesOf(TypeIndex type) {
    auto* const entry = registry().entry(type);
    if (!entry) return 0;
    std::uint8_t classes = entry->classes.load(std::memory_order_relaxed);
    if (classes != 0) return classes;
    classes = isClassified;
    if (!isA(entry->identifier, TypeTables::dataTypes)) {
        if (isA(entry->identifier, TypeTables::executableTypes)) classes |= executable;
        if (isA(entry->identifier, TypeTables::scriptTypes)) classes |= script;
        if (isA(entry->identifier, TypeTables::applicationTypes)) classes |= application;
    }
    entry->classes.store(classes, std::memory_order_relaxed);
    return classes;
}

/// The database's words, or nothing: for a type without words GIO makes some up around the identifier.
std::string wordsFor(const std::string& identifier) {
    const CString words = [&] {
        const std::scoped_lock lock(gio());
        return CString(g_content_type_get_description(identifier.c_str()));
    }();
    std::string text = words ? words.get() : "";
    return text.find(identifier) == std::string::npos ? text : std::string();
}

/// With a capital at the beginning, as the interface's own texts have it, unless the first word has one
/// anywhere
/// ("reStructuredText document").
std::string inSentenceCase(std::string text) {
    const std::string_view word = std::string_view(text).substr(0, text.find(' '));
    if (std::ranges::any_of(word, [](char c) { return c >= 'A' && c <= 'Z'; })) return text;
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCaseMap, decltype(&ucasemap_close)> map(
        ucasemap_open(g_get_language_names()[0], U_TITLECASE_WHOLE_STRING | U_TITLECASE_NO_LOWERCASE,
                      &status),
        &ucasemap_close);
    std::string titled(text.size() + 16, '\0');
    const auto length =
        ucasemap_utf8ToTitle(map.get(), titled.data(), static_cast<std::int32_t>(titled.size()), text.data(),
                             static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status)) return text;
    titled.resize(static_cast<std::size_t>(length));
    return titled;
}

} // namespace

void setLanguage(const std::string& locale) {
    ::setenv("LANGUAGE", locale.c_str(), 1);
}

TypeIndex folder() {
    return folderIndex;
}

TypeIndex data() {
    return dataIndex;
}

TypeIndex symbolicLink() {
    return symbolicLinkIndex;
}

std::string_view identifier(TypeIndex type) {
    const auto* const entry = registry().entry(type);
    return entry ? std::string_view(entry->identifier) : std::string_view();
}

TypeIndex index(std::string_view identifier) {
    return registry().index(identifier);
}

TypeIndex fileType(std::string_view extension) {
    if (extension.empty() || extension.size() > longestExtension) return 0;
    const Lowered lowered(extension);
    std::uint64_t bytes = 0;
    if (extension.size() > sizeof bytes) return extensions().type(lowered.text());
    std::memcpy(&bytes, lowered.text().data(), extension.size());
    auto& slot = recentExtensions.slot(bytes);
    if (slot.bytes != bytes) slot = {bytes, extensions().type(lowered.text())};
    return slot.type;
}

std::optional<TypeIndex> knownFileType(std::string_view extension) {
    if (extension.empty() || extension.size() > longestExtension) return 0;
    return extensions().known(Lowered(extension).text());
}

TypeIndex packageType(std::string_view extension) {
    if (extension.empty() || extension.size() > longestExtension) return 0;
    const Lowered lowered(extension);
    const auto& table = TypeTables::packageExtensions;
    static_assert(std::ranges::is_sorted(table, {}, &TypeTables::PackageExtension::extension));
    const auto row =
        std::ranges::lower_bound(table, lowered.text(), {}, &TypeTables::PackageExtension::extension);
    if (row == table.end() || row->extension != lowered.text()) return 0;
    return firstPackageIndex + static_cast<TypeIndex>(row->package);
}

bool conforms(TypeIndex type, std::string_view base) {
    const auto own = identifier(type);
    if (own.empty()) return false;
    if (packageOf(type) && base == identifier(folderIndex)) return true;
    return conformsInDatabase(std::string(own), std::string(base).c_str());
}

bool isExecutable(TypeIndex type) {
    return classesOf(type) & executable;
}

bool isScript(TypeIndex type) {
    return classesOf(type) & script;
}

bool isApplication(TypeIndex type) {
    return classesOf(type) & application;
}

std::string description(TypeIndex type) {
    if (const auto package = packageOf(type)) return Texts::localized(package->textKey);
    if (type == dataIndex) return {}; // its "unknown" says nothing
    const std::string own(identifier(type));
    if (own.empty()) return {};
    std::string words = wordsFor(own);
    // The database keeps the words of "...macroEnabled.12" under a name in lower case.
    if (words.empty()) words = wordsFor(FileName::loweredASCII(own));
    return words.empty() ? words : inSentenceCase(std::move(words));
}

} // namespace ombrel::TypeDatabase
