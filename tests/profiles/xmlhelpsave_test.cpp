#include "textfield.h"
#include "xmlhelp.h"

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <functional>
#include <memory>
#include <sys/resource.h>

namespace
{

// Attributes sorted, since the DOM keeps them in no fixed order.
QString canonical(const QDomNode &node)
{
    if (node.isText())
        return node.nodeValue();
    const QDomElement element = node.toElement();
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i) {
        const QDomAttr attribute = map.item(i).toAttr();
        attributes << QString("%1=\"%2\"").arg(attribute.name(), attribute.value());
    }
    attributes.sort();
    QString inner;
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
        inner += canonical(child);
    QString open = "<" + element.tagName();
    if (!attributes.isEmpty())
        open += " " + attributes.join(' ');
    return inner.isEmpty() ? open + "/>" : open + ">" + inner + "</" + element.tagName() + ">";
}

QByteArray readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QDomDocument parse(const QString &path)
{
    QDomDocument document;
    document.setContent(readAll(path));
    return document;
}

// "QTB0610/Common/SC": the first element of each tag, from the root down.
QDomElement find(const QDomDocument &document, const QString &path)
{
    QDomElement element = document.documentElement();
    for (const QString &tag : path.split('/'))
        element = element.firstChildElement(tag);
    return element;
}

class SaveFile : public ::testing::Test
{
protected:
    void write(const QByteArray &content, const QString &path)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content);
    }
    void write(const QByteArray &content) { write(content, path()); }

    void writeSection(const QString &body, const QString &name = "QTB0610")
    {
        write(QString("<Config version=\"3.4.9\"><%1>%2</%1></Config>").arg(name, body).toUtf8());
    }

    void copyDefault()
    {
        ASSERT_TRUE(QFile::copy(PROFILES_DEFAULT_CONFIG, path()));
        QFile::setPermissions(path(), QFile::ReadOwner | QFile::WriteOwner);
    }

    int load(const char *pid = "QTB0610")
    {
        XMLHelp helper(path());
        return helper.LoadConfig(data.get(), pid, apps);
    }

    void save(const QString &fileName = {})
    {
        XMLHelp helper(fileName.isEmpty() ? path() : fileName);
        helper.SaveConfig(data.get(), apps);
    }

    void addApp(const QString &path)
    {
        auto *node = new _stAppConfigNode{};
        node->Key[0].id = 1;
        copyTextField(node->Key[0].func, ("k" + path).toUtf8().constData());
        apps.insert(path, node);
    }

    QString path() const { return dir.filePath("config.xml"); }

    void TearDown() override { qDeleteAll(apps); }

    QTemporaryDir dir;
    std::unique_ptr<stTablet_XMLData> data = std::make_unique<stTablet_XMLData>();
    QMap<QString, _stAppConfigNode *> apps;
};

TEST_F(SaveFile, WritesTheWholeFileIndentedByTwo)
{
    write("<?xml version=\"1.0\" encoding=\"UTF-8\"?><Config version=\"3.4.9\"><QTB0610>"
          "<DeviceInfo><DeviceKeyNum>6</DeviceKeyNum><DeviceCurPenID>0</DeviceCurPenID>"
          "</DeviceInfo><Common/><CommonAPP><K><K1 id=\"0\"/></K></CommonAPP><Apps/></QTB0610>"
          "<QTB0610W><Apps/></QTB0610W></Config>");
    ASSERT_EQ(load(), 1);
    data->DeviceCurPenID = 2;
    data->DeviceKeyNum = 9;
    data->CommonAPP.Key[0].id = 1;
    copyTextField(data->CommonAPP.Key[0].func, "1|Copy|29:0+46:0");
    save();
    EXPECT_EQ(readAll(path()), QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                          "<Config version=\"3.4.9\">\n"
                                          "  <QTB0610>\n"
                                          "    <DeviceInfo>\n"
                                          "      <DeviceKeyNum>6</DeviceKeyNum>\n"
                                          "      <DeviceCurPenID>2</DeviceCurPenID>\n"
                                          "    </DeviceInfo>\n"
                                          "    <Common/>\n"
                                          "    <CommonAPP>\n"
                                          "      <K>\n"
                                          "        <K1 id=\"1\">1|Copy|29:0+46:0</K1>\n"
                                          "      </K>\n"
                                          "    </CommonAPP>\n"
                                          "    <Apps/>\n"
                                          "  </QTB0610>\n"
                                          "  <QTB0610W>\n"
                                          "    <Apps/>\n"
                                          "  </QTB0610W>\n"
                                          "</Config>\n"));
}

