#pragma once

#include "base/Worker.h"
#include "browser/BrowserModel.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <cstdint>

namespace ombrel {

/// Jumping to a name by typing its beginning. What is typed lives for a second after the last key; the same
/// letter again and again steps through the names that begin with it. Names are looked through on a worker.
/// Main thread only.
class TypeAhead final : public QObject {
    Q_OBJECT

public:
    /// `model` must outlive it.
    explicit TypeAhead(BrowserModel& model, QObject* parent = nullptr);

    /// What is typed so far; empty when nothing lives.
    [[nodiscard]] const QString& text() const noexcept { return text_; }
    void type(const QString& characters);
    void clear();

Q_SIGNALS:
    void textChanged();
    /// The row to jump to.
    void found(std::size_t row);

private:
    BrowserModel* model_;
    QString text_;
    QTimer lifetime_;
    Worker search_;
    std::uint64_t ticket_ = 0; ///< of the newest search; answers to older ones are dropped
};

} // namespace ombrel
