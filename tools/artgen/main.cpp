#include "modeltablechecker.h"
#include "modeltablereader.h"
#include "pictureset.h"

#include <QDebug>
#include <QGuiApplication>

int main(int argc, char **argv)
{
    // Text is drawn with QPainter, which needs a font database but never a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    if (argc != 4) {
        qCritical("usage: scribora-artgen models.json stylesheet.qss output-folder");
        return 2;
    }
    const QStringList args = QCoreApplication::arguments();
    ModelTable table;
    ModelTableReader reader;
    if (!reader.read(args.at(1), table)) {
        qCritical().noquote() << "scribora-artgen:" << reader.error();
        return 1;
    }
    ModelTableChecker checker;
    if (!checker.check(table)) {
        qCritical().noquote() << "scribora-artgen:" << args.at(1) << checker.error();
        return 1;
    }
    const PictureSet pictures(table);
    return pictures.write(args.at(3), args.at(2)) ? 0 : 1;
}