// The generated file is already indented by two, so only the order of
// attributes may differ: the canonical text must be equal.
TEST_F(SaveFile, RoundTripLeavesEveryModelUnchanged)
{
    const QDomDocument original = parse(PROFILES_DEFAULT_CONFIG);
    const QString expected = canonical(original.documentElement());
    ASSERT_FALSE(expected.isEmpty());
    copyDefault();
    int models = 0;
    for (QDomElement section = original.documentElement().firstChildElement(); !section.isNull();
         section = section.nextSiblingElement(), ++models) {
        const QByteArray pid = section.tagName().toUtf8();
        *data = {};
        ASSERT_EQ(load(pid.constData()), 1) << pid.constData();
        save();
        ASSERT_EQ(canonical(parse(path()).documentElement()), expected) << pid.constData();
    }
    EXPECT_GE(models, 50);
}

struct StoredValue {
    const char *name;
    const char *model;
    void (*change)(stTablet_XMLData &);
    const char *element;
    const char *attribute; // empty: the element's text
    const char *expected;
};

const StoredValue kStoredValues[] = {
    {"screen id", "QTB0610", [](stTablet_XMLData &d) { d.ScreenId = 1; }, "Common/ScreenMapping",
     "id", "1"},
    {"screen width", "QTB0610", [](stTablet_XMLData &d) { d.SW = 1920; }, "Common/ScreenMapping/SW",
     "", "1920"},
    {"orientation", "QTB0610", [](stTablet_XMLData &d) { d.Orientation = 2; },
     "Common/TabletPannel", "Orientation", "2"},
    {"quick keys off", "QTB0610", [](stTablet_XMLData &d) { d.DisableQuickKey = 1; },
     "Common/DisableQuickKey", "", "1"},
    {"calibration", "QTB0610", [](stTablet_XMLData &d) { d.fXLC = 0.25f; }, "Common/SC", "fXLC",
     "0.25"},
    {"orientation area not stored", "QTB0610", [](stTablet_XMLData &d) { d.OrientArea[0].W = 500; },
     "Common/OrientAreas/OrientArea", "W", "0"},
    {"key count is a trait", "QTB0610", [](stTablet_XMLData &d) { d.DeviceKeyNum = 9; },
     "DeviceInfo/DeviceKeyNum", "", "6"},
    {"pressure curve", "QTB0610", [](stTablet_XMLData &d) { d.CommonAPP.Pen[0].P1Y = 0.75f; },
     "CommonAPP/Pen1/P1Y", "", "0.75"},
    {"mouse speed", "QTB0610", [](stTablet_XMLData &d) { d.CommonAPP.Pen[0].Speed = 9; },
     "CommonAPP/Pen1/RelativeCoords", "Speed", "9"},
    {"pen button function", "QTB0610",
     [](stTablet_XMLData &d) {
         d.CommonAPP.Pen[0].PenBtn[2].id = 1;
         copyTextField(d.CommonAPP.Pen[0].PenBtn[2].func, "2|Calc|gnome-calculator");
     },
     "CommonAPP/Pen1/PenBtn2", "", "2|Calc|gnome-calculator"},
    {"pen button action not stored", "QTB0610",
     [](stTablet_XMLData &d) { d.CommonAPP.Pen[0].PenBtn[1].Actid = 3; }, "CommonAPP/Pen1/PenBtn1",
     "Actid", "207"},
    {"fourth pen by its tag", "QTB1560", [](stTablet_XMLData &d) { d.CommonAPP.Pen[3].P0 = 0.1f; },
     "CommonAPP/Pen4/P0", "", "0.1"},
    {"key function", "QTB0610",
     [](stTablet_XMLData &d) {
         d.CommonAPP.Key[1].id = 1;
         copyTextField(d.CommonAPP.Key[1].func, "1|Copy|29:0+46:0");
     },
     "CommonAPP/K/K2", "", "1|Copy|29:0+46:0"},
    {"key action not stored", "QTB0610", [](stTablet_XMLData &d) { d.CommonAPP.Key[2].Actid = 99; },
     "CommonAPP/K/K3", "Actid", "21"},
    {"selected group", "QTB0610", [](stTablet_XMLData &d) { d.CommonAPP.SelectID = 2; },
     "CommonAPP/SelectID", "", "2"},
    {"touch ring mode", "TQR4470", [](stTablet_XMLData &d) { d.CommonAPP.Ring[1].mode = 3; },
     "CommonAPP/TR", "mode", "3"},
    {"wheel function", "TQR4470",
     [](stTablet_XMLData &d) {
         d.CommonAPP.Ring[0].Item[1].id = 2;
         copyTextField(d.CommonAPP.Ring[0].Item[1].func, "1|Undo|29:0+44:0");
     },
     "CommonAPP/R/W2", "", "1|Undo|29:0+44:0"},
    {"wheel text only for custom", "TQR4470",
     [](stTablet_XMLData &d) {
         d.CommonAPP.Ring[0].Item[2].id = 1;
         copyTextField(d.CommonAPP.Ring[0].Item[2].func, "1|Undo|29:0+44:0");
     },
     "CommonAPP/R/W3", "", ""},
    {"roller speed", "QTB1560", [](stTablet_XMLData &d) { d.CommonAPP.Ring[1].Speed = 4; },
     "CommonAPP/PR", "Speed", "4"},
    {"roller mode not stored", "QTB1560", [](stTablet_XMLData &d) { d.CommonAPP.Ring[1].mode = 2; },
     "CommonAPP/PR", "mode", "0"},
    {"second wheel", "QTB1612", [](stTablet_XMLData &d) { d.CommonAPP.Ring[1].id = 3; },
     "CommonAPP/R2", "id", "3"},
    {"group enabled", "QRM07", [](stTablet_XMLData &d) { d.CommonAPP.KeyGroup[2].bEnable = 1; },
     "CommonAPP/K_2", "id", "1"},
    {"grouped key function", "QRM07",
     [](stTablet_XMLData &d) {
         d.CommonAPP.KeyGroup[1].Key[10].id = 1;
         copyTextField(d.CommonAPP.KeyGroup[1].Key[10].func, "1|a|30:0");
     },
     "CommonAPP/K_1/K11", "", "1|a|30:0"},
};

