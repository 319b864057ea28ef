#pragma once

#include "operations/OperationProgress.h"

#include <string>
#include <string_view>

namespace ombrel {

/// Reads out of what a tool writes how far it has come. Used on the job's thread.
class ArchiveProgressSource {
public:
    ArchiveProgressSource() = default;
    virtual ~ArchiveProgressSource() = default;
    ArchiveProgressSource(const ArchiveProgressSource&) = delete;
    ArchiveProgressSource& operator=(const ArchiveProgressSource&) = delete;

    [[nodiscard]] virtual OperationProgress progress() = 0;
    /// One complete line, without its end. Answers whether it was about progress.
    virtual bool consume(std::string_view line) = 0;
    /// The beginning of a line that is not complete; the same one comes again, longer, and then as a line.
    virtual void partial(std::string_view text) = 0;
    /// The tool has ended well and all its lines have been consumed.
    virtual void finish() = 0;
    /// A signal that makes the tool tell how far it is in the current file; 0 when there is none, or when it
    /// is too early for one.
    [[nodiscard]] virtual int signalToAsk() const { return 0; }
};

} // namespace ombrel
