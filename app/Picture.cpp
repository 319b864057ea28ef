#include "app/Picture.h"

#include "base/FileName.h"
#include "ui/BrowserWindow.h"
#include "ui/DetailsPane.h"
#include "ui/FileView.h"
#include "ui/LocalizedText.h"

#include <QApplication>
#include <QPixmap>

#include <chrono>
#include <cstdio>
#include <utility>

namespace ombrel {
namespace {

constexpr std::chrono::milliseconds beat(10);

} // namespace

Picture::Picture(BrowserWindow& window, QString file)
    : QObject(&window), window_(&window), file_(std::move(file)) {
    connect(&beat_, &QTimer::timeout, this, &Picture::consider);
    beat_.start(beat);
}

void Picture::consider() {
    if (window_->model().listingState() == ListingState::Case::loading) return;
    // Looking asks for what is not known yet of the rows, and layouts settle in their own time: it is done
    // when two looks in succession show the same.
    QImage look = window_->grab().toImage();
    const bool isAtRest =
        window_->view().isSettled() && window_->detailsPane().isSettled() && look == lastLook_;
    lastLook_ = std::move(look);
    if (!isAtRest) return;
    beat_.stop();
    const bool isWritten = lastLook_.save(file_, "PNG");
    if (!isWritten)
        std::fprintf(
            stderr, "%s\n",
            qUtf8Printable(localized("app.error.picture", {FileName::displayText(file_.toStdString())})));
    QApplication::exit(isWritten ? 0 : 1);
}

} // namespace ombrel
