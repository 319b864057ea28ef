#pragma once

#include "base/FileURL.h"
#include "browser/DropPlan.h"

#include <QMetaObject>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QDropEvent;
class QWidget;

namespace ombrel {

class BrowserModel;
class DropLabel;
class FileActions;
class FileDrag;
class Theme;

/// A drag as folders see it that it comes over: what dropping it on one of them would do, said beside the
/// pointer, and in the end done or, for the right button, asked about first.
///
/// Whatever stands for folders (rows, tiles, crumbs, tabs) tells it where the drag is; several may share one,
/// for there is only one drag at a time. Main thread only, and it never blocks.
class FolderDrop final : public QObject {
    Q_OBJECT

public:
    /// `actions` and `theme` must outlive it. What comes of a drop is selected in the pane that `pane`
    /// answers then, as far as it shows it.
    FolderDrop(FileActions& actions, const Theme& theme, std::function<BrowserModel&()> pane,
               QObject* parent = nullptr);
    ~FolderDrop() override;

    // ---- What happens to the drag, in events of `target` and its coordinates

    /// It comes over `target`. Whether it brings files; otherwise nothing of what follows does anything.
    bool enter(const QDropEvent& event, QWidget& target);
    /// It is over `folder`, or over none. `isGround`: that is the folder that the target shows as a whole,
    /// where it needs no words that things are there already. The event is answered.
    void follow(QDropEvent& event, const std::optional<FileURL>& folder, bool isGround = false);
    /// It rests, and what is under it is another folder than before.
    void aim(const std::optional<FileURL>& folder, bool isGround = false);
    /// It ends over `folder`, or over none. The event is answered.
    void drop(QDropEvent& event, const std::optional<FileURL>& folder, bool isGround = false);
    void leave();

    // ---- What a drop would do now

    [[nodiscard]] bool isAllowed() const noexcept { return plan_.which != DropPlan::Case::forbidden; }
    /// "Copy to Reports", or why it cannot be; empty when there is nothing to say.
    [[nodiscard]] const QString& effect() const noexcept { return effect_; }
    /// What is dragged; nothing while it brings no files.
    [[nodiscard]] const DraggedItems* dragged() const noexcept { return dragged_.get(); }
    /// Whether it is one that this program's file views began.
    [[nodiscard]] bool isOurs() const noexcept { return !ours_.isNull(); }

    // ---- What a drag opens

    /// The pane is about to go elsewhere because of the drag; if that is given up, it goes back.
    void rememberPlace();
    /// The same of whatever else: `back` is called when the drag is given up and `about` still lives. Only
    /// the first one of each counts.
    void leadBack(QObject& about, std::function<void()> back);

Q_SIGNALS:
    void effectChanged(const QString& effect);
    /// What a drop would do was decided anew.
    void planned();

private:
    struct Dropped {
        std::shared_ptr<const DraggedItems> items;
        FileURL folder;
    };

    void note(const QDropEvent& event);
    [[nodiscard]] DropPlan planFor(DropPlan::Wish wish) const;
    void plan();
    void say(const QString& effect);
    void ask(const Dropped& dropped, bool mayCopy, bool mayMove, const QPointer<QWidget>& over, QPoint at);
    void perform(const Dropped& dropped, DropPlan::Case action);

    FileActions* actions_;
    const Theme* theme_;
    std::function<BrowserModel&()> pane_;
    QPointer<QWidget> target_;
    QPointer<DropLabel> label_;
    std::shared_ptr<const DraggedItems> dragged_;
    QPointer<FileDrag> ours_;
    QPointer<FileDrag> lastKnown_; ///< the drag that what is known of folders was looked at for
    bool asks_ = false;
    QPoint pointer_;
    DropPlan::Wish wish_ = DropPlan::Wish::none;
    std::optional<FileURL> folder_;
    bool isGround_ = false;
    DropPlan plan_;
    QString effect_;
    QMetaObject::Connection learned_;
};

} // namespace ombrel
