#include "window/probe/BareTree.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTreeWidget>

int ombrel::bench::showBareTree(const std::string& folder) {
    QTreeWidget tree;
    tree.setHeaderLabels({QStringLiteral("Name")});
    const QStringList names =
        QDir(QFile::decodeName(folder.c_str())).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QString& name : names)
        tree.addTopLevelItem(new QTreeWidgetItem({name}));
    constexpr int width = 1280, height = 800;
    tree.resize(width, height);
    tree.show();
    return QApplication::exec();
}
