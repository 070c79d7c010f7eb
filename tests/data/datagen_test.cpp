#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace
{

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The golden files were checked against the rules the reader and the catalogue need;
// a change to the table or the generator shows up here as a diff to review.
TEST(GeneratedData, MatchesTheGoldenFiles)
{
    const QString golden = DATA_TEST_GOLDEN_DIR "/";
    EXPECT_EQ(readAll(DATA_TEST_CATALOGUE_INC), readAll(golden + "zelkdevlist.inc"));
    EXPECT_EQ(readAll(DATA_TEST_CONFIG_XML), readAll(golden + "config.xml"));
    EXPECT_EQ(readAll(DATA_TEST_NAME_CONFIG_INI), readAll(golden + "name_config.ini"));
    EXPECT_EQ(readAll(DATA_TEST_UDEV_RULES), readAll(golden + "60-scribora.rules"));
    EXPECT_EQ(readAll(DATA_TEST_LANGUAGE_INI), readAll(DATA_TEST_LANGUAGE_SOURCE));
}

TEST(Datagen, RejectsTablesThatBreakTheRecords)
{
    const QJsonObject shipped = QJsonDocument::fromJson(readAll(DATA_TEST_MODELS_JSON)).object();
    const QJsonArray models = shipped["models"].toArray();
    ASSERT_EQ(models[2]["products"].toArray().size(), 2);
    ASSERT_EQ(models[8]["rings"].toInt(), 2);
    ASSERT_EQ(models[14]["keys"].toInt(), 4);
    const QStringList rows = QString(readAll(DATA_TEST_TABLE_EDITS)).split('\n');
    for (const QString &row : rows.filter(QRegularExpression("^\\w"))) {
        SCOPED_TRACE(row.toStdString());
        const int index = row.section(' ', 1, 1).toInt();
        QJsonObject model = models[index].toObject();
        model[row.section(' ', 2, 2)] =
            QJsonDocument::fromJson(("[" + row.section(' ', 3) + "]").toUtf8()).array().first();
        QJsonArray edited = models;
        edited[index] = model;
        QJsonObject table = shipped;
        table["models"] = edited;
        QTemporaryDir dir;
        QFile json(dir.filePath("models.json"));
        ASSERT_TRUE(json.open(QIODevice::WriteOnly));
        json.write(QJsonDocument(table).toJson());
        json.close();
        QProcess tool;
        tool.start(DATA_TEST_DATAGEN,
                   {json.fileName(), dir.filePath("zelkdevlist.inc"), dir.filePath("config.xml"),
                    dir.filePath("name_config.ini"), dir.filePath("60-scribora.rules")});
        ASSERT_TRUE(tool.waitForFinished(30000));
        const bool accepted = row.startsWith("accepted");
        EXPECT_EQ(tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0, accepted);
        EXPECT_EQ(QFile::exists(dir.filePath("config.xml")), accepted);
        EXPECT_EQ(QFile::exists(dir.filePath("zelkdevlist.inc")), accepted);
    }
}

} // namespace
