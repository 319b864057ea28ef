#include "ui/SystemPasteboard.h"

#include <QByteArray>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStringList>
#include <QVariant>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace ombrel {
namespace {

QString textOf(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

/// Formats as they were given: QMimeData's own store would read URI lists and write them anew.
class Offer final : public QMimeData {
public:
    explicit Offer(std::vector<Pasteboard::Entry> entries) {
        for (auto& entry : entries)
            entries_.emplace_back(textOf(entry.format), std::move(entry.bytes));
    }
    bool hasFormat(const QString& format) const override { return find(format) != entries_.end(); }
    QStringList formats() const override {
        QStringList all;
        for (const auto& [format, bytes] : entries_)
            all.append(format);
        return all;
    }

protected:
    QVariant retrieveData(const QString& format, QMetaType) const override {
        const auto found = find(format);
        return found == entries_.end() ? QVariant() : QVariant(QByteArray::fromStdString(found->second()));
    }

private:
    using Entries = std::vector<std::pair<QString, Pasteboard::Entry::Maker>>;

    Entries::const_iterator find(const QString& format) const {
        return std::ranges::find(entries_, format, &Entries::value_type::first);
    }

    Entries entries_;
};

const QMimeData* contents() {
    return QGuiApplication::clipboard()->mimeData();
}

} // namespace

SystemPasteboard::SystemPasteboard(QObject* parent) : Pasteboard(parent) {
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this, &Pasteboard::changed);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive) Q_EMIT regained();
    });
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](const QWindow* window) {
        if (window) Q_EMIT regained();
    });
}

void SystemPasteboard::write(std::vector<Entry> entries) {
    if (entries.empty())
        QGuiApplication::clipboard()->clear();
    else
        QGuiApplication::clipboard()->setMimeData(new Offer(std::move(entries)));
}

bool SystemPasteboard::has(std::string_view format) const {
    const auto* data = contents();
    return data && data->hasFormat(textOf(format));
}

std::optional<std::string> SystemPasteboard::read(std::string_view format) const {
    const auto* data = contents();
    if (!data || !data->hasFormat(textOf(format))) return std::nullopt;
    return data->data(textOf(format)).toStdString();
}

} // namespace ombrel
