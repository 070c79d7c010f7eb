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

QJsonObject shippedTable()
{
    return QJsonDocument::fromJson(readAll(QStringLiteral(DATA_TEST_MODELS_JSON))).object();
}

QJsonObject model(const QJsonObject &table, int index)
{
    return table.value(QStringLiteral("models")).toArray().at(index).toObject();
}

void setModel(QJsonObject &table, int index, const QJsonObject &model)
{
    QJsonArray models = table.value(QStringLiteral("models")).toArray();
    models.replace(index, model);
    table.insert(QStringLiteral("models"), models);
}

int firstModelWhere(const QJsonObject &table, const QString &key, int value)
{
    const QJsonArray models = table.value(QStringLiteral("models")).toArray();
    for (int i = 0; i < models.size(); ++i) {
        if (models.at(i).toObject().value(key).toInt() == value)
            return i;
    }
    return -1;
}

int firstModelWithProducts(const QJsonObject &table, int count)
{
    const QJsonArray models = table.value(QStringLiteral("models")).toArray();
    for (int i = 0; i < models.size(); ++i) {
        if (models.at(i).toObject().value(QStringLiteral("products")).toArray().size() == count)
            return i;
    }
    return -1;
}

// Runs the generator on a table in a scratch folder.
class Datagen : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    QString out(const QString &name) const { return m_dir.filePath(name); }

    int run(const QJsonObject &table)
    {
        QFile json(out(QStringLiteral("models.json")));
        if (!json.open(QIODevice::WriteOnly))
            return -1;
        json.write(QJsonDocument(table).toJson());
        json.close();
        QProcess tool;
        tool.start(QStringLiteral(DATA_TEST_DATAGEN),
                   {json.fileName(), out(QStringLiteral("zelkdevlist.inc")),
                    out(QStringLiteral("config.xml")), out(QStringLiteral("name_config.ini"))});
        if (!tool.waitForFinished(30000) || tool.exitStatus() != QProcess::NormalExit)
            return -1;
        return tool.exitCode();
    }

    void expectRejected(const QJsonObject &table)
    {
        EXPECT_NE(run(table), 0);
        EXPECT_FALSE(QFile::exists(out(QStringLiteral("config.xml"))));
        EXPECT_FALSE(QFile::exists(out(QStringLiteral("zelkdevlist.inc"))));
    }

    QTemporaryDir m_dir;
};

} // namespace

TEST_F(Datagen, ProducesTheBuildsFilesAgain)
{
    ASSERT_EQ(run(shippedTable()), 0);
    EXPECT_EQ(readAll(out(QStringLiteral("zelkdevlist.inc"))),
              readAll(QStringLiteral(DATA_TEST_CATALOGUE_INC)));
    EXPECT_EQ(readAll(out(QStringLiteral("config.xml"))),
              readAll(QStringLiteral(DATA_TEST_CONFIG_XML)));
    EXPECT_EQ(readAll(out(QStringLiteral("name_config.ini"))),
              readAll(QStringLiteral(DATA_TEST_NAME_CONFIG_INI)));
}

TEST_F(Datagen, RejectsAProductIdListedTwice)
{
    QJsonObject table = shippedTable();
    QJsonObject second = model(table, 1);
    QJsonArray products = second.value(QStringLiteral("products")).toArray();
    QJsonObject product = products.at(0).toObject();
    product.insert(QStringLiteral("pid"), model(table, 0)
                                              .value(QStringLiteral("products"))
                                              .toArray()
                                              .at(0)
                                              .toObject()
                                              .value(QStringLiteral("pid")));
    products.replace(0, product);
    second.insert(QStringLiteral("products"), products);
    setModel(table, 1, second);
    expectRejected(table);
}

TEST_F(Datagen, AcceptsTwentyNineCharacterNamesButNoLonger)
{
    QJsonObject table = shippedTable();
    QJsonObject first = model(table, 0);
    first.insert(QStringLiteral("name"), QString(29, QLatin1Char('Q')));
    setModel(table, 0, first);
    EXPECT_EQ(run(table), 0);
    first.insert(QStringLiteral("name"), QString(30, QLatin1Char('Q')));
    setModel(table, 0, first);
    EXPECT_NE(run(table), 0);
}

TEST_F(Datagen, RejectsANameThatIsNoTagName)
{
    QJsonObject table = shippedTable();
    QJsonObject first = model(table, 0);
    first.insert(QStringLiteral("name"), QStringLiteral("0QTB"));
    setModel(table, 0, first);
    expectRejected(table);
}

TEST_F(Datagen, RejectsATableShortOfTheCatalogueSize)
{
    QJsonObject table = shippedTable();
    const int index = firstModelWithProducts(table, 2);
    ASSERT_GE(index, 0);
    QJsonObject shrunk = model(table, index);
    QJsonArray products = shrunk.value(QStringLiteral("products")).toArray();
    products.removeLast();
    shrunk.insert(QStringLiteral("products"), products);
    setModel(table, index, shrunk);
    expectRejected(table);
}

TEST_F(Datagen, RejectsATouchPadBesideASecondWheel)
{
    QJsonObject table = shippedTable();
    const int index = firstModelWhere(table, QStringLiteral("rings"), 2);
    ASSERT_GE(index, 0);
    QJsonObject wheels = model(table, index);
    wheels.insert(QStringLiteral("trackPad"), 1);
    setModel(table, index, wheels);
    expectRejected(table);
}

TEST_F(Datagen, RejectsKeyNumbersOutsideTheReport)
{
    QJsonObject table = shippedTable();
    const int index = firstModelWhere(table, QStringLiteral("keys"), 4);
    ASSERT_GE(index, 0);
    QJsonObject keys = model(table, index);
    keys.insert(QStringLiteral("keyMotids"), QJsonArray({1, 2, 3, 41}));
    setModel(table, index, keys);
    expectRejected(table);
}
