#pragma once

#include "base/FileURL.h"
#include "browser/DropPlan.h"

#include <QObject>

#include <cstdint>
#include <map>

namespace ombrel {

/// What is known of the folders that a drag has come over. Main thread only; the folders are looked at by
/// workers, and one that does not answer only stays unknown.
class DropTargets final : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    /// What is known so far. The first question has the folder looked at; `learned` follows.
    [[nodiscard]] const DropTargetFacts& about(const FileURL& folder);
    /// At the end of a drag: next time things may be different.
    void forget();

Q_SIGNALS:
    void learned(const ombrel::FileURL& folder);

private:
    std::map<FileURL, DropTargetFacts> known_;
    std::uint64_t drags_ = 0;
};

} // namespace ombrel
