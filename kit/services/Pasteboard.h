#pragma once

#include <QObject>

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ombrel {

/// The desktop's clipboard, as bytes by format. Main thread only.
///
/// Reading may wait for the program that owns the contents, so it is done when somebody asks and not at every
/// change.
class Pasteboard : public QObject {
    Q_OBJECT

public:
    /// One of the formats. Its bytes are made when somebody asks for them: most formats of most writes are
    /// never read, and there may be a million names in each.
    struct Entry {
        using Maker = std::function<std::string()>;

        std::string format; ///< a MIME type
        Maker bytes;        ///< called on the main thread, as often as asked for

        Entry(std::string_view type, Maker maker) : format(type), bytes(std::move(maker)) {}
        Entry(std::string_view type, std::string content)
            : format(type), bytes([content = std::move(content)] { return content; }) {}
    };

    using QObject::QObject;

    /// Replaces the contents by one thing in several formats, all handed over at once; by nothing when there
    /// are none.
    virtual void write(std::vector<Entry> entries) = 0;
    [[nodiscard]] virtual bool has(std::string_view format) const = 0;
    /// Nothing when the contents have no such format.
    [[nodiscard]] virtual std::optional<std::string> read(std::string_view format) const = 0;

Q_SIGNALS:
    /// Somebody, this program included, has written.
    void changed();
    /// The program came to the front or another of its windows did: changes that were made meanwhile may not
    /// have been told.
    void regained();
};

/// A clipboard of this process alone, for programs without a window.
class PrivatePasteboard final : public Pasteboard {
    Q_OBJECT

public:
    using Pasteboard::Pasteboard;

    void write(std::vector<Entry> entries) override;
    [[nodiscard]] bool has(std::string_view format) const override;
    [[nodiscard]] std::optional<std::string> read(std::string_view format) const override;

private:
    std::vector<Entry> entries_;
};

} // namespace ombrel
