#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
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
    EXPECT_EQ(readAll(DATA_TEST_LANGUAGE_INI), readAll(DATA_TEST_LANGUAGE_SOURCE));
}

void set(QJsonArray &models, int model, const char *key, const QJsonValue &value)
{
    QJsonObject object = models[model].toObject();
    object[key] = value;
    models[model] = object;
}

QJsonArray products(const QJsonArray &models, int model)
{
    return models[model].toObject()["products"].toArray();
}

struct TableEdit {
    const char *name;
    void (*edit)(QJsonArray &models);
    bool accepted;
};

// Models 2 and 14 have four keys, 2 has two products, 8 has two wheels.
const TableEdit kEdits[] = {
    {"29-character name", [](QJsonArray &m) { set(m, 0, "name", QString(29, 'Q')); }, true},
    {"30-character name", [](QJsonArray &m) { set(m, 0, "name", QString(30, 'Q')); }, false},
    {"not a tag name", [](QJsonArray &m) { set(m, 0, "name", "0QTB"); }, false},
    {"product id twice",
     [](QJsonArray &m) {
         QJsonArray rows = products(m, 1);
         QJsonObject row = rows[0].toObject();
         row["pid"] = products(m, 0)[0].toObject()["pid"];
         rows[0] = row;
         set(m, 1, "products", rows);
     },
     false},
    {"short of the catalogue size",
     [](QJsonArray &m) {
         QJsonArray rows = products(m, 2);
         rows.removeLast();
         set(m, 2, "products", rows);
     },
     false},
    {"touch pad beside a second wheel", [](QJsonArray &m) { set(m, 8, "trackPad", 1); }, false},
    {"key number outside the report",
     [](QJsonArray &m) {
         set(m, 14, "keyMotids", QJsonArray({1, 2, 3, 41}));
     },
     false},
};

TEST(Datagen, RejectsTablesThatBreakTheRecords)
{
    QJsonObject shipped = QJsonDocument::fromJson(readAll(DATA_TEST_MODELS_JSON)).object();
    ASSERT_EQ(products(shipped["models"].toArray(), 2).size(), 2);
    ASSERT_EQ(shipped["models"].toArray()[8].toObject()["rings"].toInt(), 2);
    for (const TableEdit &row : kEdits) {
        SCOPED_TRACE(row.name);
        QTemporaryDir dir;
        QJsonObject table = shipped;
        QJsonArray models = table["models"].toArray();
        row.edit(models);
        table["models"] = models;
        QFile json(dir.filePath("models.json"));
        ASSERT_TRUE(json.open(QIODevice::WriteOnly));
        json.write(QJsonDocument(table).toJson());
        json.close();
        QProcess tool;
        tool.start(DATA_TEST_DATAGEN,
                   {json.fileName(), dir.filePath("zelkdevlist.inc"), dir.filePath("config.xml"),
                    dir.filePath("name_config.ini")});
        ASSERT_TRUE(tool.waitForFinished(30000));
        EXPECT_EQ(tool.exitStatus() == QProcess::NormalExit && tool.exitCode() == 0, row.accepted);
        EXPECT_EQ(QFile::exists(dir.filePath("config.xml")), row.accepted);
        EXPECT_EQ(QFile::exists(dir.filePath("zelkdevlist.inc")), row.accepted);
    }
}

} // namespace
