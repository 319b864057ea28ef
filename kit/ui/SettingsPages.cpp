#include "ui/SettingsPages.h"

#include "services/SoftwareUpdater.h"
#include "ui/LocalizedText.h"
#include "ui/PresetCard.h"
#include "ui/TextLabel.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace ombrel {
namespace {

/// Of buttons of which one is chosen, Tab leads to that one, and the arrow keys lead on from there.
void reachByTabWhenChosen(QRadioButton& button) {
    const auto follow = [&button](bool isChosen) {
        const auto policy = static_cast<int>(button.focusPolicy());
        button.setFocusPolicy(
            static_cast<Qt::FocusPolicy>(isChosen ? policy | Qt::TabFocus : policy & ~Qt::TabFocus));
    };
    QObject::connect(&button, &QAbstractButton::toggled, &button, follow);
    follow(button.isChecked());
}

/// A note on a ground that draws attention.
class Note final : public QWidget {
public:
    Note(const Theme& theme, const QString& words, QWidget* parent) : QWidget(parent), theme_(&theme) {
        auto* const row = new QHBoxLayout(this);
        const int side = theme.size(ThemeSize::space12), above = theme.size(ThemeSize::space8);
        row->setContentsMargins(side, above, side, above);
        auto* const label = new TextLabel(theme, ThemeFont::body, ThemeColor::warning, this);
        label->setWordWrap(true);
        label->setText(words);
        row->addWidget(label);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme_->color(ThemeColor::warningSoft));
        const int radius = theme_->size(ThemeSize::radiusField);
        painter.drawRoundedRect(rect(), radius, radius);
    }

private:
    const Theme* theme_;
};

struct LanguageName {
    std::string_view code;
    const char* name;
};

constexpr LanguageName languageNames[] = {
    {"en", "English"},       {"zh-Hans", "简体中文"},
    {"zh-Hant", "繁體中文"}, {"ja", "日本語"},
    {"ko", "한국어"},        {"de", "Deutsch"},
    {"fr", "Français"},      {"es", "Español"},
    {"it", "Italiano"},      {"pt-BR", "Português (Brasil)"},
    {"nl", "Nederlands"},    {"pl", "Polski"},
    {"ru", "Русский"},       {"tr", "Türkçe"},
    {"vi", "Tiếng Việt"},    {"id", "Bahasa Indonesia"},
};

} // namespace

// ---- General

GeneralPage::GeneralPage(const Theme& theme, AppSettings& settings, std::function<void()> showFolderOptions,
                         QWidget* parent)
    : SettingsPage(theme, localized("ui.settings.general"), parent), settings_(&settings) {
    const auto add = [&](const QString& label, Setting setting) {
        auto* const box = new QCheckBox(label, content());
        column().addWidget(box);
        connect(box, &QCheckBox::toggled, this, [this, setting](bool on) { settings_->set(setting, on); });
        switches_.emplace_back(setting, box);
    };
    column().addSpacing(theme.size(ThemeSize::space8));
    add(localized("ui.settings.confirmTrash"), Setting::confirmMoveToTrash);
    add(localized("ui.settings.detailsPane"), Setting::showsDetailsPane);
    add(localized("ui.settings.compactRows"), Setting::compactView);
    column().addSpacing(theme.size(ThemeSize::space12));
    auto* const options = new QPushButton(localized("ui.settings.folderOptions"), content());
    column().addWidget(options, 0, Qt::AlignLeading);
    connect(options, &QPushButton::clicked, this, [show = std::move(showFolderOptions)] {
        if (show) show();
    });
    connect(&settings, &AppSettings::changed, this, &GeneralPage::refresh);
    refresh();
}

void GeneralPage::refresh() {
    for (const auto& [setting, box] : switches_)
        box->setChecked(settings_->isOn(setting));
}

// ---- Keyboard

