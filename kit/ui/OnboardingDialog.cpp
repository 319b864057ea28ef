#include "ui/OnboardingDialog.h"

#include "services/AppServices.h"
#include "ui/Emblem.h"
#include "ui/FocusRing.h"
#include "ui/LinkButton.h"
#include "ui/LocalizedText.h"
#include "ui/LocationRow.h"
#include "ui/PresetCard.h"
#include "ui/SettingsPages.h"
#include "ui/TextLabel.h"
#include "ui/Theme.h"

#include <QAction>
#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace ombrel {
namespace {

constexpr int stepCount = 3;

} // namespace

/// Which of the steps is shown.
class OnboardingDialog::Dots final : public QWidget {
public:
    Dots(const Theme& theme, QWidget* parent) : QWidget(parent), theme_(&theme) {
        setFixedSize(place(stepCount - 1).right() + 1, theme.size(ThemeSize::space8));
    }
    void show(int step) {
        step_ = step;
        setFixedWidth(place(stepCount - 1).right() + 1);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        for (int i = 0; i < stepCount; ++i) {
            painter.setBrush(theme_->color(i == step_  ? ThemeColor::accent
                                           : i < step_ ? ThemeColor::borderStrong
                                                       : ThemeColor::track));
            QRect dot = place(i);
            if (layoutDirection() == Qt::RightToLeft) dot.moveRight(width() - 1 - dot.left());
            const double radius = dot.height() / 2.0;
            painter.drawRoundedRect(dot, radius, radius);
        }
    }

private:
    [[nodiscard]] QRect place(int dot) const {
        const int side = theme_->size(ThemeSize::space8), gap = theme_->size(ThemeSize::space6);
        const int wide = theme_->size(ThemeSize::space28) - gap;
        int left = 0;
        for (int i = 0; i < dot; ++i)
            left += (i == step_ ? wide : side) + gap;
        return {left, 0, dot == step_ ? wide : side, side};
    }

    const Theme* theme_;
    int step_ = 0;
};

OnboardingDialog::OnboardingDialog(const Theme& theme, AppServices& services, QWidget* parent)
    : QDialog(parent), theme_(&theme), services_(&services), steps_(new QStackedWidget(this)),
      dots_(new Dots(theme, this)),
      counter_(new TextLabel(theme, ThemeFont::body, ThemeColor::textSecondary, this)),
      back_(new QPushButton(localized("ui.onboarding.back"), this)), next_(new QPushButton(this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    // What ends with it goes on with the first window.
    setAttribute(Qt::WA_QuitOnClose, false);
    setWindowTitle(localized("ui.onboarding.title"));
    setMinimumSize(theme.size(ThemeSize::settingsMinimumWidth), theme.size(ThemeSize::settingsMinimumHeight));
    resize(theme.size(ThemeSize::onboardingWidth), theme.size(ThemeSize::onboardingHeight));
    new FocusRing(this);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(steps_, 1);
    addWelcome();
    addKeys();
    addFolders();
    addFooter(*column);
    go(0);
}

QVBoxLayout& OnboardingDialog::addStep(const QString& title, const QString& caption) {
    auto* const page = new QWidget(this);
    auto* const column = new QVBoxLayout(page);
    const int side = theme_->size(ThemeSize::overlayBadge), above = theme_->size(ThemeSize::space28);
    column->setContentsMargins(side, above, side, above);
    column->setSpacing(theme_->size(ThemeSize::space8));
    auto* const head = new QHBoxLayout;
    head->setSpacing(theme_->size(ThemeSize::space20));
    head->addWidget(new Emblem(*theme_, ThemeSize::choiceCard, page), 0, Qt::AlignTop);
    auto* const words = new QVBoxLayout;
    words->setSpacing(theme_->size(ThemeSize::space2));
    auto* const heading = new TextLabel(*theme_, ThemeFont::display, ThemeColor::text, page);
    heading->setText(title);
    heading->setWordWrap(true);
    auto* const below = new TextLabel(*theme_, ThemeFont::body, ThemeColor::textSecondary, page);
    below->setText(caption);
    below->setWordWrap(true);
    words->addWidget(heading);
    words->addWidget(below);
    head->addLayout(words, 1);
    column->addLayout(head);
    column->addSpacing(theme_->size(ThemeSize::space20));
    steps_->addWidget(page);
    return *column;
}

void OnboardingDialog::addWelcome() {
    auto& column = addStep(localized("ui.onboarding.title"), localized("ui.onboarding.welcome"));
    language_ = new LinkButton(*theme_, Glyph::globe, this);
    column.addWidget(language_, 0, Qt::AlignLeading);
    column.addStretch();
    const auto refresh = [this] {
        const auto& code = services_->settings().interfaceLanguage();
        language_->setLabel(code ? LanguagePage::nameOf(*code) : localized("ui.settings.desktopLanguage"));
    };
    refresh();
    connect(&services_->settings(), &AppSettings::changed, this, refresh);
    connect(language_, &QAbstractButton::clicked, this, &OnboardingDialog::chooseLanguage);
}

void OnboardingDialog::chooseLanguage() {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString& name, const std::optional<std::string>& code) {
        QAction* const action = menu->addAction(name);
        action->setCheckable(true);
        action->setChecked(services_->settings().interfaceLanguage() == code);
        connect(action, &QAction::triggered, this,
                [this, code] { services_->settings().setInterfaceLanguage(code); });
    };
    add(localized("ui.settings.desktopLanguage"), std::nullopt);
    for (const std::string_view code : AppSettings::supportedLanguages())
        add(LanguagePage::nameOf(code), std::string(code));
    menu->popup(language_->mapToGlobal(QPoint(0, language_->height())));
}

