#include "browser/TypeAhead.h"

#include "base/MainThread.h"
#include "browser/NamePrefix.h"

#include <QPointer>

#include <algorithm>
#include <chrono>
#include <optional>
#include <system_error>

namespace ombrel {
namespace {

constexpr std::chrono::seconds lifetime(1);

bool isOneCharacterRepeated(const QString& text) {
    return std::ranges::all_of(text, [&](QChar c) { return c == text.front(); });
}

std::optional<std::uint64_t> generationOf(const FileItemList& items) {
    if (items.empty()) return std::nullopt;
    return items[0].id().generation;
}

} // namespace

TypeAhead::TypeAhead(BrowserModel& model, QObject* parent) : QObject(parent), model_(&model) {
    lifetime_.setSingleShot(true);
    lifetime_.setInterval(lifetime);
    connect(&lifetime_, &QTimer::timeout, this, &TypeAhead::clear);
    connect(&model, &BrowserModel::locationChanged, this, &TypeAhead::clear);
}

void TypeAhead::type(const QString& characters) {
    text_ += characters;
    lifetime_.start();
    Q_EMIT textChanged();

    const bool steps = isOneCharacterRepeated(text_);
    const auto current = model_->row(BrowserModel::Place::current);
    // A longer beginning may still be that of the row we are at; a single character goes on to the next.
    const std::size_t start = current ? *current + (steps ? 1 : 0) : 0;
    auto body = [self = QPointer(this), ticket = ++ticket_,
                 prefix = NamePrefix(steps ? text_.left(1) : text_), items = model_->items(),
                 start](const std::stop_token& stop) {
        const auto row = prefix.find(items, start, stop);
        if (!row) return;
        MainThread::post([self, ticket, item = items.order()[*row], listing = generationOf(items)] {
            // The list may have grown or been sorted meanwhile, but it must be of the same listing.
            if (!self || self->ticket_ != ticket || generationOf(self->model_->items()) != listing) return;
            if (const auto found = self->model_->rowOf(item)) Q_EMIT self->found(*found);
        });
    };
    try {
        search_ = Worker("ombrel-names", std::move(body));
    } catch (const std::system_error&) {
        // Nothing is found while there is no thread.
    }
}

void TypeAhead::clear() {
    lifetime_.stop();
    search_ = Worker();
    ++ticket_;
    if (text_.isEmpty()) return;
    text_.clear();
    Q_EMIT textChanged();
}

} // namespace ombrel
