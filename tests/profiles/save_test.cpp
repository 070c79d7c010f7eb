#include "recordtext.h"
#include "xmlhelp.h"

#include <QTemporaryDir>

#include <csignal>
#include <memory>
#include <sys/resource.h>

namespace
{

class SaveFile : public ::testing::Test
{
protected:
    void copy(const QString &from)
    {
        QFile::remove(path());
        ASSERT_TRUE(QFile::copy(from, path()));
        QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner);
    }
    void load(const QString &pid)
    {
        *data = {};
        ASSERT_EQ(XMLHelp(path()).LoadConfig(data.get(), pid.toUtf8(), apps), 1)
            << pid.toStdString();
    }
    void save() { XMLHelp(path()).SaveConfig(data.get(), apps); }
    QString path() const { return dir.filePath("config.xml"); }
    // The DOM writes attributes in hash order; the generator's seed gives its bytes.
    void SetUp() override { qSetGlobalQHashSeed(0); }
    void TearDown() override
    {
        qSetGlobalQHashSeed(-1);
        qDeleteAll(apps);
    }

    QTemporaryDir dir;
    std::unique_ptr<stTablet_XMLData> data = std::make_unique<stTablet_XMLData>();
    QMap<QString, _stAppConfigNode *> apps;
};

TEST_F(SaveFile, RoundTripLeavesEveryModelUnchanged)
{
    const QByteArray expected = readAll(PROFILES_DEFAULT_CONFIG);
    copy(PROFILES_DEFAULT_CONFIG);
    QDomDocument original;
    ASSERT_TRUE(original.setContent(expected));
    int models = 0;
    for (QDomElement section = original.documentElement().firstChildElement(); !section.isNull();
         section = section.nextSiblingElement(), ++models) {
        load(section.tagName());
        save();
        ASSERT_EQ(readAll(path()), expected) << section.tagName().toStdString();
    }
    EXPECT_GE(models, 50);
}

// save/NAME.edits: "SECTION FIELD=VALUE" or "SECTION apps=PATH..." lines. Each section of
// NAME.in.xml is loaded, edited and saved in turn; NAME.out.xml is the file then.
TEST_F(SaveFile, StoresWhatTheRecordOwnsAndNothingElse)
{
    const QStringList cases = QDir(testData("save")).entryList({"*.edits"});
    ASSERT_EQ(cases.size(), 2);
    for (const QString &name : cases) {
        SCOPED_TRACE(name.toStdString());
        const QString stem = testData("save/" + name.section('.', 0, 0));
        copy(stem + ".in.xml");
        QString model;
        for (const QString &line : QString(readAll(stem + ".edits")).split('\n')) {
            if (line.isEmpty() || line.startsWith('#'))
                continue;
            if (line.section(' ', 0, 0) != model) {
                if (!model.isEmpty())
                    save();
                model = line.section(' ', 0, 0);
                load(model);
            }
            if (!line.section(' ', 1).startsWith("apps=")) {
                FieldSetter setter(line.section(' ', 1));
                visitRecord(setter, *data);
                EXPECT_TRUE(setter.found()) << line.toStdString();
                continue;
            }
            qDeleteAll(apps);
            apps.clear();
            for (const QString &appPath : line.section('=', 1).split(' ', Qt::SkipEmptyParts)) {
                auto *node = apps.insert(appPath, new _stAppConfigNode{}).value();
                node->Key[0].id = 1;
                copyTextField(node->Key[0].func, "k" + appPath);
            }
        }
        save();
        expectGolden(readAll(path()), stem + ".out.xml");
    }
}

TEST_F(SaveFile, FailedSaveKeepsTheOldFile)
{
    const QByteArray valid = "<Config><QTB0610><DeviceInfo><DeviceCurPenID>0</DeviceCurPenID>"
                             "</DeviceInfo><Common/><CommonAPP/><Apps/></QTB0610></Config>";
    // Not parseable, no section, no file, a folder in its place; a file written past its size
    // limit fails like a full disk, for root too; with the temporary file's suffix, a long
    // name no longer fits in a folder entry.
    const struct {
        QByteArray content;
        rlim_t sizeLimit;
        int nameLength;
    } cases[] = {
        {"<Config><QTB0610>", RLIM_INFINITY, 10},
        {"<Config><QTB0610W><DeviceInfo/></QTB0610W></Config>", RLIM_INFINITY, 10},
        {{}, RLIM_INFINITY, 10},
        {"<dir>", RLIM_INFINITY, 10},
        {valid, 16, 10},
        {valid, RLIM_INFINITY, 250},
    };
    copyTextField(data->szPidName, "QTB0610");
    data->DeviceCurPenID = 3;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit saved{};
    getrlimit(RLIMIT_FSIZE, &saved);
    for (const auto &row : cases) {
        SCOPED_TRACE(row.content.toStdString() + std::to_string(row.sizeLimit));
        ASSERT_TRUE(QDir(dir.path()).removeRecursively() && QDir().mkpath(dir.path()));
        QFile file(dir.filePath(QString(row.nameLength, 'c')));
        if (row.content == "<dir>")
            ASSERT_TRUE(QDir().mkdir(file.fileName()));
        else if (!row.content.isNull() && file.open(QIODevice::WriteOnly))
            file.write(row.content);
        file.close();
        // What the folder holds: its names and the file's content.
        const auto state = [&] {
            return QDir(dir.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).join('/') +
                   readAll(file.fileName());
        };
        const QString before = state();
        const rlimit limit{row.sizeLimit, saved.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        XMLHelp(file.fileName()).SaveConfig(data.get(), apps);
        setrlimit(RLIMIT_FSIZE, &saved);
        EXPECT_EQ(state(), before);
    }
    std::signal(SIGXFSZ, handler);
}

} // namespace
