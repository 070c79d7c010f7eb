#include "cataloguewriter.h"
#include "modeltablechecker.h"
#include "modeltablereader.h"
#include "nameconfigwriter.h"
#include "profilebuilder.h"
#include "udevruleswriter.h"

#include <QHash>
#include <QSaveFile>
#include <QStringList>
#include <QtGlobal>

namespace
{

bool writeOutput(const QString &path, const QByteArray &data)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size() && file.commit())
        return true;
    qCritical().noquote() << "scribora-datagen: cannot write" << path << file.errorString();
    return false;
}

bool loadTable(const QString &path, ModelTable &table)
{
    ModelTableReader reader;
    if (!reader.read(path, table)) {
        qCritical().noquote() << "scribora-datagen:" << reader.error();
        return false;
    }
    ModelTableChecker checker;
    if (!checker.check(table)) {
        qCritical().noquote() << "scribora-datagen:" << path << checker.error();
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    // QDom writes attributes in QHash order; a fixed seed keeps the file the same on every build.
    qSetGlobalQHashSeed(0);
    if (argc != 6) {
        qCritical("usage: scribora-datagen models.json zelkdevlist.inc config.xml name_config.ini "
                  "scribora.rules");
        return 2;
    }
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args.append(QString::fromLocal8Bit(argv[i]));
    ModelTable table;
    if (!loadTable(args.at(0), table))
        return 1;
    const bool written = writeOutput(args.at(1), CatalogueWriter::rows(table)) &&
                         writeOutput(args.at(2), ProfileBuilder::text(table)) &&
                         writeOutput(args.at(3), NameConfigWriter::text(table)) &&
                         writeOutput(args.at(4), UdevRulesWriter::text(table));
    return written ? 0 : 1;
}