// Other sections must come out exactly as they went in.
TEST_F(SaveFile, StoresWhatTheRecordOwnsAndNothingElse)
{
    const QDomDocument original = parse(PROFILES_DEFAULT_CONFIG);
    copyDefault();
    for (const StoredValue &row : kStoredValues) {
        SCOPED_TRACE(row.name);
        *data = {};
        ASSERT_EQ(load(row.model), 1);
        row.change(*data);
        save();
        const QDomDocument saved = parse(path());
        const QDomElement element = find(saved, QString(row.model) + "/" + row.element);
        ASSERT_FALSE(element.isNull());
        const QString value = *row.attribute ? element.attribute(row.attribute) : element.text();
        EXPECT_EQ(value, row.expected);
        for (QDomElement section = original.documentElement().firstChildElement();
             !section.isNull(); section = section.nextSiblingElement()) {
            if (section.tagName() == row.model)
                continue;
            EXPECT_EQ(canonical(saved.documentElement().firstChildElement(section.tagName())),
                      canonical(section));
        }
        ASSERT_TRUE(QFile::remove(path()));
        copyDefault();
    }
}

TEST_F(SaveFile, ClearedFunctionsLeaveEmptyElements)
{
    writeSection("<DeviceInfo><DeviceRingNum>1</DeviceRingNum></DeviceInfo><Common/><CommonAPP>"
                 "<Pen1><PenBtn1 id=\"1\" Actid=\"207\">2|Calc|gnome-calculator</PenBtn1></Pen1>"
                 "<K><K1 id=\"1\">1|Copy|29:0+46:0</K1></K>"
                 "<R id=\"0\"><W1 id=\"2\">1|Undo|29:0+44:0</W1></R></CommonAPP><Apps/>");
    ASSERT_EQ(load(), 1);
    data->CommonAPP.Pen[0].PenBtn[1].id = 0;
    data->CommonAPP.Key[0].id = 0;
    data->CommonAPP.Ring[0].Item[0].id = 0;
    save();
    const QDomDocument saved = parse(path());
    for (const char *element : {"CommonAPP/Pen1/PenBtn1", "CommonAPP/K/K1", "CommonAPP/R/W1"}) {
        const QDomElement cleared = find(saved, QString("QTB0610/") + element);
        EXPECT_EQ(cleared.attribute("id"), "0") << element;
        EXPECT_FALSE(cleared.hasChildNodes()) << element;
    }
}

