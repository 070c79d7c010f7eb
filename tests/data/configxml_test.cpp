#include "zelkdevice.h"

#include <QDomDocument>
#include <QFile>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <QTextStream>
#include <gtest/gtest.h>

namespace
{

QByteArray readConfig()
{
    QFile file(QStringLiteral(DATA_TEST_CONFIG_XML));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QVector<QDomElement> childrenOf(const QDomElement &parent)
{
    QVector<QDomElement> out;
    for (QDomElement e = parent.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
        out.append(e);
    return out;
}

QStringList tagsOf(const QDomElement &parent)
{
    QStringList out;
    for (const QDomElement &e : childrenOf(parent))
        out.append(e.tagName());
    return out;
}

int intText(const QDomElement &parent, const QString &tag)
{
    bool ok = false;
    const int value = parent.firstChildElement(tag).text().toInt(&ok);
    EXPECT_TRUE(ok) << qPrintable(tag) << " is not a number";
    return value;
}

bool hasAttributes(const QDomElement &e, const QStringList &names)
{
    for (const QString &name : names) {
        if (!e.hasAttribute(name))
            return false;
    }
    return true;
}

QString sectionName(const QDomElement &section)
{
    return section.tagName();
}

uint16_t catalogueTypeOf(const QString &name)
{
    for (const ZelkDevice &row : zelkDevList) {
        if (name == QLatin1String(row.name))
            return row.deviceType;
    }
    return 0;
}

QString catalogueNameOf(uint32_t pid)
{
    for (const ZelkDevice &row : zelkDevList) {
        if (row.pid == pid)
            return QLatin1String(row.name);
    }
    return QString();
}

// Everything a section's CommonAPP is checked against comes from its DeviceInfo.
struct Traits {
    int rings = 0;
    int keys = 0;
    int pens = 0;
    int trackPad = 0;
    int groupKeys = 0;
    int control = 0;
};

Traits traitsOf(const QDomElement &section)
{
    const QDomElement info = section.firstChildElement(QStringLiteral("DeviceInfo"));
    Traits t;
    t.rings = intText(info, QStringLiteral("DeviceRingNum"));
    t.keys = intText(info, QStringLiteral("DeviceKeyNum"));
    t.pens = intText(info, QStringLiteral("DevicePenNum"));
    t.trackPad = intText(info, QStringLiteral("DeviceTrackPad"));
    t.groupKeys = intText(info, QStringLiteral("SupportGroupKeys"));
    t.control = intText(info, QStringLiteral("DeviceControl"));
    return t;
}

class ConfigXml : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_text = readConfig();
        s_doc = new QDomDocument;
        s_parsed = s_doc->setContent(s_text);
    }
    static void TearDownTestSuite()
    {
        delete s_doc;
        s_doc = nullptr;
    }

    void SetUp() override { ASSERT_TRUE(s_parsed) << "config.xml does not parse"; }

    static QVector<QDomElement> sections() { return childrenOf(s_doc->documentElement()); }

    static QDomElement section(const QString &name)
    {
        return s_doc->documentElement().firstChildElement(name);
    }

    static QByteArray s_text;
    static QDomDocument *s_doc;
    static bool s_parsed;
};

QByteArray ConfigXml::s_text;
QDomDocument *ConfigXml::s_doc = nullptr;
bool ConfigXml::s_parsed = false;

QVector<QDomElement> penElements(const QDomElement &app)
{
    QVector<QDomElement> out;
    for (const QDomElement &e : childrenOf(app)) {
        if (e.tagName().contains(QLatin1String("Pen")))
            out.append(e);
    }
    return out;
}

QVector<QDomElement> keyElements(const QDomElement &app)
{
    QVector<QDomElement> out;
    for (const QDomElement &e : childrenOf(app)) {
        if (!e.tagName().contains(QLatin1String("Pen")) &&
            e.tagName() != QLatin1String("SelectID") && e.tagName().contains(QLatin1Char('K')))
            out.append(e);
    }
    return out;
}

void expectKeyList(const QDomElement &list, const Traits &traits, const QString &section)
{
    const QVector<QDomElement> keys = childrenOf(list);
    ASSERT_EQ(keys.size(), traits.keys) << qPrintable(section);
    QSet<int> motids;
    for (const QDomElement &key : keys) {
        EXPECT_TRUE(hasAttributes(key, {"id", "Motid", "Actid", "Show"})) << qPrintable(section);
        const int motid = key.attribute(QStringLiteral("Motid")).toInt();
        EXPECT_TRUE(motid >= 1 && motid <= 40) << qPrintable(section);
        EXPECT_FALSE(motids.contains(motid)) << qPrintable(section) << " repeats " << motid;
        motids.insert(motid);
        if (key.attribute(QStringLiteral("id")).toInt() > 0) {
            EXPECT_FALSE(key.text().isEmpty()) << qPrintable(section) << " custom key, no function";
        }
    }
}

void expectRing(const QDomElement &ring, const QString &section)
{
    ASSERT_FALSE(ring.isNull()) << qPrintable(section);
    EXPECT_TRUE(ring.hasAttribute(QStringLiteral("id"))) << qPrintable(section);
    const QVector<QDomElement> items = childrenOf(ring);
    EXPECT_EQ(items.size(), 4) << qPrintable(section) << " " << qPrintable(ring.tagName());
    for (const QDomElement &item : items)
        EXPECT_TRUE(item.hasAttribute(QStringLiteral("id"))) << qPrintable(section);
}

} // namespace

