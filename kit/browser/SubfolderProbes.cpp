#include "browser/SubfolderProbes.h"

#include "base/MainThread.h"
#include "listing/SubfolderProbe.h"

#include <system_error>

namespace ombrel {

bool SubfolderProbes::ask(std::string_view name) {
    if (!asked_.emplace(name).second) return false;
    due_.emplace_back(name);
    return true;
}

void SubfolderProbes::forget() {
    known_.clear();
    asked_.clear();
    due_.clear();
}

void SubfolderProbes::begin(const FileURL& folder, const ItemFilter& filter,
                            std::function<void(const Answers&)> tell) {
    if (isLooking_ || due_.empty()) return;
    isLooking_ = true;
    try {
        worker_ = Worker("ombrel-probe", [this, alive = std::weak_ptr(alive_), tell = std::move(tell), folder,
                                          names = std::exchange(due_, {}),
                                          probe = SubfolderProbe{filter.showsHidden, filter.showsProtected}](
                                             const std::stop_token& stop) mutable {
            Answers found;
            for (auto& name : names) {
                if (stop.stop_requested()) break;
                const bool has = probe.look(folder.appending(name), stop) != SubfolderProbe::Answer::none;
                found.emplace_back(std::move(name), has);
            }
            MainThread::post([this, alive, tell = std::move(tell), found = std::move(found)] {
                if (alive.expired()) return;
                isLooking_ = false;
                tell(found);
            });
        });
    } catch (const std::system_error&) {
        isLooking_ = false;
    }
}

void SubfolderProbes::keep(const Answers& answers) {
    for (const auto& [name, has] : answers)
        known_.insert_or_assign(name, has);
}

bool SubfolderProbes::has(std::string_view name) const {
    const auto known = known_.find(name);
    return known != known_.end() && known->second;
}

} // namespace ombrel