const char *const kFilledTemplate =
    "<Apps><app id=\"0\" name=\"0\"><path>/usr/bin/gimp</path>"
    "<Pen><PenBtn0 id=\"0\"/><PenBtn1 id=\"0\"/><PenBtn2 id=\"0\"/><P0>0</P0><P1X>0</P1X>"
    "<P1Y>0</P1Y><P2>0</P2><TablePC>0</TablePC><RelativeCoords Speed=\"0\">0</RelativeCoords>"
    "</Pen><K id=\"0\"><K1 id=\"1\">k/usr/bin/gimp</K1><K2 id=\"0\"/><K3 id=\"0\"/><K4 id=\"0\"/>"
    "<K5 id=\"0\"/><K6 id=\"0\"/><K7 id=\"0\"/><K8 id=\"0\"/></K><R id=\"0\"><W1 id=\"0\"/>"
    "<W2 id=\"0\"/><W3 id=\"0\"/><W4 id=\"0\"/><W5 id=\"0\"/></R><TR id=\"0\" mode=\"0\">"
    "<W1 id=\"0\"/><W2 id=\"0\"/><W3 id=\"0\"/><W4 id=\"0\"/><W5 id=\"0\"/></TR></app></Apps>";

struct AppsCase {
    const char *name;
    const char *appsBody;
    QStringList paths;
    const char *expected;
};

TEST_F(SaveFile, AppsFollowTheMap)
{
    const AppsCase cases[] = {
        {"empty map removes every app",
         "<app id=\"0\" name=\"a\"><path>/a</path></app><app id=\"1\"><path>/b</path></app>",
         {},
         "<Apps/>"},
        {"empty map removes the template too", "", {}, "<Apps/>"},
        {"template made and filled", "", {"/usr/bin/gimp"}, kFilledTemplate},
        {"extra apps go from the end",
         "<app id=\"5\" name=\"first\"><path>/x</path><K><K1 id=\"0\"/></K></app>"
         "<app name=\"second\"/><app name=\"third\"/>",
         {"/b"},
         "<Apps><app id=\"0\" name=\"first\"><path>/b</path><K><K1 id=\"1\">k/b</K1></K></app>"
         "</Apps>"},
        {"missing apps are clones of the first, in key order",
         "<app id=\"0\" name=\"first\"><path>/x</path><K><K1 id=\"0\"/><K2 id=\"0\"/></K></app>",
         {"/c", "/a", "/b"},
         "<Apps><app id=\"0\" name=\"first\"><path>/a</path><K><K1 id=\"1\">k/a</K1>"
         "<K2 id=\"0\"/></K></app><app id=\"1\" name=\"first\"><path>/b</path><K>"
         "<K1 id=\"1\">k/b</K1><K2 id=\"0\"/></K></app><app id=\"2\" name=\"first\">"
         "<path>/c</path><K><K1 id=\"1\">k/c</K1><K2 id=\"0\"/></K></app></Apps>"},
    };
    for (const AppsCase &row : cases) {
        SCOPED_TRACE(row.name);
        writeSection(QString("<DeviceInfo><DeviceRingNum>1</DeviceRingNum></DeviceInfo><Common/>"
                             "<CommonAPP/><Apps>%1</Apps>")
                         .arg(row.appsBody));
        ASSERT_EQ(load(), 1);
        qDeleteAll(apps);
        apps.clear();
        for (const QString &appPath : row.paths)
            addApp(appPath);
        save();
        EXPECT_EQ(canonical(find(parse(path()), "QTB0610/Apps")), row.expected);
    }
}

TEST_F(SaveFile, TemplateFollowsTheDevice)
{
    struct {
        int rings;
        int pens;
        const char *tags;
    } const cases[] = {
        {1, 1, "path Pen K R TR"},
        {0, 0, "path Pen K R TR"},
        {2, 2, "path Pen Pen1 K R R2"},
    };
    addApp("/a");
    for (const auto &row : cases) {
        writeSection("<DeviceInfo/><Common/><CommonAPP/><Apps/>");
        data->DeviceRingNum = static_cast<int16_t>(row.rings);
        data->DevicePenNum = static_cast<int16_t>(row.pens);
        copyTextField(data->szPidName, "QTB0610");
        save();
        const QDomDocument saved = parse(path());
        QStringList tags;
        for (QDomElement child = find(saved, "QTB0610/Apps/app").firstChildElement();
             !child.isNull(); child = child.nextSiblingElement())
            tags << child.tagName();
        EXPECT_EQ(tags.join(' '), row.tags) << row.rings << " rings, " << row.pens << " pens";
    }
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

struct FailedSave {
    const char *name;
    QString fileName;
    std::function<void()> prepare;
    bool diskFull;
};

// What the folder holds: each name with its content, "<dir>" for a folder.
QMap<QString, QByteArray> snapshot(const QString &folder)
{
    QMap<QString, QByteArray> entries;
    const QDir dir(folder);
    for (const QFileInfo &info : dir.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot))
        entries.insert(info.fileName(), info.isDir() ? "<dir>" : readAll(info.filePath()));
    return entries;
}

