#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPixmap>
#include <QPushButton>
#include <QRegularExpression>
#include <QResource>
#include <QStringList>
#include <gtest/gtest.h>

namespace
{

QStringList g_warnings;

void keepWarnings(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtWarningMsg)
        g_warnings.append(message);
}

QJsonArray models()
{
    QFile file(MODELS_JSON);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object().value("models").toArray();
}

// Every path the window loads for one model: its own picture, the key page and key dialog
// pictures of the four orientations, and the wheel picture when it has rings.
QStringList modelPictures(const QJsonObject &model)
{
    const QString name = model.value("name").toString();
    QStringList paths{":/image/tablet/" + name + ".png"};
    for (int orientation = 0; orientation < 4; ++orientation) {
        paths << QString(":/image/tablet/%1_K%2.png").arg(name).arg(orientation)
              << QString(":/image/tablet/HY_%1_K%2.png").arg(name).arg(orientation);
    }
    if (model.value("rings").toInt() > 0)
        paths << ":/image/tablet/" + name + "_R.png";
    if (model.value("pens").toInt() > 0)
        paths << QString(":/image/Res/pen%1.png").arg(model.value("penType").toInt());
    return paths;
}

class Resources : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { ASSERT_TRUE(QResource::registerResource(RESOURCE_FILE)); }
};

TEST_F(Resources, EveryModelOfTheTableHasItsPictures)
{
    const QJsonArray table = models();
    ASSERT_FALSE(table.isEmpty());
    for (const QJsonValue &value : table) {
        for (const QString &path : modelPictures(value.toObject()))
            EXPECT_FALSE(QPixmap(path).isNull()) << path.toStdString();
    }
}

TEST_F(Resources, WindowPicturesLoad)
{
    const QStringList paths{
        ":/image/Res/logo.png",
        ":/image/Res/scribora.png",
        ":/image/Res/show.png",
        ":/image/Res/setting.png",
        ":/image/Res/update.png",
        ":/image/Res/close.png",
        ":/image/Res/other_icon.png",
        ":/image/Res/ImportSuccess.png",
        ":/image/Res/ImportFail.png",
        ":/image/Res/screenArea.png",
        ":/image/Res/device.png",
        ":/image/Res/btn_setting_r.png",
        ":/image/Res/btn_setting_r_hover.png",
        ":/image/Res/btn_setting_r_press.png",
        ":/image/tablet/Pre_Keypad_H_0.png",
        ":/image/tablet/Pre_Keypad_H_1.png",
        ":/image/tablet/Pre_Keypad_H_2.png",
        ":/image/tablet/Pre_Keypad_H_3.png",
    };
    for (const QString &path : paths)
        EXPECT_FALSE(QPixmap(path).isNull()) << path.toStdString();
    for (int pen = 1; pen <= 8; ++pen)
        EXPECT_FALSE(QPixmap(QString(":/image/Res/pen%1.png").arg(pen)).isNull()) << pen;
}

TEST_F(Resources, SpritesAndCursorsFitTheirUse)
{
    struct Case {
        const char *path;
        int minWidth;
        int height; // 0: only the minimum width and a hot spot inside
    };
    // The battery label cuts seven rows of 13 pixels; the cursors have their hot spot at 32,32.
    const Case cases[] = {
        {":/image/Res/battery_charging.png", 1, 91},
        {":/image/Res/battery_uncharing.png", 1, 91},
        {":/image/Res/leftTop.png", 33, 0},
        {":/image/Res/rightbottom.png", 33, 0},
    };
    for (const Case &c : cases) {
        const QPixmap picture(c.path);
        EXPECT_GE(picture.width(), c.minWidth) << c.path;
        if (c.height > 0)
            EXPECT_EQ(picture.height(), c.height) << c.path;
        else
            EXPECT_GE(picture.height(), 33) << c.path;
    }
}

TEST_F(Resources, StyleSheetParsesAndItsPicturesExist)
{
    QFile file(":/qss/qss/stylesheet.qss");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString style = QString::fromLatin1(file.readAll());
    ASSERT_FALSE(style.trimmed().isEmpty());

    g_warnings.clear();
    const QtMessageHandler previous = qInstallMessageHandler(keepWarnings);
    qApp->setStyleSheet(style);
    QPushButton button;
    button.ensurePolished();
    qInstallMessageHandler(previous);
    qApp->setStyleSheet(QString());
    EXPECT_TRUE(g_warnings.filter("Could not parse").isEmpty())
        << g_warnings.join('\n').toStdString();

    const QRegularExpression url(QStringLiteral("url\\((:/[^)]+)\\)"));
    auto match = url.globalMatch(style);
    int pictures = 0;
    while (match.hasNext()) {
        const QString path = match.next().captured(1);
        EXPECT_FALSE(QPixmap(path).isNull()) << path.toStdString();
        ++pictures;
    }
    EXPECT_GT(pictures, 0);
}

} // namespace
