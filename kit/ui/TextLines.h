#pragma once

#include <QFont>
#include <QRect>
#include <QStaticText>
#include <QString>

#include <cstddef>
#include <unordered_map>

class QPainter;

namespace ombrel {

/// Draws single lines of text and keeps those of the last frames as they were fitted and shaped, which takes
/// most of the time that a frame of a list takes. Main thread only.
class TextLines {
public:
    /// With the painter's font and pen, centred from top to bottom. `alignment` is `AlignLeft`, `AlignRight`
    /// or `AlignHCenter` as it is seen on the screen. What does not fit is elided; `ElideNone` lets it stick
    /// out.
    void draw(QPainter& painter, const QRect& rect, Qt::Alignment alignment, const QString& text,
              Qt::TextElideMode elision);

private:
    struct Line {
        QString text;
        int width;
        Qt::TextElideMode elision;

        friend bool operator==(const Line&, const Line&) = default;
    };
    struct Hash {
        [[nodiscard]] std::size_t operator()(const Line& line) const noexcept {
            return qHashMulti(0, line.text, line.width, static_cast<int>(line.elision));
        }
    };

    [[nodiscard]] const QStaticText& shaped(const Line& line, const QPainter& painter);

    QFont font_;
    std::unordered_map<Line, QStaticText, Hash> recent_;
    std::unordered_map<Line, QStaticText, Hash> older_;
};

} // namespace ombrel
