#pragma once

#include "base/Text.h"
#include "browser/RenameRules.h"

#include <QLineEdit>
#include <QPointer>

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace ombrel {

class NameBubble;
class Theme;

/// The field in which an item of a view gets another name, in the place of the name. It knows what may be
/// typed and says so in a bubble below; what becomes of the name is somebody else's business. It does not go
/// by itself.
class RenameEditor final : public QLineEdit {
    Q_OBJECT

public:
    /// Answers, later or at once, why the item could not be renamed; without a reason it was.
    using Answer = std::function<void(const std::optional<Text>& refusal)>;
    /// Renames the item to what the text comes to.
    using Commit = std::function<void(std::string_view text, Answer answer)>;
    /// Where the user goes on afterwards.
    enum class Then : std::uint8_t { rest, next, previous };

    /// Lies on `canvas`. `theme` must outlive it.
    RenameEditor(QWidget* canvas, const Theme& theme, RenameRules rules, Commit commit);
    ~RenameEditor() override;

    /// Lies over the name, as wide as the text needs, but not beyond `room`.
    void place(const QRect& name, const QRect& room);
    /// Gives the item the name that is typed.
    void commit(Then then);
    /// Whether the item has the name that is typed.
    [[nodiscard]] bool hasRenamed() const noexcept { return hasRenamed_; }
    [[nodiscard]] const Theme& theme() const noexcept { return *theme_; }

Q_SIGNALS:
    /// The text is done with: renamed, unchanged or given up.
    void ended(ombrel::RenameEditor::Then then);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void follow();
    void refuse(const Text& reason);
    void selectStem();
    void end(Then then);

    const Theme* theme_;
    RenameRules rules_;
    Commit commit_;
    QPointer<NameBubble> bubble_; ///< of the window, which may go first
    QRect name_;
    QRect room_;
    bool isCommitting_ = false;
    bool hasRenamed_ = false;
    bool hasMenu_ = false;
};

} // namespace ombrel