void OnboardingDialog::addKeys() {
    auto& column = addStep(localized("ui.onboarding.keys.title"), localized("ui.onboarding.keys.caption"));
    auto* const row = new QHBoxLayout;
    row->setSpacing(theme_->size(ThemeSize::space16));
    auto* const group = new QButtonGroup(this);
    for (const auto preset : {KeyPreset::windows, KeyPreset::mac}) {
        auto* const card = new PresetCard(*theme_, preset, this);
        group->addButton(card);
        card->setChecked(preset == services_->settings().keyPreset());
        row->addWidget(card);
        presets_.push_back(card);
    }
    column.addLayout(row);
    column.addStretch();
}

void OnboardingDialog::addFolders() {
    auto& column =
        addStep(localized("ui.onboarding.folders.title"), localized("ui.onboarding.folders.caption"));
    for (const KnownFolder folder : allKnownFolders()) {
        auto* const box = new QCheckBox(localized(titleKey(folder)), this);
        box->setChecked(true);
        column.addWidget(box);
        folders_.emplace_back(folder, box);
    }
    column.addSpacing(theme_->size(ThemeSize::space8));
    auto* const add = new QPushButton(localized("ui.settings.locations.addFolder"), this);
    add->setAutoDefault(false);
    column.addWidget(add, 0, Qt::AlignLeading);
    auto* const scroll = new QScrollArea(this);
    auto* const list = new QWidget;
    locations_ = new QVBoxLayout(list);
    locations_->setContentsMargins({});
    locations_->setAlignment(Qt::AlignTop);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setWidget(list);
    column.addWidget(scroll, 1);
    connect(add, &QPushButton::clicked, this,
            [this] { services_->access().requestAccess(std::nullopt, "access.panel.message", nullptr, {}); });
    connect(&services_->access(), &AccessManager::grantsChanged, this, &OnboardingDialog::refreshLocations);
    refreshLocations();
}

void OnboardingDialog::refreshLocations() {
    while (QLayoutItem* const item = locations_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (const auto& grant : services_->access().grants()) {
        auto* const row = new QWidget(this);
        auto* const line = new QHBoxLayout(row);
        line->setContentsMargins({});
        line->setSpacing(theme_->size(ThemeSize::space8));
        auto* const name = new TextLabel(*theme_, ThemeFont::body, ThemeColor::text, row);
        name->setText(QString::fromStdString(grant->displayName()));
        line->addWidget(name);
        line->addWidget(new Pill(*theme_, LocationRow::pillOf(*grant), row));
        line->addStretch();
        locations_->addWidget(row);
    }
}

void OnboardingDialog::addFooter(QVBoxLayout& column) {
    auto* const foot = new QHBoxLayout;
    const int side = theme_->size(ThemeSize::overlayBadge), above = theme_->size(ThemeSize::space16);
    foot->setContentsMargins(side, above + theme_->size(ThemeSize::hairline), side, above);
    foot->setSpacing(theme_->size(ThemeSize::space12));
    foot->addWidget(dots_);
    foot->addWidget(counter_);
    foot->addStretch();
    foot->addWidget(back_);
    foot->addWidget(next_);
    column.addLayout(foot);
    back_->setAutoDefault(false);
    next_->setDefault(true);
    connect(back_, &QPushButton::clicked, this, [this] { go(step() - 1); });
    connect(next_, &QPushButton::clicked, this, [this] {
        if (step() + 1 < stepCount) return go(step() + 1);
        apply();
        accept();
    });
}

int OnboardingDialog::step() const {
    return steps_->currentIndex();
}

void OnboardingDialog::go(int step) {
    steps_->setCurrentIndex(std::clamp(step, 0, stepCount - 1));
    dots_->show(this->step());
    counter_->setText(
        localized("ui.onboarding.step", {std::to_string(this->step() + 1), std::to_string(stepCount)}));
    back_->setEnabled(this->step() > 0);
    const bool isLast = this->step() + 1 == stepCount;
    next_->setText(localized(isLast ? "ui.onboarding.start" : "ui.onboarding.next"));
    next_->setFocus(Qt::OtherFocusReason);
}

/// Only what was seen to the end counts.
void OnboardingDialog::apply() {
    AppSettings& settings = services_->settings();
    for (const PresetCard* card : presets_)
        if (card->isChecked()) settings.setKeyPreset(card->preset());
    std::vector<FileURL> wanted, unwanted;
    for (const auto& [folder, box] : folders_)
        (box->isChecked() ? wanted : unwanted).push_back(settings.knownFolders().url(folder));
    settings.unpin(unwanted);
    settings.pin(wanted);
}

void OnboardingDialog::done(int result) {
    services_->settings().setDidCompleteOnboarding(true);
    QDialog::done(result);
}

void OnboardingDialog::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme_->color(ThemeColor::chromeRaised));
    painter.fillRect(QRect(0, steps_->geometry().bottom() + 1, width(), theme_->size(ThemeSize::hairline)),
                     theme_->color(ThemeColor::border));
}

} // namespace ombrel
