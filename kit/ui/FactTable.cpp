#include "ui/FactTable.h"

#include "ui/TextLabel.h"
#include "ui/ValueText.h"

#include <QGridLayout>

namespace ombrel {

FactTable::FactTable(const Theme& theme, ThemeSize captions, QWidget* parent)
    : QWidget(parent), theme_(&theme), captions_(captions), grid_(new QGridLayout(this)) {
    grid_->setContentsMargins({});
    grid_->setHorizontalSpacing(0);
    grid_->setColumnStretch(1, 1);
    connect(&theme, &Theme::changed, this, &FactTable::takeSizes);
    // The first one takes its place in the order of the keyboard, and the others follow it.
    addRow();
    setRowVisible(rows_.front(), false);
}

void FactTable::setRowVisible(const Row& row, bool isVisible) {
    row.caption->setVisible(isVisible);
    row.value->setVisible(isVisible);
}

void FactTable::takeSizes() {
    const int inset = theme_->size(ThemeSize::factInset);
    // The value's text, not its frame, stands at the column's end.
    grid_->setColumnMinimumWidth(0, theme_->size(captions_) - inset);
    grid_->setVerticalSpacing(theme_->size(ThemeSize::factGap));
    const int beside = theme_->size(ThemeSize::space8) - inset;
    for (const Row& row : rows_)
        row.caption->setContentsMargins(isRightToLeft() ? beside : 0, inset, isRightToLeft() ? 0 : beside,
                                        inset);
}

void FactTable::addRow() {
    const int index = static_cast<int>(rows_.size());
    const Row row{new TextLabel(*theme_, ThemeFont::body, ThemeColor::textSecondary, this),
                  new ValueText(*theme_, ThemeFont::body, this)};
    grid_->addWidget(row.caption, index, 0, Qt::AlignTop);
    grid_->addWidget(row.value, index, 1);
    if (!rows_.empty()) setTabOrder(rows_.back().value, row.value);
    rows_.push_back(row);
    takeSizes();
}

void FactTable::setFacts(const std::vector<Fact>& facts) {
    if (facts == facts_) return;
    facts_ = facts;
    while (rows_.size() < facts.size())
        addRow();
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const bool isShown = i < facts.size();
        setRowVisible(rows_[i], isShown);
        if (!isShown) continue;
        rows_[i].caption->setText(facts[i].caption);
        rows_[i].value->setValue(facts[i].caption, facts[i].value, facts[i].copied);
    }
}

} // namespace ombrel
