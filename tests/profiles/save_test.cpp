#include "recordtext.h"
#include "xmlhelp.h"

#include <QTemporaryDir>

#include <csignal>
#include <functional>
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

// save/store.edits: "SECTION FIELD=VALUE" or "SECTION apps=PATH..." lines. Each section is loaded,
// edited and saved in turn: what the record owns is stored, actions, traits and areas are not,
// cleared functions leave empty elements, children past the records stay as they were.
TEST_F(SaveFile, StoresWhatTheRecordOwnsAndNothingElse)
{
    copy(testData("save/store.in.xml"));
    QString model;
    for (const QString &line : QString(readAll(testData("save/store.edits"))).split('\n')) {
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
    expectGolden(readAll(path()), testData("save/store.out.xml"));
}

// A file that is written past its end fails like a full disk, for root too.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &m_saved);
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = m_saved;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_saved);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_saved{};
    void (*m_handler)(int) = nullptr;
};

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
    const auto write = [this](const QString &name, const QByteArray &content) {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    };
    const QByteArray valid = "<Config><QTB0610><DeviceInfo><DeviceCurPenID>0</DeviceCurPenID>"
                             "</DeviceInfo><Common/><CommonAPP/><Apps/></QTB0610></Config>";
    // With the temporary file's suffix, the name no longer fits in a folder entry.
    const QString longName(250, 'c');
    const struct {
        const char *name;
        QString fileName;
        std::function<void()> prepare;
        bool diskFull;
    } cases[] = {
        {"not parseable", "config.xml", [&] { write("config.xml", "<Config><QTB0610>"); }, false},
        {"no section", "config.xml",
         [&] { write("config.xml", "<Config><QTB0610W><DeviceInfo/></QTB0610W></Config>"); },
         false},
        {"no file", "config.xml", [] {}, false},
        {"a folder in its place", "config.xml", [&] { ASSERT_TRUE(QDir().mkdir(path())); }, false},
        {"disk full", "config.xml", [&] { write("config.xml", valid); }, true},
        {"no room for the temporary name", longName, [&] { write(longName, valid); }, false},
    };
    copyTextField(data->szPidName, "QTB0610");
    data->DeviceCurPenID = 3;
    for (const auto &row : cases) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(QDir(dir.path()).removeRecursively());
        ASSERT_TRUE(QDir().mkpath(dir.path()));
        row.prepare();
        const QMap<QString, QByteArray> before = snapshot(dir.path());
        {
            std::unique_ptr<FileSizeLimit> limit(row.diskFull ? new FileSizeLimit(16) : nullptr);
            XMLHelp(dir.filePath(row.fileName)).SaveConfig(data.get(), apps);
        }
        EXPECT_EQ(snapshot(dir.path()), before);
    }
}

// No NUL in a field: the text ends with the field, not in the next one.
TEST_F(SaveFile, HostileRecordsAreReadWithinTheirFields)
{
    copy(testData("save/hostile.in.xml"));
    const char pid[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZABCD";
    static_assert(sizeof pid - 1 == kPidNameSize, "a name that fills the field");
    memcpy(data->szPidName, pid, kPidNameSize);
    data->DeviceControl = 0x4545;
    _stAppConfigNode &node = data->CommonAPP;
    node.Pen[0].PenBtn[1].id = 1;
    memset(node.Pen[0].PenBtn[1].func, 'a', kFuncSize);
    node.Pen[0].PenBtn[2].id = 0x4242;
    node.Key[0].id = 1;
    memset(node.Key[0].func, 'b', kFuncSize);
    node.Key[0].Show = 'X';
    node.Ring[0].Item[0].id = 2;
    memset(node.Ring[0].Item[0].func, 'c', kFuncSize);
    save();
    expectGolden(readAll(path()), testData("save/hostile.out.xml"));
}

} // namespace
