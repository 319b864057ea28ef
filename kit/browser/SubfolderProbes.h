#pragma once

#include "base/FileURL.h"
#include "base/TextMap.h"
#include "base/Worker.h"
#include "browser/ItemArrangement.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ombrel {

/// Which folders in one folder have folders in them, looked into on a worker. Main thread only.
class SubfolderProbes {
public:
    using Answers = std::vector<std::pair<std::string, bool>>;

    SubfolderProbes() = default;
    SubfolderProbes(const SubfolderProbes&) = delete;
    SubfolderProbes& operator=(const SubfolderProbes&) = delete;

    /// To be looked into with the next `begin`. Answers false for a name that has been asked about since the
    /// last `askAnew`.
    bool ask(std::string_view name);
    /// What was asked about may have changed; what is known stays.
    void askAnew() { asked_.clear(); }
    /// What is known, and what has not been begun with, goes.
    void forget();

    /// Looks into what was asked about, for folders in `folder` that `filter` lets through, and tells from
    /// the event loop, as long as this lives. Nothing while an earlier look goes on: one at a time for each
    /// folder, so that a dead mount among those in it holds up no other.
    void begin(const FileURL& folder, const ItemFilter& filter, std::function<void(const Answers&)> tell);

    void keep(const Answers& answers);
    /// False where nothing is known.
    [[nodiscard]] bool has(std::string_view name) const;

private:
    TextMap<bool> known_;
    std::unordered_set<std::string> asked_; ///< names that are being looked into, or have been
    std::vector<std::string> due_;
    Worker worker_;
    bool isLooking_ = false;
    const std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true); ///< watched over by callbacks
};

} // namespace ombrel
