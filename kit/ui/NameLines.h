#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

#include <unordered_map>

namespace ombrel {

/// Names broken into lines that fit a width, kept for those that were looked at last.
class NameLines {
public:
    /// The same answers from here on are for another font or width.
    void setRoom(const QFont& font, int width);

    /// At most `limit` lines; what is too long for them loses its middle, so that its ending stays. Valid
    /// until the next call of anything here.
    [[nodiscard]] const QStringList& of(const QString& name, int limit);
    /// All of it, in as many lines as it takes.
    [[nodiscard]] QStringList whole(const QString& name) const;

private:
    QFont font_;
    int width_ = 0;
    std::unordered_map<QString, QStringList> kept_;
    int limit_ = 0;
};

} // namespace ombrel
