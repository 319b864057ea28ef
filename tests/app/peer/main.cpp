// Another program of the desktop, for the tests of what passes between programs.
//
// usage: peer offer FORMAT BYTES [FORMAT BYTES]...   has these on the clipboard until it is ended
//        peer give FORMAT BYTES [FORMAT BYTES]...    has a window from which these are dragged
//        peer take FORMAT                            has a window that takes this from a drag
//        peer read FORMAT                            prints what is on the clipboard; 1 when it is not there
//
// A window stands at the right edge of the screen, and says "ready" and where its middle is. Then it says
// "ended" and what was done at the end of a drag of its own; "over" whenever another's moves over it, and
// "dropped" with the bytes, percent-encoded.
#include <QApplication>
#include <QClipboard>
#include <QDrag>
#include <QDragMoveEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <cstdio>

namespace {

void tell(const QByteArray& line) {
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int usage() {
    std::fprintf(stderr, "usage: peer offer|give FORMAT BYTES... | take FORMAT | read FORMAT\n");
    return 2;
}

QMimeData* dataOf(int count, char** words) {
    auto* const data = new QMimeData;
    for (int i = 2; i + 1 < count; i += 2)
        data->setData(QString::fromUtf8(words[i]), words[i + 1]);
    return data;
}

/// Says where it is as soon as the window manager has put it there.
class Place : public QWidget {
public:
    Place() {
        constexpr int side = 120;
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        setGeometry(screen.right() - side, screen.center().y(), side, side);
        setAttribute(Qt::WA_ShowWithoutActivating);
        constexpr int interval = 10;
        connect(&looking_, &QTimer::timeout, this, [this] {
            if (!windowHandle()->isExposed() || frameGeometry() == geometry()) return;
            looking_.stop();
            const QPoint middle = mapToGlobal(rect().center());
            tell("ready " + QByteArray::number(middle.x()) + ' ' + QByteArray::number(middle.y()));
        });
        looking_.start(interval);
        show();
    }

private:
    QTimer looking_;
};

class Giver final : public Place {
public:
    Giver(int count, char** words) : count_(count), words_(words) {}

protected:
    void mouseMoveEvent(QMouseEvent* event) override {
        if (!(event->buttons() & Qt::LeftButton)) return;
        auto* const drag = new QDrag(this);
        drag->setMimeData(dataOf(count_, words_));
        const auto done = drag->exec(Qt::CopyAction | Qt::MoveAction);
        tell(done == Qt::CopyAction ? "ended copied" : done == Qt::MoveAction ? "ended moved" : "ended none");
    }

private:
    int count_;
    char** words_;
};

class Taker final : public Place {
public:
    explicit Taker(const char* format) : format_(QString::fromUtf8(format)) { setAcceptDrops(true); }

protected:
    void dragEnterEvent(QDragEnterEvent* event) override {
        if (event->mimeData()->hasFormat(format_)) event->acceptProposedAction();
    }
    void dragMoveEvent(QDragMoveEvent* event) override {
        event->acceptProposedAction();
        tell("over");
    }
    void dropEvent(QDropEvent* event) override {
        tell("dropped " + event->mimeData()->data(format_).toPercentEncoding());
        event->acceptProposedAction();
    }

private:
    QString format_;
};

} // namespace

int main(int count, char** words) {
    QApplication application(count, words);
    const QByteArray what = count > 2 ? words[1] : "";
    if (what == "offer") {
        QGuiApplication::clipboard()->setMimeData(dataOf(count, words));
        QTimer::singleShot(0, [] { tell("ready"); });
        return QApplication::exec();
    }
    if (what == "give") {
        const Giver window(count, words);
        return QApplication::exec();
    }
    if (what == "take") {
        const Taker window(words[2]);
        return QApplication::exec();
    }
    if (what != "read") return usage();
    QTimer::singleShot(0, [&] {
        const QString format = QString::fromUtf8(words[2]);
        const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
        if (!data || !data->hasFormat(format)) return QCoreApplication::exit(1);
        const QByteArray bytes = data->data(format);
        std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stdout);
        QCoreApplication::exit(0);
    });
    return QApplication::exec();
}
