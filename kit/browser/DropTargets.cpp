#include "browser/DropTargets.h"

#include "base/MainThread.h"
#include "base/Worker.h"
#include "operations/DropProbe.h"

#include <QPointer>

#include <system_error>
#include <utility>

namespace ombrel {
namespace {

DropTargetFacts look(const FileURL& url) {
    using Case = FileOperationError::Case;
    const auto device = deviceForDrops(url);
    if (device) return {*device};
    const auto& error = device.error();
    const bool isReadOnly = error == Case::permissionDenied || error == Case::readOnlyVolume;
    return {std::nullopt, isReadOnly ? Text{"ui.drop.readOnly"} : error.text()};
}

} // namespace

const DropTargetFacts& DropTargets::about(const FileURL& folder) {
    const auto [place, isNew] = known_.try_emplace(folder);
    if (isNew) {
        auto body = [self = QPointer(this), folder, drag = drags_](const std::stop_token&) {
            MainThread::post([self, folder, drag, facts = look(folder)]() mutable {
                if (!self || drag != self->drags_) return;
                self->known_[folder] = std::move(facts);
                Q_EMIT self->learned(folder);
            });
        };
        try {
            Worker("ombrel-drop", std::move(body)).detach();
        } catch (const std::system_error&) {
            known_.erase(place); // asked again with the next move
            static const DropTargetFacts nothing;
            return nothing;
        }
    }
    return place->second;
}

void DropTargets::forget() {
    ++drags_;
    known_.clear();
}

} // namespace ombrel
