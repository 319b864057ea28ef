#include "browser/SelectionSize.h"

#include "base/MainThread.h"

#include <QPointer>

#include <system_error>

namespace ombrel {
namespace {

/// Up to here adding up takes the main thread well under a millisecond.
constexpr std::size_t fewItems = 4000;

std::optional<std::int64_t> sumOf(const FileSelection& selection, const std::stop_token& stop = {}) {
    std::optional<std::int64_t> sum;
    selection.set().forEach([&](ItemRef ref) {
        if (stop.stop_requested()) return;
        const FileItemView item = selection.list().view(ref);
        const auto size = item.size();
        if (item.kind().which() == FileKind::Case::file && size.hasValue())
            sum = sum.value_or(0) + size.value();
    });
    return sum;
}

} // namespace

SelectionSize::SelectionSize(BrowserModel& model, QObject* parent) : QObject(parent), model_(&model) {
    connect(&model, &BrowserModel::selectionChanged, this, &SelectionSize::recount);
    recount();
}

void SelectionSize::recount() {
    const std::uint64_t ticket = ++ticket_;
    sum_ = Worker();
    if (model_->selection().count() <= fewItems) return publish(sumOf(model_->selection()));
    publish(std::nullopt);
    try {
        sum_ = Worker("ombrel-sizes", [self = QPointer(this), ticket,
                                       selection = model_->selection()](const std::stop_token& stop) mutable {
            const auto sum = sumOf(selection, stop);
            selection = {};
            MainThread::post([self, ticket, sum] {
                if (self && self->ticket_ == ticket) self->publish(sum);
            });
        });
    } catch (const std::system_error&) {
        // The size stays unknown.
    }
}

void SelectionSize::publish(std::optional<std::int64_t> bytes) {
    bytes_ = bytes;
    Q_EMIT changed();
}

} // namespace ombrel
