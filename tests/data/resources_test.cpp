#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPixmap>
#include <QPushButton>
#include <QRegularExpression>
#include <QResource>
#include <gtest/gtest.h>

namespace
{

QByteArray readAll(const char *path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList g_warnings;

TEST(Resources, EveryPictureTheWindowNamesLoadsAndSpritesFitTheirUse)
{
    ASSERT_TRUE(QResource::registerResource(RESOURCE_FILE));
    QStringList paths = QString(readAll(PICTURES)).split('\n').filter(QRegularExpression("^\\w"));
    for (const QJsonValue &model :
         QJsonDocument::fromJson(readAll(MODELS_JSON))["models"].toArray())
        for (QString path : paths.filter("{model}") + paths.filter("{wheels}"))
            if (!path.contains("{wheels}") || model["rings"].toInt() > 0)
                paths << path.replace(QRegularExpression("\\{(model|wheels)\\}"),
                                      model["name"].toString());
    for (const QString &path : paths.filter("{o}"))
        for (const char *orientation : {"0", "1", "2", "3"})
            paths << QString(path).replace("{o}", orientation);
    paths = paths.filter(QRegularExpression("^[^{]*$"));
    ASSERT_GT(paths.size(), 300);
    for (const QString &path : paths)
        EXPECT_FALSE(QPixmap(":/image/" + path + ".png").isNull()) << path.toStdString();
    // The battery label cuts seven rows of 13 pixels; the cursors have their hot spot at 32,32.
    for (const char *path : {"battery_charging", "battery_uncharing"})
        EXPECT_EQ(QPixmap(QString(":/image/Res/%1.png").arg(path)).height(), 91) << path;
    for (const char *path : {"leftTop", "rightbottom"}) {
        const QSize cursor = QPixmap(QString(":/image/Res/%1.png").arg(path)).size();
        EXPECT_GE(qMin(cursor.width(), cursor.height()), 33) << path;
    }
}

TEST(Resources, StyleSheetParsesAndItsPicturesExist)
{
    ASSERT_TRUE(QResource::registerResource(RESOURCE_FILE));
    QFile file(":/qss/qss/stylesheet.qss");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString style = QString::fromLatin1(file.readAll());
    const QtMessageHandler previous =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
            if (type == QtWarningMsg)
                g_warnings << text;
        });
    qApp->setStyleSheet(style);
    QPushButton button;
    button.ensurePolished();
    qInstallMessageHandler(previous);
    qApp->setStyleSheet(QString());
    EXPECT_TRUE(g_warnings.filter("Could not parse").isEmpty())
        << g_warnings.join('\n').toStdString();
    auto match = QRegularExpression("url\\((:/[^)]+)\\)").globalMatch(style);
    int pictures = 0;
    for (; match.hasNext(); ++pictures) {
        const QString path = match.next().captured(1);
        EXPECT_FALSE(QPixmap(path).isNull()) << path.toStdString();
    }
    EXPECT_GT(pictures, 0);
}

} // namespace
