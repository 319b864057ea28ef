#pragma once

#include "browser/AddressCompletion.h"

#include <QLineEdit>

#include <functional>

class QListView;
class QStringListModel;

namespace ombrel {

class SuggestionList;
class Theme;

/// The text field that the address bar turns into. Below it stand the folders that would complete what is
/// typed: Down enters their list, Tab takes the one that is picked, or the first.
class AddressField final : public QLineEdit {
    Q_OBJECT

public:
    /// What a completion starts from when the text changes.
    struct Base {
        std::optional<FileURL> folder;
        ItemFilter filter;
    };

    /// `theme` must outlive it.
    AddressField(const Theme& theme, const FileURL& home, std::function<Base()> base,
                 QWidget* parent = nullptr);

    /// The whole text is selected, nothing is suggested yet.
    void begin(const QString& text);
    /// Nothing is to be suggested any more.
    void end();
    [[nodiscard]] QListView& suggestions() const noexcept;

Q_SIGNALS:
    void accepted();
    void cancelled();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showSuggestions();
    void pick(int step);
    void take();
    [[nodiscard]] bool isSuggesting() const;

    std::function<Base()> base_;
    AddressCompletion* completion_;
    QStringListModel* model_;
    SuggestionList* list_;
    QString typed_; ///< what the suggestions are for
};

} // namespace ombrel
