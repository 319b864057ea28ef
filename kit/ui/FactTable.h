#pragma once

#include "ui/Theme.h"

#include <QString>
#include <QWidget>

#include <vector>

class QGridLayout;

namespace ombrel {

class TextLabel;
class ValueText;

/// One thing that is known of an item, for people.
struct Fact {
    QString caption;
    QString value;
    QString copied = {}; ///< what a copy gives where that is not the value

    friend bool operator==(const Fact&, const Fact&) = default;
};

/// Values beside what they are called. A row whose caption stays keeps its selection and its place.
class FactTable final : public QWidget {
    Q_OBJECT

public:
    /// `theme` must outlive it; the captions are as wide as `captions` says, or as the widest of them.
    FactTable(const Theme& theme, ThemeSize captions, QWidget* parent = nullptr);

    void setFacts(const std::vector<Fact>& facts);
    [[nodiscard]] const std::vector<Fact>& facts() const noexcept { return facts_; }

private:
    struct Row {
        TextLabel* caption = nullptr;
        ValueText* value = nullptr;
    };

    static void setRowVisible(const Row& row, bool isVisible);
    void addRow();
    void takeSizes();

    const Theme* theme_;
    ThemeSize captions_;
    QGridLayout* grid_;
    std::vector<Fact> facts_;
    std::vector<Row> rows_; ///< at least as many as there are facts; the others are hidden
};

} // namespace ombrel