TEST_F(SaveFile, FailedSaveKeepsTheOldFile)
{
    const QByteArray valid = "<Config><QTB0610><DeviceInfo><DeviceCurPenID>0</DeviceCurPenID>"
                             "</DeviceInfo><Common/><CommonAPP/><Apps/></QTB0610></Config>";
    // With the temporary file's suffix, the name no longer fits in a folder entry.
    const QString longName = QString(250, 'c');
    const FailedSave cases[] = {
        {"not parseable", "config.xml", [&] { write("<Config><QTB0610><DeviceInfo>"); }, false},
        {"no section", "config.xml", [&] { writeSection("<DeviceInfo/>", "QTB0610W"); }, false},
        {"no file", "config.xml", [] {}, false},
        {"a folder in its place", "config.xml", [&] { ASSERT_TRUE(QDir().mkdir(path())); }, false},
        {"disk full", "config.xml", [&] { write(valid); }, true},
        {"no room for the temporary name", longName, [&] { write(valid, dir.filePath(longName)); },
         false},
    };
    copyTextField(data->szPidName, "QTB0610");
    data->DeviceCurPenID = 3;
    for (const FailedSave &row : cases) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(QDir(dir.path()).removeRecursively());
        ASSERT_TRUE(QDir().mkpath(dir.path()));
        row.prepare();
        const QMap<QString, QByteArray> before = snapshot(dir.path());
        {
            std::unique_ptr<FileSizeLimit> limit(row.diskFull ? new FileSizeLimit(16) : nullptr);
            save(dir.filePath(row.fileName));
        }
        EXPECT_EQ(snapshot(dir.path()), before);
    }
}

// No NUL in a field: the text ends with the field, not in the next one.
TEST_F(SaveFile, HostileRecordsAreReadWithinTheirFields)
{
    const char pid[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZABCD";
    static_assert(sizeof pid - 1 == kPidNameSize, "a name that fills the field");
    writeSection("<DeviceInfo/><Common/><CommonAPP><Pen1><PenBtn1 id=\"0\"/></Pen1>"
                 "<K><K1 id=\"0\"/></K><R id=\"0\"><W1 id=\"0\"/></R></CommonAPP><Apps/>",
                 pid);
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
    const QDomDocument saved = parse(path());
    const QString section = QString(pid) + "/CommonAPP/";
    EXPECT_EQ(find(saved, section + "Pen1/PenBtn1").text(), QString(kFuncSize, 'a'));
    EXPECT_EQ(find(saved, section + "K/K1").text(), QString(kFuncSize, 'b'));
    EXPECT_EQ(find(saved, section + "R/W1").text(), QString(kFuncSize, 'c'));
}

// Children the records have no room for are left as installed.
TEST_F(SaveFile, ElementsPastTheRecordsStayAsInstalled)
{
    writeSection("<DeviceInfo><DeviceRingNum>1</DeviceRingNum></DeviceInfo><Common/><CommonAPP>"
                 "<R id=\"0\"><W1 id=\"0\"/><W2 id=\"0\"/><W3 id=\"0\"/><W4 id=\"0\"/>"
                 "<W5 id=\"2\">keep</W5></R><Pen9><P0>0.3</P0></Pen9></CommonAPP><Apps/>");
    ASSERT_EQ(load(), 1);
    data->CommonAPP.Ring[0].Item[3].id = 1;
    data->CommonAPP.Pen[7].P0 = 0.5f;
    save();
    const QDomDocument saved = parse(path());
    EXPECT_EQ(find(saved, "QTB0610/CommonAPP/R/W4").attribute("id"), "1");
    EXPECT_EQ(canonical(find(saved, "QTB0610/CommonAPP/R/W5")), "<W5 id=\"2\">keep</W5>");
    EXPECT_EQ(find(saved, "QTB0610/CommonAPP/Pen9/P0").text(), "0.3");
}

} // namespace
