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

QStringList g_warnings;

class Resources : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(QResource::registerResource(RESOURCE_FILE)); }
};

// Every path the window loads: per model its own picture, the key page and key dialog
// pictures of the four orientations, the wheel picture with rings, its pen's picture.
TEST_F(Resources, EveryPictureTheWindowNamesLoads)
{
    QFile file(MODELS_JSON);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QStringList paths = QString("Res/logo Res/scribora Res/show Res/setting Res/update Res/close "
                                "Res/other_icon Res/ImportSuccess Res/ImportFail Res/screenArea "
                                "Res/device Res/btn_setting_r Res/btn_setting_r_hover "
                                "Res/btn_setting_r_press")
                            .split(' ');
    for (int i = 0; i < 8; ++i)
        paths << QString("Res/pen%1").arg(i + 1) << QString("tablet/Pre_Keypad_H_%1").arg(i % 4);
    for (const QJsonValue &value : QJsonDocument::fromJson(file.readAll())["models"].toArray()) {
        const QString name = value["name"].toString();
        paths << "tablet/" + name;
        for (int orientation = 0; orientation < 4; ++orientation)
            paths << QString("tablet/%1_K%2").arg(name).arg(orientation)
                  << QString("tablet/HY_%1_K%2").arg(name).arg(orientation);
        if (value["rings"].toInt() > 0)
            paths << "tablet/" + name + "_R";
    }
    ASSERT_GT(paths.size(), 300);
    for (const QString &path : paths)
        EXPECT_FALSE(QPixmap(":/image/" + path + ".png").isNull()) << path.toStdString();
}

// The battery label cuts seven rows of 13 pixels; the cursors have their hot spot at 32,32.
TEST_F(Resources, SpritesAndCursorsFitTheirUse)
{
    for (const char *path : {"battery_charging", "battery_uncharing"})
        EXPECT_EQ(QPixmap(QString(":/image/Res/%1.png").arg(path)).height(), 91) << path;
    for (const char *path : {"leftTop", "rightbottom"}) {
        const QPixmap cursor(QString(":/image/Res/%1.png").arg(path));
        EXPECT_GE(cursor.width(), 33) << path;
        EXPECT_GE(cursor.height(), 33) << path;
    }
}

TEST_F(Resources, StyleSheetParsesAndItsPicturesExist)
{
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
