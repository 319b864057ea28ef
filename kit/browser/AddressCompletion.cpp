#include "browser/AddressCompletion.h"

#include "base/FileName.h"
#include "base/MainThread.h"
#include "base/PathInput.h"
#include "browser/NamePrefix.h"
#include "listing/DirectoryProvider.h"

#include <QPointer>

#include <system_error>
#include <utility>

namespace ombrel {
namespace {

/// The names that complete `prefix`, hidden ones only when its first character asks for them.
QStringList matches(const FileItemList& folders, const AddressCompletion::Question& question,
                    ItemFilter filter, const std::stop_token& stop) {
    filter.showsHidden |= question.prefix.startsWith(QLatin1Char('.'));
    const NamePrefix prefix(question.prefix);
    QStringList texts;
    for (const FileItemView item : folders) {
        if (stop.stop_requested() || texts.size() == static_cast<qsizetype>(AddressCompletion::most)) break;
        if (!filter.accepts(item) || !prefix.begins(item.name())) continue;
        // A name that is not shown as it is cannot be typed.
        const std::string shown = FileName::displayText(item.name());
        if (shown == item.name()) texts.append(question.kept + QString::fromStdString(shown));
    }
    return texts;
}

} // namespace

AddressCompletion::AddressCompletion(FileURL home, QObject* parent)
    : QObject(parent), home_(std::move(home)) {}

std::optional<AddressCompletion::Question> AddressCompletion::Question::of(const QString& text,
                                                                           const std::optional<FileURL>& base,
                                                                           const FileURL& home) {
    const qsizetype slash = text.lastIndexOf(QLatin1Char('/'));
    const QString kept = text.left(slash + 1), prefix = text.mid(slash + 1);
    if (text.trimmed().isEmpty() || text.startsWith(QLatin1String("file:"), Qt::CaseInsensitive))
        return std::nullopt;
    if (slash < 0) {
        const bool isTilde = text == QLatin1String("~");
        return base && !isTilde ? std::optional(Question{*base, {}, prefix}) : std::nullopt;
    }
    const auto folder = PathInput::parse(kept.toStdString(), base, home);
    return folder ? std::optional(Question{*folder, kept, prefix}) : std::nullopt;
}

void AddressCompletion::complete(const QString& text, const std::optional<FileURL>& base,
                                 const ItemFilter& filter) {
    const std::uint64_t ticket = ++ticket_;
    reader_ = Worker();
    auto question = Question::of(text, base, home_);
    const auto known =
        question && read_ && read_->folder == question->folder ? std::optional(read_->folders) : std::nullopt;
    publish(known ? narrowed(*question) : QStringList());
    if (!question) return;
    const auto work = [self = QPointer(this), ticket, question = std::move(*question), known,
                       filter](const std::stop_token& stop) {
        FileItemList folders;
        if (known) {
            folders = *known;
        } else {
            const DirectoryRequest request{.url = question.folder,
                                           .directoriesOnly = true,
                                           .firstBatchSize = DirectoryProvider::largestBatch};
            const auto snapshot = DirectoryProvider().load(request, stop);
            if (!snapshot) return;
            folders = snapshot->items();
        }
        QStringList found = matches(folders, question, filter, stop);
        MainThread::post([self, ticket, found = std::move(found),
                          read = Read{question.folder, std::move(folders)}]() mutable {
            if (!self || self->ticket_ != ticket) return;
            self->read_ = std::move(read);
            self->publish(std::move(found));
        });
    };
    try {
        reader_ = Worker("ombrel-complete", work);
    } catch (const std::system_error&) {
        // Without a thread left nothing is suggested.
    }
}

QStringList AddressCompletion::narrowed(const Question& question) const {
    const NamePrefix prefix(question.prefix);
    QStringList left;
    for (const QString& text : suggestions_)
        if (text.startsWith(question.kept) && prefix.begins(text.mid(question.kept.size()).toStdString()))
            left.append(text);
    return left;
}

void AddressCompletion::cancel() {
    ++ticket_;
    reader_ = Worker();
    read_ = std::nullopt;
    publish({});
}

void AddressCompletion::publish(QStringList suggestions) {
    if (suggestions == suggestions_) return;
    suggestions_ = std::move(suggestions);
    Q_EMIT changed();
}

} // namespace ombrel
