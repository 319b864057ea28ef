#pragma once

#include "base/FileURL.h"
#include "listing/FileItem.h"

#include <QImage>
#include <QObject>
#include <QSize>

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace ombrel {

class AppServices;

/// The thumbnails of the desktop's shared cache, and those that are still to be made.
///
/// Main thread only, and it never blocks: the cache is read on workers. What is missing is asked from the
/// desktop's thumbnail service; images that it does not make, or all when there is no service, are made here
/// and put into the cache for everyone. Of network volumes only what the cache holds is shown. What cannot be
/// made is remembered, in the cache too, as long as the file is the same.
class ThumbnailStore final : public QObject {
    Q_OBJECT

public:
    /// Thumbnails are asked for and kept by the room that they are to fill: pixels of the screen, not of the
    /// interface.
    struct Request {
        FileItem item;
        QSize box;

        friend bool operator==(const Request& a, const Request& b) {
            return a.box == b.box && a.item.owner() == b.item.owner() && a.item.slot() == b.item.slot();
        }
    };
    /// What it is made with; for tests.
    struct Setting {
        FileURL cache; ///< the folder of the thumbnails
        bool asksService = true;
        std::size_t budget = std::size_t{64} << 20;      ///< bytes of pictures that are kept
        std::function<bool(const FileURL&)> isOnNetwork; ///< called on workers
    };
    [[nodiscard]] static Setting standard();

    /// The one store of the application, made when it is first asked for; `services` own it.
    [[nodiscard]] static ThumbnailStore& of(AppServices& services);

    explicit ThumbnailStore(Setting setting = standard(), QObject* parent = nullptr);
    ~ThumbnailStore() override;

    /// Whether an item of its kind has a picture at all: regular files that are not empty do.
    [[nodiscard]] static bool mayHave(FileItemView item);

    /// What there is of an item's picture, fitted into `box`; a null image when there is none (yet). Asks for
    /// nothing.
    [[nodiscard]] QImage thumbnail(FileItemView item, QSize box);
    /// Whether it is settled that `thumbnail` answers what it does.
    [[nodiscard]] bool isKnown(FileItemView item, QSize box) const;
    /// From now on `viewer` looks at these, the most wanted first; what it asked for before and does not name
    /// again is given up. An empty list ends its interest.
    void want(const QObject& viewer, std::span<const Request> requests);

    /// Bytes of the pictures that are kept.
    [[nodiscard]] std::size_t bytesKept() const noexcept;
    /// Whether nothing is asked for that has not been answered.
    [[nodiscard]] bool isSettled() const noexcept;

Q_SIGNALS:
    /// Something is known of an item that was asked for.
    void changed(const ombrel::FileURL& url);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace ombrel
