#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QTimer>

namespace ombrel {

class BrowserWindow;

/// Waits until a window shows all that it will, writes what it looks like into a PNG file and ends the
/// application: with status 0, or 1 when the file cannot be written.
class Picture final : public QObject {
    Q_OBJECT

public:
    /// `window` must outlive it.
    Picture(BrowserWindow& window, QString file);

private:
    void consider();

    BrowserWindow* window_;
    QString file_;
    QImage lastLook_;
    QTimer beat_;
};

} // namespace ombrel
