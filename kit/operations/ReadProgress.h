#pragma once

#include "operations/ArchiveProgressSource.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace ombrel {

/// The progress of a tool that reads an archive from its start to its end: how much of it has been read.
class ReadProgress final : public ArchiveProgressSource {
public:
    /// What the tool says of names: it makes one file, of that name (bytes); it is bsdtar and writes "x NAME"
    /// for each entry; or nothing.
    struct Single {
        std::string name;
    };
    struct BSDTar {};
    struct None {};
    using Names = std::variant<Single, BSDTar, None>;

    /// `input` is the open archive that the tool shares, and must outlive this; `total` its size in bytes.
    ReadProgress(int input, std::int64_t total, Names names);

    [[nodiscard]] OperationProgress progress() override;
    bool consume(std::string_view line) override;
    void partial(std::string_view text) override;
    void finish() override;

private:
    [[nodiscard]] bool isUnderWay() const;

    const int input_;
    const std::int64_t total_;
    const Names names_;
    std::optional<std::string> currentName_; // bytes
    std::int64_t reported_ = 0;              // the most that was ever answered
    bool finished_ = false;
};

} // namespace ombrel