KeyboardPage::KeyboardPage(const Theme& theme, AppSettings& settings, QWidget* parent)
    : SettingsPage(theme, localized("ui.settings.keyboard"), parent), settings_(&settings) {
    addCaption(localized("ui.onboarding.keys.title"));
    column().addSpacing(theme.size(ThemeSize::space8));
    auto* const row = new QHBoxLayout;
    row->setSpacing(theme.size(ThemeSize::space16));
    auto* const group = new QButtonGroup(this);
    for (const auto preset : {KeyPreset::windows, KeyPreset::mac}) {
        auto* const card = new PresetCard(theme, preset, content());
        group->addButton(card);
        row->addWidget(card);
        cards_.push_back(card);
        reachByTabWhenChosen(*card);
        connect(card, &QAbstractButton::toggled, this, [this, preset](bool on) {
            if (on) settings_->setKeyPreset(preset);
        });
    }
    column().addLayout(row);
    connect(&settings, &AppSettings::changed, this, &KeyboardPage::refresh);
    refresh();
}

void KeyboardPage::refresh() {
    for (PresetCard* card : cards_)
        if (card->preset() == settings_->keyPreset()) card->setChecked(true);
}

// ---- Language

LanguagePage::LanguagePage(const Theme& theme, AppSettings& settings, QWidget* parent)
    : SettingsPage(theme, localized("ui.settings.language"), parent), settings_(&settings),
      note_(new Note(theme, localized("ui.settings.nextStart"), content())) {
    column().addWidget(note_);
    // It keeps its room, so that nothing moves when it is shown.
    QSizePolicy policy = note_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    note_->setSizePolicy(policy);
    add(localized("ui.settings.desktopLanguage"), std::nullopt);
    for (const std::string_view code : AppSettings::supportedLanguages())
        add(nameOf(code), std::string(code));
    connect(&settings, &AppSettings::changed, this, &LanguagePage::refresh);
    refresh();
}

QString LanguagePage::nameOf(std::string_view code) {
    for (const LanguageName& language : languageNames)
        if (language.code == code) return QString::fromUtf8(language.name);
    return QString::fromUtf8(code.data(), static_cast<qsizetype>(code.size()));
}

void LanguagePage::add(const QString& name, const std::optional<std::string>& code) {
    auto* const choice = new QRadioButton(name, content());
    column().addWidget(choice);
    reachByTabWhenChosen(*choice);
    connect(choice, &QRadioButton::toggled, this, [this, code](bool on) {
        if (on) settings_->setInterfaceLanguage(code);
    });
    choices_.emplace_back(code, choice);
}

void LanguagePage::refresh() {
    for (const auto& [code, choice] : choices_)
        if (code == settings_->interfaceLanguage()) choice->setChecked(true);
    note_->setVisible(settings_->interfaceLanguage() != settings_->launchInterfaceLanguage());
}

// ---- Updates

UpdatesPage::UpdatesPage(const Theme& theme, SoftwareUpdater& updater, QWidget* parent)
    : SettingsPage(theme, localized("ui.settings.updates"), parent), updater_(&updater),
      checks_(add(localized("settings.updates.automaticChecks"), &SoftwareUpdater::setChecksAutomatically)),
      downloads_(
          add(localized("settings.updates.automaticDownloads"), &SoftwareUpdater::setDownloadsAutomatically)),
      beta_(add(localized("settings.updates.beta"), &SoftwareUpdater::setIncludesBetaVersions)),
      last_(new TextLabel(theme, ThemeFont::body, ThemeColor::textSecondary, content())) {
    column().addSpacing(theme.size(ThemeSize::space12));
    column().addWidget(last_);
    auto* const check = new QPushButton(localized("ui.settings.checkNow"), content());
    column().addWidget(check, 0, Qt::AlignLeading);
    addCaption(localized("settings.updates.privacy"));
    connect(check, &QPushButton::clicked, &updater, &SoftwareUpdater::checkNow);
    connect(&updater, &SoftwareUpdater::changed, this, &UpdatesPage::refresh);
    refresh();
}

QCheckBox* UpdatesPage::add(const QString& label, void (SoftwareUpdater::*set)(bool)) {
    auto* const box = new QCheckBox(label, content());
    column().addWidget(box);
    connect(box, &QCheckBox::toggled, updater_, set);
    return box;
}

void UpdatesPage::refresh() {
    checks_->setChecked(updater_->checksAutomatically());
    downloads_->setChecked(updater_->downloadsAutomatically());
    beta_->setChecked(updater_->includesBetaVersions());
    const auto last = updater_->lastCheck();
    last_->setText(last ? localized("settings.updates.lastCheck",
                                    {QLocale().toString(*last, QLocale::ShortFormat).toStdString()})
                        : localized("settings.updates.neverChecked"));
}

} // namespace ombrel
