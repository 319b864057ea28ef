// Another program of the desktop, for the tests of what passes between programs.
//
// usage: peer offer FORMAT BYTES [FORMAT BYTES]...   has these on the clipboard until it is ended
//        peer read FORMAT                            prints what is on the clipboard; 1 when it is not there
#include <QApplication>
#include <QClipboard>
#include <QMimeData>
#include <QTimer>

#include <cstdio>

namespace {

void tell(const QByteArray& line) {
    std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int usage() {
    std::fprintf(stderr, "usage: peer offer FORMAT BYTES... | read FORMAT\n");
    return 2;
}

} // namespace

int main(int count, char** words) {
    QApplication application(count, words);
    const QByteArray what = count > 2 ? words[1] : "";
    if (what == "offer") {
        auto* const data = new QMimeData;
        for (int i = 2; i + 1 < count; i += 2)
            data->setData(QString::fromUtf8(words[i]), words[i + 1]);
        QGuiApplication::clipboard()->setMimeData(data);
        QTimer::singleShot(0, [] { tell("ready"); });
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