TEST_F(ConfigXml, StartsWithTheDeclarationAndCarriesTheVersion)
{
    EXPECT_TRUE(s_text.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
    EXPECT_EQ(s_doc->documentElement().attribute(QStringLiteral("version")),
              QStringLiteral("3.4.9"));
}

TEST_F(ConfigXml, HasOneSectionPerCatalogueNameAndNoOther)
{
    QSet<QString> catalogue;
    for (const ZelkDevice &row : zelkDevList)
        catalogue.insert(QLatin1String(row.name));
    QSet<QString> found;
    for (const QDomElement &s : sections()) {
        EXPECT_FALSE(found.contains(sectionName(s))) << "twice: " << qPrintable(sectionName(s));
        found.insert(sectionName(s));
    }
    EXPECT_EQ(found, catalogue);
}

TEST_F(ConfigXml, EverySectionHasTheFourBlocksInOrder)
{
    const QStringList blocks = {"DeviceInfo", "Common", "CommonAPP", "Apps"};
    for (const QDomElement &s : sections()) {
        EXPECT_EQ(tagsOf(s), blocks) << qPrintable(sectionName(s));
        EXPECT_FALSE(s.lastChildElement().hasChildNodes()) << qPrintable(sectionName(s));
    }
}

TEST_F(ConfigXml, DeviceInfoHoldsEveryTraitOnce)
{
    QStringList traits = {"DeviceRingNum",      "DeviceKeyNum",   "DevicePenType",
                          "DeviceControl",      "DeviceTrackPad", "SupportGroupKeys",
                          "DeviceKeyDirection", "DevicePenNum",   "PenMoveInTablet",
                          "DeviceCurPenID"};
    traits.sort();
    for (const QDomElement &s : sections()) {
        const QDomElement info = s.firstChildElement();
        QStringList tags = tagsOf(info);
        tags.sort();
        EXPECT_EQ(tags, traits) << qPrintable(sectionName(s));
        for (const QString &tag : tags)
            intText(info, tag);
    }
}

TEST_F(ConfigXml, CommonHasTheEightPositionsOfTheReader)
{
    const QStringList positions = {
        "ScreenMapping",   "TabletPannel", "DisableInfo", "DisableQuickKey",
        "DisablePressure", "DisableSlope", "OrientAreas", "SC"};
    for (const QDomElement &s : sections()) {
        const QDomElement common = s.firstChildElement().nextSiblingElement();
        ASSERT_EQ(tagsOf(common), positions) << qPrintable(sectionName(s));
        const QVector<QDomElement> blocks = childrenOf(common);
        EXPECT_TRUE(blocks[0].hasAttribute(QStringLiteral("id")));
        EXPECT_EQ(tagsOf(blocks[0]), QStringList({"SX", "SY", "SW", "SH"}));
        EXPECT_TRUE(blocks[1].hasAttribute(QStringLiteral("Orientation")));
        EXPECT_EQ(tagsOf(blocks[1]), QStringList({"TX", "TY", "TW", "TH"}));
        const QVector<QDomElement> areas = childrenOf(blocks[6]);
        EXPECT_EQ(areas.size(), 4) << qPrintable(sectionName(s));
        for (const QDomElement &area : areas)
            EXPECT_TRUE(hasAttributes(area, {"X", "Y", "W", "H"}));
    }
}

TEST_F(ConfigXml, CalibrationStartsAsIdentity)
{
    for (const QDomElement &s : sections()) {
        const QDomElement sc = s.firstChildElement(QStringLiteral("Common")).lastChildElement();
        for (const char *term : {"fKX", "fKY", "fXLC", "fYLC"}) {
            bool ok = false;
            EXPECT_EQ(sc.attribute(QLatin1String(term)).toFloat(&ok), 1.0f) << term;
            EXPECT_TRUE(ok) << qPrintable(sectionName(s)) << " " << term;
        }
    }
}

// Remotes have no pen.
TEST_F(ConfigXml, PensMatchThePenCount)
{
    int remotes = 0;
    const QStringList penChildren = {"PenBtn0", "PenBtn1", "PenBtn2",       "P0", "P1X", "P1Y",
                                     "P2",      "TablePC", "RelativeCoords"};
    for (const QDomElement &s : sections()) {
        const QVector<QDomElement> pens =
            penElements(s.firstChildElement(QStringLiteral("CommonAPP")));
        ASSERT_EQ(pens.size(), traitsOf(s).pens) << qPrintable(sectionName(s));
        if (catalogueTypeOf(sectionName(s)) == DeviceTypeRemote) {
            ++remotes;
            EXPECT_TRUE(pens.isEmpty()) << qPrintable(sectionName(s));
        }
        for (int i = 0; i < pens.size(); ++i) {
            EXPECT_EQ(pens[i].tagName(), QStringLiteral("Pen%1").arg(i + 1));
            EXPECT_EQ(tagsOf(pens[i]), penChildren) << qPrintable(sectionName(s));
            for (const QDomElement &button : childrenOf(pens[i]).mid(0, 3))
                EXPECT_TRUE(hasAttributes(button, {"id", "Actid"}));
            EXPECT_TRUE(pens[i].lastChildElement().hasAttribute(QStringLiteral("Speed")));
        }
    }
    EXPECT_GT(remotes, 0);
}

TEST_F(ConfigXml, KeysMatchTheKeyCount)
{
    const QStringList groups = {"K", "K_1", "K_2", "K_3"};
    for (const QDomElement &s : sections()) {
        const Traits traits = traitsOf(s);
        const QVector<QDomElement> lists =
            keyElements(s.firstChildElement(QStringLiteral("CommonAPP")));
        ASSERT_EQ(lists.size(), traits.groupKeys != 0 ? 4 : 1) << qPrintable(sectionName(s));
        bool anyEnabled = false;
        for (int g = 0; g < lists.size(); ++g) {
            if (traits.groupKeys != 0) {
                EXPECT_EQ(lists[g].tagName(), groups[g]);
                EXPECT_TRUE(lists[g].hasAttribute(QStringLiteral("id")));
                anyEnabled = anyEnabled || lists[g].attribute(QStringLiteral("id")).toInt() != 0;
            }
            expectKeyList(lists[g], traits, sectionName(s));
        }
        EXPECT_EQ(anyEnabled, traits.groupKeys != 0) << qPrintable(sectionName(s));
    }
}

TEST_F(ConfigXml, RingsMatchTheRingCount)
{
    for (const QDomElement &s : sections()) {
        const Traits traits = traitsOf(s);
        const QDomElement app = s.firstChildElement(QStringLiteral("CommonAPP"));
        const QString name = sectionName(s);
        EXPECT_EQ(!app.firstChildElement(QStringLiteral("R")).isNull(), traits.rings >= 1)
            << qPrintable(name);
        EXPECT_EQ(!app.firstChildElement(QStringLiteral("R2")).isNull(), traits.rings == 2)
            << qPrintable(name);
        EXPECT_EQ(!app.firstChildElement(QStringLiteral("TR")).isNull(), traits.trackPad != 0)
            << qPrintable(name);
        for (const QDomElement &ring : childrenOf(app)) {
            if (QStringList({"R", "R2", "TR", "PR"}).contains(ring.tagName()))
                expectRing(ring, name);
        }
        const QDomElement touch = app.firstChildElement(QStringLiteral("TR"));
        if (!touch.isNull()) {
            EXPECT_TRUE(touch.hasAttribute(QStringLiteral("mode"))) << qPrintable(name);
        }
        const QDomElement roller = app.firstChildElement(QStringLiteral("PR"));
        if (!roller.isNull()) {
            EXPECT_LE(traits.rings, 1) << qPrintable(name) << " roller past the rings";
            EXPECT_TRUE(touch.isNull()) << qPrintable(name) << " roller and touch pad collide";
        }
    }
}

TEST_F(ConfigXml, TheRemoteKeepsFourGroupsOfElevenKeysAndOneWheel)
{
    const QDomElement remote = section(QStringLiteral("QRM07"));
    ASSERT_FALSE(remote.isNull());
    const Traits traits = traitsOf(remote);
    EXPECT_NE(traits.groupKeys, 0);
    EXPECT_EQ(traits.keys, 11);
    EXPECT_EQ(traits.rings, 1);
}

TEST_F(ConfigXml, BrightnessCheckboxModelsHaveTouchPadsWithoutLightControl)
{
    for (const uint32_t pid : {0xA101u, 0xA102u, 0xA103u, 0xA104u}) {
        const QDomElement model = section(catalogueNameOf(pid));
        ASSERT_FALSE(model.isNull()) << std::hex << pid;
        EXPECT_NE(traitsOf(model).trackPad, 0) << std::hex << pid;
        EXPECT_EQ(traitsOf(model).control, 0) << std::hex << pid;
    }
}

// The profile writer saves through a UTF-8 text stream with the stream's encoding; QDom
// writes attributes in QHash order, so the comparison needs the generator's fixed seed.
TEST_F(ConfigXml, SavingTheParsedFileGivesTheSameText)
{
    qSetGlobalQHashSeed(0);
    QDomDocument doc;
    ASSERT_TRUE(doc.setContent(s_text));
    QByteArray saved;
    QTextStream stream(&saved, QIODevice::WriteOnly);
    stream.setCodec("UTF-8");
    doc.save(stream, 2, QDomNode::EncodingFromTextStream);
    stream.flush();
    qSetGlobalQHashSeed(-1);
    EXPECT_EQ(saved.toStdString(), s_text.toStdString());
}
