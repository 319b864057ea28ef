#include "ui/FolderPickerDialog.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QUrl>

#include <memory>
#include <utility>

namespace ombrel {
namespace {

/// Answers once, with nothing when the dialog goes unanswered together with its window.
class Answer {
public:
    explicit Answer(std::function<void(std::optional<FileURL>)> done) : done_(std::move(done)) {}
    Answer(const Answer&) = delete;
    Answer& operator=(const Answer&) = delete;
    ~Answer() { give(std::nullopt); }

    void give(const std::optional<FileURL>& url) {
        if (const auto done = std::exchange(done_, nullptr)) done(url);
    }

private:
    std::function<void(std::optional<FileURL>)> done_;
};

/// By the encoded form, which keeps names that are not UTF-8.
std::optional<FileURL> pickedIn(const QFileDialog& dialog) {
    const auto urls = dialog.selectedUrls();
    if (urls.isEmpty()) return std::nullopt;
    const auto url = FileURL::fromURI(urls.front().toEncoded().toStdString());
    return url ? std::optional(url->marked(FileURL::Mark::directory)) : std::nullopt;
}

} // namespace

void FolderPickerDialog::pickFolder(const Request& request,
                                    std::function<void(std::optional<FileURL>)> done) {
    auto* dialog = new QFileDialog(window_());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setSupportedSchemes({QStringLiteral("file")});
    dialog->setWindowTitle(QString::fromStdString(request.message));
    dialog->setLabelText(QFileDialog::Accept, QString::fromStdString(request.prompt));
    if (request.startingAt)
        dialog->setDirectoryUrl(QUrl::fromEncoded(QByteArray::fromStdString(request.startingAt->uri())));
    const auto answer = std::make_shared<Answer>(std::move(done));
    QObject::connect(dialog, &QDialog::finished, dialog, [dialog, answer](int result) {
        answer->give(result == QDialog::Accepted ? pickedIn(*dialog) : std::nullopt);
    });
    dialog->open();
}

void FolderPickerDialog::showFailure(const std::string& message) {
    auto* window = window_();
    if (!window) return;
    auto* box =
        new QMessageBox(QMessageBox::Warning, {}, QString::fromStdString(message), QMessageBox::Ok, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace ombrel
