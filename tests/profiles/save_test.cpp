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
    void load(const char *pid)
    {
        *data = {};
        ASSERT_EQ(XMLHelp(path()).LoadConfig(data.get(), pid, apps), 1) << pid;
    }
    void save() { XMLHelp(path()).SaveConfig(data.get(), apps); }
    void setApps(const QStringList &paths)
    {
        qDeleteAll(apps);
        apps.clear();
        for (const QString &appPath : paths) {
            auto *node = new _stAppConfigNode{};
            node->Key[0].id = 1;
            copyTextField(node->Key[0].func, "k" + appPath);
            apps.insert(appPath, node);
        }
    }
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
    ASSERT_TRUE(original.setContent(readAll(PROFILES_DEFAULT_CONFIG)));
    int models = 0;
    for (QDomElement section = original.documentElement().firstChildElement(); !section.isNull();
         section = section.nextSiblingElement(), ++models) {
        load(section.tagName().toUtf8().constData());
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
                load(model.toUtf8().constData());
            }
            if (line.section(' ', 1).startsWith("apps=")) {
                setApps(line.section('=', 1).split(' ', Qt::SkipEmptyParts));
                continue;
            }
            FieldSetter setter(line.section(' ', 1));
            visitRecord(setter, *data);
            EXPECT_TRUE(setter.found()) << line.toStdString();
        }
        save();
        expectGolden(readAll(path()), stem + ".out.xml");
    }
}

// What the folder holds: each name with its content, "<dir>" for a folder.
QMap<QString, QByteArray> snapshot(const QString &folder)
{
    QMap<QString, QByteArray> entries;
    for (const QFileInfo &info :
         QDir(folder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot))
        entries.insert(info.fileName(), info.isDir() ? "<dir>" : readAll(info.filePath()));
    return entries;
}

TEST_F(SaveFile, FailedSaveKeepsTheOldFile)
{
    const char *valid = "<Config><QTB0610><DeviceInfo><DeviceCurPenID>0</DeviceCurPenID>"
                        "</DeviceInfo><Common/><CommonAPP/><Apps/></QTB0610></Config>";
    // With the temporary file's suffix, a long name no longer fits in a folder entry; a file
    // written past its size limit fails like a full disk, for root too.
    const struct {
        const char *name;
        QString fileName;
        const char *content; // nullptr: no file
        rlim_t sizeLimit;
    } cases[] = {
        {"not parseable", "config.xml", "<Config><QTB0610>", RLIM_INFINITY},
        {"no section", "config.xml", "<Config><QTB0610W><DeviceInfo/></QTB0610W></Config>",
         RLIM_INFINITY},
        {"no file", "config.xml", nullptr, RLIM_INFINITY},
        {"a folder in its place", "config.xml", "<dir>", RLIM_INFINITY},
        {"disk full", "config.xml", valid, 16},
        {"no room for the temporary name", QString(250, 'c'), valid, RLIM_INFINITY},
    };
    copyTextField(data->szPidName, "QTB0610");
    data->DeviceCurPenID = 3;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(QDir(dir.path()).removeRecursively());
        ASSERT_TRUE(QDir().mkpath(dir.path()));
        QFile file(dir.filePath(row.fileName));
        if (row.content == QByteArray("<dir>"))
            ASSERT_TRUE(QDir().mkdir(file.fileName()));
        else if (row.content && file.open(QIODevice::WriteOnly))
            file.write(row.content);
        file.close();
        const QMap<QString, QByteArray> before = snapshot(dir.path());
        rlimit saved{};
        getrlimit(RLIMIT_FSIZE, &saved);
        const rlimit limit{row.sizeLimit, saved.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
        XMLHelp(file.fileName()).SaveConfig(data.get(), apps);
        setrlimit(RLIMIT_FSIZE, &saved);
        EXPECT_EQ(snapshot(dir.path()), before);
    }
    std::signal(SIGXFSZ, handler);
}

} // namespace
