#include "copy/OurTransfer.h"

#include "listing/MountTable.h"
#include "operations/ConfirmedSource.h"
#include "operations/CopyEngine.h"
#include "operations/FileOperationService.h"
#include "operations/TransferDestination.h"
#include "operations/TransferMeasure.h"
#include "operations/TreeVerification.h"

#include <fcntl.h>

#include <utility>
#include <vector>

#include "copy/Workshop.h"

namespace ombrel::bench {
namespace {

OperationReport transferred(FileOperationKind kind, const std::string& source, const std::string& folder,
                            std::shared_ptr<OperationControl> control, std::stop_token stop) {
    const std::vector<TransferItem> items{FileReference::sampling(*FileURL::fromPath(source))};
    OperationHooks hooks;
    hooks.conflicts = [](const ConflictContext&, std::stop_token) { return ConflictDecision{}; };
    hooks.progress = [](const OperationProgress&) {};
    hooks.control = std::move(control);
    return FileOperationService().transfer(kind, items, *FileURL::fromPath(folder), hooks, std::move(stop));
}

/// Lets everything go on.
class Silent final : public CopyObserver {
public:
    bool begins(std::string_view) override { return true; }
    bool copied(std::int64_t) override { return true; }
    ErrorChoice failed(const std::string& path, const FileOperationError&) override {
        fail("copying " + path);
    }
};

} // namespace

void transferAll(FileOperationKind kind, const std::string& source, const std::string& folder) {
    const auto report = transferred(kind, source, folder, nullptr, {});
    if (report.overall() != OperationReport::Overall::succeeded) fail("a transfer of " + source);
}

void transferControlled(const std::string& source, const std::string& folder,
                        std::shared_ptr<OperationControl> control, std::stop_token stop) {
    (void)transferred(FileOperationKind::copy, source, folder, std::move(control), std::move(stop));
}

void copyDurably(const std::string& source, const std::string& folder) {
    const auto always = [] { return true; };
    const auto item = FileReference::sampling(*FileURL::fromPath(source));
    const auto url = *FileURL::fromPath(folder);
    const auto opened = POSIX::open(url, O_RDONLY | O_DIRECTORY);
    const auto status = opened ? POSIX::status(opened->get()) : POSIX::lstat(url);
    if (!status) fail("opening " + folder);
    auto volume = std::make_shared<TransferVolume>(status->mountID, MountTable::current().traits(*status),
                                                   true, always);
    const auto destination = TransferDestination::open(url, volume, always);
    if (!destination || &(*destination)->volume() != volume.get()) fail("opening " + folder);
    const auto measure = TransferMeasure::of(item, volume->traits, always);
    const auto confirmed = ConfirmedSource::of(item);
    if (!confirmed || measure.bytes == 0) fail("measuring " + source);

    CopyEngine::Settings settings;
    settings.target = &volume->traits;
    settings.support = &volume->support;
    settings.destination = (*destination)->status().identity;
    settings.keepsPace = true;
    Silent observer;
    const POSIX::Place copy{(*destination)->fd(), "copy"};
    const auto copied = CopyEngine(settings, observer).copy(confirmed->place(), copy);
    if (!copied) fail("copying " + source);
    std::vector<int> files;
    if (!confirmed->status().isDirectory()) files.push_back(copied->top.get());
    if (!(*destination)->flush(files)) fail("flushing " + folder);
    TreeVerification verification(copied->manifest, volume->support, volume->checker, {}, always);
    if (verification.verify(confirmed->place(), copy) != Verification::identical) fail("verifying " + folder);
}

} // namespace ombrel::bench
