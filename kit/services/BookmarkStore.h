#pragma once

#include "base/POSIXFailure.h"

#include <QUuid>

#include <chrono>
#include <cstdint>
#include <expected>
#include <string>
#include <vector>

namespace ombrel {

/// What is stored of one granted folder. A plain value.
struct BookmarkRecord {
    using Date = std::chrono::time_point<std::chrono::system_clock, std::chrono::microseconds>;

    QUuid id;                ///< shared with the grant that owns the record
    std::string bookmark;    ///< bytes made by a `SecurityScopeSystem`
    std::string displayName; ///< UTF-8
    Date addedAt;

    friend bool operator==(const BookmarkRecord&, const BookmarkRecord&) = default;
};

/// Where the records are kept. Its calls block, come from one thread at a time, and not always from the same
/// one.
class BookmarkStore {
public:
    enum class Fault : std::uint8_t {
        unreadable, ///< it is there and cannot be read
        damaged,    ///< it holds something else than a list of records
        unwritable, ///< what was stored before still is
    };
    struct Failure {
        Fault fault;
        POSIXFailure reason = {};
    };

    virtual ~BookmarkStore() = default;
    /// Nothing stored yet is an empty list.
    [[nodiscard]] virtual std::expected<std::vector<BookmarkRecord>, Failure> load() = 0;
    [[nodiscard]] virtual std::expected<void, Failure> save(const std::vector<BookmarkRecord>& records) = 0;
};

} // namespace ombrel
