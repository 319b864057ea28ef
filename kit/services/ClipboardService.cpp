#include "services/ClipboardService.h"

#include <QUuid>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

std::vector<FileURL> urlsOf(const std::vector<FileReference>& items) {
    std::vector<FileURL> urls;
    for (const auto& item : items)
        urls.push_back(item.url);
    return urls;
}

/// For comparing lists as sets.
std::vector<FileURL> standardizedAndSorted(std::vector<FileURL> urls) {
    for (auto& url : urls)
        url = url.standardized();
    std::ranges::sort(urls);
    return urls;
}

} // namespace

ClipboardService::ClipboardService(Pasteboard& pasteboard, QObject* parent)
    : QObject(parent), pasteboard_(pasteboard) {
    connect(&pasteboard_, &Pasteboard::changed, this, &ClipboardService::noteChange);
    connect(&pasteboard_, &Pasteboard::regained, this, &ClipboardService::noteRegained);
}

void ClipboardService::copy(const std::vector<FileReference>& items) {
    if (!write(items, ClipboardFormats::Marking::copied)) return;
    clearCut();
    Q_EMIT intentChanged();
}

void ClipboardService::cut(const std::vector<FileReference>& items) {
    auto token = write(items, ClipboardFormats::Marking::cut);
    if (!token) return;
    cut_ = CutState{items, changeCount_, *std::move(token)};
    const auto urls = urlsOf(items);
    cutURLs_ = {urls.begin(), urls.end()};
    Q_EMIT cutURLsChanged();
    Q_EMIT intentChanged();
}

void ClipboardService::copyPaths(const std::vector<FileURL>& urls) {
    std::vector<std::string> paths;
    for (const auto& url : urls)
        paths.push_back(url.path());
    copyText(paths);
}

void ClipboardService::copyText(const std::vector<std::string>& lines) {
    if (lines.empty()) return;
    replaceContents(ClipboardFormats::textOf(lines));
    clearCut();
    Q_EMIT intentChanged();
}

/// Answers with the token of what was written, or with nothing when nothing was.
std::optional<std::string> ClipboardService::write(const std::vector<FileReference>& items,
                                                   ClipboardFormats::Marking marking) {
    if (items.empty()) return std::nullopt;
    auto token = QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
    auto urls = urlsOf(items);
    replaceContents(ClipboardFormats::filesOf(urls, marking, token));
    fileURLs_ = std::move(urls);
    return token;
}

void ClipboardService::replaceContents(std::vector<Pasteboard::Entry> entries) {
    isWriting_ = true;
    pasteboard_.write(std::move(entries));
    isWriting_ = false;
    ++changeCount_;
    fileURLs_.reset();
}

ClipboardService::PasteIntent ClipboardService::currentIntent() {
    const auto& urls = fileURLs();
    if (urls.empty()) return {};
    if (cut_ && holdsCut() && standardizedAndSorted(urls) == standardizedAndSorted(urlsOf(cut_->items)))
        return {PasteIntent::Case::move, {}, cut_->items};
    return {PasteIntent::Case::copy, urls, {}};
}

ClipboardService::PasteIntent ClipboardService::refresh() {
    auto intent = currentIntent();
    if (intent.which != PasteIntent::Case::move) clearCut();
    return intent;
}

const std::vector<FileURL>& ClipboardService::fileURLs() {
    if (!fileURLs_) fileURLs_ = ClipboardFormats::filesOn(pasteboard_);
    return *fileURLs_;
}

void ClipboardService::revalidateCut() {
    if (cut_ && !holdsCut()) clearCut();
}

void ClipboardService::cancelCut() {
    if (!cut_) return;
    if (holdsCut()) replaceContents({});
    clearCut();
    Q_EMIT intentChanged();
}

void ClipboardService::finishMove(const std::vector<FileReference>& moved) {
    if (cut_ && cut_->items == moved) cancelCut();
}

void ClipboardService::clearCut() {
    cut_.reset();
    if (cutURLs_.empty()) return;
    cutURLs_.clear();
    Q_EMIT cutURLsChanged();
}

void ClipboardService::noteChange() {
    if (isWriting_) return;
    ++changeCount_;
    fileURLs_.reset();
    revalidateCut();
    Q_EMIT intentChanged();
}

void ClipboardService::noteRegained() {
    // That a text names no files need not be read out of it again and again.
    const bool isNothing = fileURLs_ && fileURLs_->empty() && !ClipboardFormats::offersFiles(pasteboard_);
    if (!isNothing) fileURLs_.reset();
    if (cut_) cut_->changeCount = -1; // whether it is still ours is to be looked at
    revalidateCut();
    Q_EMIT intentChanged();
}

bool ClipboardService::holdsCut() {
    if (cut_->changeCount == changeCount_) return true;
    const bool isOurs =
        pasteboard_.has(ClipboardFormats::token) && pasteboard_.read(ClipboardFormats::token) == cut_->token;
    if (isOurs) cut_->changeCount = changeCount_;
    return isOurs;
}

} // namespace ombrel
