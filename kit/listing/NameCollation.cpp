#include "listing/NameCollation.h"

#include "listing/ASCIIKeys.h"

#include <unicode/ucol.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <map>
#include <mutex>
#include <optional>

namespace ombrel::NameCollation {
namespace {

constexpr std::size_t longestKey = std::numeric_limits<std::uint16_t>::max();

/// ICU's own name for the locale: "" (the root) for C and POSIX, whatever their codeset.
std::string canonical(std::string_view locale) {
    const std::string bare(locale.substr(0, locale.find('.')));
    if (bare.empty() || bare == "C" || bare == "POSIX") return {};
    std::array<char, ULOC_FULLNAME_CAPACITY> name{};
    UErrorCode status = U_ZERO_ERROR;
    const bool isPOSIXForm = bare.find_first_of("_@") != std::string::npos;
    if (isPOSIXForm)
        uloc_canonicalize(bare.c_str(), name.data(), static_cast<std::int32_t>(name.size()), &status);
    else
        uloc_forLanguageTag(bare.c_str(), name.data(), static_cast<std::int32_t>(name.size()), nullptr,
                            &status);
    return U_SUCCESS(status) && status != U_STRING_NOT_TERMINATED_WARNING ? std::string(name.data())
                                                                          : std::string();
}

/// Nothing when ICU's data cannot be loaded.
const UCollator* opened(const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale.c_str(), &status);
    if (U_FAILURE(status)) return nullptr;
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    ucol_setStrength(collator, UCOL_SECONDARY);
    return collator;
}

/// Names after which it pays to learn how to do without ICU.
constexpr std::uint64_t namesBeforeLearning = 4096;

/// The order of one locale. ICU lets any number of threads use one collator as long as none changes it.
class Order {
public:
    explicit Order(const std::string& locale) : collator_(opened(locale)) {}

    [[nodiscard]] const UCollator* collator() const noexcept { return collator_; }

    /// Nothing while it is not learned, or when the locale has no such thing. Keys are the same either way.
    [[nodiscard]] const ASCIIKeys* asciiKeys() const noexcept {
        return asciiKeys_.load(std::memory_order_acquire);
    }

    void countName() {
        if (names_.fetch_add(1, std::memory_order_relaxed) == namesBeforeLearning) learn();
    }

    void learn() {
        if (!collator_ || isLearned_.exchange(true)) return;
        learned_ = ASCIIKeys::learn(collator_);
        if (learned_) asciiKeys_.store(&*learned_, std::memory_order_release);
    }

private:
    const UCollator* const collator_;
    std::optional<ASCIIKeys> learned_;
    std::atomic<const ASCIIKeys*> asciiKeys_ = nullptr; // to learned_, once it is there
    std::atomic<std::uint64_t> names_ = 0;
    std::atomic<bool> isLearned_ = false;
};

/// The order in force. Orders that were replaced are kept, because a thread may still be inside one.
class Current {
public:
    Order& get() {
        Order* const order = order_.load(std::memory_order_acquire);
        return order ? *order : open();
    }

    void set(std::string_view locale) {
        const std::scoped_lock lock(mutex_);
        locale_ = canonical(locale);
        order_.store(nullptr, std::memory_order_release);
    }

    std::string locale() {
        const std::scoped_lock lock(mutex_);
        return locale_;
    }

private:
    Order& open() {
        const std::scoped_lock lock(mutex_);
        Order& order = orders_.try_emplace(locale_, locale_).first->second;
        order_.store(&order, std::memory_order_release);
        return order;
    }

    std::mutex mutex_; // guards locale_ and orders_
    std::string locale_;
    std::map<std::string, Order> orders_;
    std::atomic<Order*> order_ = nullptr;
};

Current& current() {
    static auto& instance = *new Current;
    return instance;
}

/// A name as ICU wants it: UTF-16, on the stack unless it is very long.
class Wide {
public:
    explicit Wide(std::string_view name) {
        // No name has more UTF-16 units than bytes.
        if (name.size() > near_.size()) far_.resize(name.size());
        data_ = far_.empty() ? near_.data() : far_.data();
        const bool isASCII =
            std::ranges::all_of(name, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
        if (isASCII) {
            std::ranges::copy(name, data_);
            size_ = static_cast<std::int32_t>(name.size());
            return;
        }
        UErrorCode status = U_ZERO_ERROR;
        u_strFromUTF8WithSub(data_, static_cast<std::int32_t>(name.size()), &size_, name.data(),
                             static_cast<std::int32_t>(name.size()), 0xFFFD, nullptr, &status);
    }

    [[nodiscard]] const char16_t* data() const noexcept { return data_; }
    [[nodiscard]] std::int32_t size() const noexcept { return size_; }

private:
    std::array<char16_t, 256> near_; // left unset: this is made a million times
    std::u16string far_;
    char16_t* data_;
    std::int32_t size_ = 0;
};

/// Appends without ICU: the order of bytes stands in where its data is missing.
void appendBytes(std::string_view name, std::string& keys) {
    keys.append(name.substr(0, longestKey));
}

} // namespace

void setLocale(std::string_view locale) {
    current().set(locale);
}

std::string locale() {
    return current().locale();
}

void prepare() {
    current().get().learn();
}

void appendKey(std::string_view name, std::string& keys) {
    auto& order = current().get();
    if (const auto* const asciiKeys = order.asciiKeys(); asciiKeys && asciiKeys->append(name, keys)) return;
    const auto* const collator = order.collator();
    if (!collator) return appendBytes(name, keys);
    order.countName();
    const Wide wide(name);
    std::array<std::uint8_t, 1024> near;
    // What ICU writes and counts ends with a NUL, which no key holds otherwise.
    const auto length = static_cast<std::size_t>(ucol_getSortKey(
        collator, wide.data(), wide.size(), near.data(), static_cast<std::int32_t>(near.size())));
    if (length <= near.size()) {
        keys.append(reinterpret_cast<const char*>(near.data()), length > 0 ? length - 1 : 0);
        return;
    }
    std::string far(length, '\0');
    ucol_getSortKey(collator, wide.data(), wide.size(), reinterpret_cast<std::uint8_t*>(far.data()),
                    static_cast<std::int32_t>(length));
    keys.append(far, 0, std::min(length - 1, longestKey));
}

int compare(std::string_view a, std::string_view b) {
    const UCollator* const collator = current().get().collator();
    if (!collator) return a.compare(b);
    const Wide wideA(a), wideB(b);
    return ucol_strcoll(collator, wideA.data(), wideA.size(), wideB.data(), wideB.size());
}

} // namespace ombrel::NameCollation
