#pragma once

#include "services/DesktopApplication.h"

#include <QListView>
#include <QString>

#include <cstddef>
#include <vector>

namespace ombrel {

class Theme;

/// Applications by name and icon, those that are recommended first, under headings of which none can be
/// chosen. At first nothing is chosen.
class ApplicationList final : public QListView {
    Q_OBJECT

public:
    /// `theme` must outlive it.
    explicit ApplicationList(const Theme& theme, QWidget* parent = nullptr);

    /// Those in both lists are shown once.
    void setApplications(const std::vector<DesktopApplication>& recommended,
                         const std::vector<DesktopApplication>& all);
    /// Shows those that have `text` in their names, the first of them chosen; all, and none chosen, without a
    /// text.
    void filter(const QString& text);
    /// Chooses the first one where none is chosen.
    void chooseFirst();

    /// How many are shown.
    [[nodiscard]] std::size_t shownCount() const;
    /// Nothing when none is chosen; valid until the list changes.
    [[nodiscard]] const DesktopApplication* chosen() const;

Q_SIGNALS:
    void chosenChanged();

private:
    class Model;
    class Rows;

    const Theme* theme_;
    Model* model_;
};

} // namespace ombrel
