#include "xmlhelp.h"

#include <QTemporaryDir>
#include <QTextStream>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace
{

// One profile file in a temporary folder, read as a device would read it.
class ProfileFile : public ::testing::Test
{
protected:
    void write(const QString &content)
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(content.toUtf8());
    }

    void writeSection(const QString &body, const QString &name = "QTB0610")
    {
        write(QString("<Config version=\"3.4.9\"><%1>%2</%1></Config>").arg(name, body));
    }

    int load(const char *pid = "QTB0610")
    {
        XMLHelp helper(path());
        return helper.LoadConfig(data.get(), pid, apps);
    }

    QString path() const { return dir.filePath("config.xml"); }

    void TearDown() override { qDeleteAll(apps); }

    QTemporaryDir dir;
    std::unique_ptr<stTablet_XMLData> data = std::make_unique<stTablet_XMLData>();
    QMap<QString, _stAppConfigNode *> apps;
};

const char *const kDeviceInfo = "<DeviceInfo><DeviceRingNum>1</DeviceRingNum>"
                                "<DeviceKeyNum>8</DeviceKeyNum></DeviceInfo>";

QString sectionWith(const QString &commonApp, const QString &appsBody = {},
                    const QString &deviceInfo = kDeviceInfo)
{
    return deviceInfo + "<Common/><CommonAPP>" + commonApp + "</CommonAPP><Apps>" + appsBody +
           "</Apps>";
}

TEST_F(ProfileFile, FailuresReturnZero)
{
    XMLHelp unnamed("");
    EXPECT_EQ(unnamed.LoadConfig(data.get(), "QTB0610", apps), 0);
    XMLHelp helper(path());
    EXPECT_EQ(helper.LoadConfig(nullptr, "QTB0610", apps), 0);
    EXPECT_EQ(helper.LoadConfig(data.get(), nullptr, apps), 0);
    EXPECT_EQ(load(), 0) << "missing file";

    write("<Config><QTB0610><DeviceInfo></Config>");
    EXPECT_EQ(load(), 0) << "broken XML";
    write("");
    EXPECT_EQ(load(), 0) << "empty file";
    write("<Config version=\"1\"/>");
    EXPECT_EQ(load(), 0) << "no section at all";
    writeSection(sectionWith(""), "QTB0610W");
    EXPECT_EQ(load(), 0) << "other model only";
    EXPECT_STREQ(data->szPidName, "");
}

TEST_F(ProfileFile, FindsTheSectionByTagAmongOthers)
{
    write("<Config version=\"3.4.9\">"
          "<QTB0610><DeviceInfo><DeviceKeyNum>4</DeviceKeyNum></DeviceInfo></QTB0610>"
          "<QPD1600><DeviceInfo><DeviceKeyNum>12</DeviceKeyNum></DeviceInfo></QPD1600>"
          "</Config>");
    ASSERT_EQ(load("QPD1600"), 1);
    EXPECT_STREQ(data->szPidName, "QPD1600");
    EXPECT_EQ(data->DeviceKeyNum, 12);
}

TEST_F(ProfileFile, DeviceInfoFieldsAndPenCountDefault)
{
    writeSection("<DeviceInfo><DeviceRingNum>2</DeviceRingNum><DeviceKeyNum>8</DeviceKeyNum>"
                 "<DevicePenType>3</DevicePenType><DeviceControl>1</DeviceControl>"
                 "<DeviceTrackPad>1</DeviceTrackPad><SupportGroupKeys>0</SupportGroupKeys>"
                 "<DeviceKeyDirection>2</DeviceKeyDirection><PenMoveInTablet>5</PenMoveInTablet>"
                 "<DeviceCurPenID>1</DeviceCurPenID><Unknown>9</Unknown></DeviceInfo>");
    data->DevicePenNum = 7;
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->DeviceRingNum, 2);
    EXPECT_EQ(data->DeviceKeyNum, 8);
    EXPECT_EQ(data->DevicePenType, 3);
    EXPECT_EQ(data->DeviceControl, 1);
    EXPECT_EQ(data->DeviceTrackPad, 1);
    EXPECT_EQ(data->DeviceKeyDirection, 2);
    EXPECT_EQ(data->PenMoveInTablet, 5);
    EXPECT_EQ(data->DeviceCurPenID, 1);
    EXPECT_EQ(data->DevicePenNum, 1) << "missing DevicePenNum reads as one pen";
}

TEST_F(ProfileFile, EmptyDeviceInfoKeepsThePenCount)
{
    writeSection("<DeviceInfo/><Common/><CommonAPP/><Apps/>");
    data->DevicePenNum = 7;
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->DevicePenNum, 7);
}

TEST_F(ProfileFile, CommonIsReadByPosition)
{
    writeSection("<DeviceInfo/><Common>"
                 "<A id=\"1\"><SW>1920</SW><SX>10</SX><SY>20</SY><SH>1080</SH></A>"
                 "<B Orientation=\"3\"><TX>1</TX><TY>2</TY><TW>300</TW><TH>200</TH></B>"
                 "<C>1</C><D>2</D><E>3</E><F>4</F>"
                 "<Areas><a X=\"12.7\" Y=\"-3.9\" W=\"100\" H=\"50\"/><a X=\"1\" Y=\"2\" W=\"3\" "
                 "H=\"4\"/></Areas>"
                 "<SC fKX=\"1.5\" fKY=\"0.5\" fXLC=\"-12\" fYLC=\"7.25\"/>"
                 "</Common>");
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->ScreenId, 1);
    EXPECT_EQ(data->SX, 10);
    EXPECT_EQ(data->SY, 20);
    EXPECT_EQ(data->SW, 1920);
    EXPECT_EQ(data->SH, 1080);
    EXPECT_EQ(data->Orientation, 3);
    EXPECT_EQ(data->TX, 1);
    EXPECT_EQ(data->TY, 2);
    EXPECT_EQ(data->TW, 300);
    EXPECT_EQ(data->TH, 200);
    EXPECT_EQ(data->DisableInfo, 1);
    EXPECT_EQ(data->DisableQuickKey, 2);
    EXPECT_EQ(data->DisablePressure, 3);
    EXPECT_EQ(data->DisableSlope, 4);
    EXPECT_EQ(data->OrientArea[0].X, 12);
    EXPECT_EQ(data->OrientArea[0].Y, -3);
    EXPECT_EQ(data->OrientArea[0].W, 100);
    EXPECT_EQ(data->OrientArea[1].H, 4);
    EXPECT_FLOAT_EQ(data->fKX, 1.5f);
    EXPECT_FLOAT_EQ(data->fKY, 0.5f);
    EXPECT_FLOAT_EQ(data->fXLC, -12.f);
    EXPECT_FLOAT_EQ(data->fYLC, 7.25f);
}

struct CalibrationCase {
    const char *name;
    const char *eighth;
    float expected;
};

void PrintTo(const CalibrationCase &value, std::ostream *out)
{
    *out << value.name;
}

class Calibration : public ProfileFile, public ::testing::WithParamInterface<CalibrationCase>
{
};

TEST_P(Calibration, EighthElementDecides)
{
    writeSection(QString("<DeviceInfo/><Common><S/><T/><a>0</a><b>0</b><c>0</c><d>0</d><O/>%1"
                         "</Common>")
                     .arg(GetParam().eighth));
    ASSERT_EQ(load(), 1);
    EXPECT_FLOAT_EQ(data->fKX, GetParam().expected);
    EXPECT_FLOAT_EQ(data->fKY, GetParam().expected);
    EXPECT_FLOAT_EQ(data->fXLC, GetParam().expected);
    EXPECT_FLOAT_EQ(data->fYLC, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    ProfileFile, Calibration,
    ::testing::Values(
        CalibrationCase{"absent", "", 0.0f},
        CalibrationCase{"otherTag", "<Calib fKX=\"3\"/>", 1.0f},
        CalibrationCase{"sc", "<SC fKX=\"2\" fKY=\"2\" fXLC=\"2\" fYLC=\"2\"/>", 2.0f},
        CalibrationCase{"scUnparsable", "<SC fKX=\"x\" fKY=\"\" fXLC=\"1e\" fYLC=\"--\"/>", 0.0f}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ProfileFile, PensByTagNumber)
{
    writeSection(sectionWith("<Pen><P0>0.25</P0></Pen>"
                             "<Pen1><P1X>0.75</P1X></Pen1>"
                             "<Pen3><PenBtn0 id=\"1\" Actid=\"4\">1|x|a|b</PenBtn0>"
                             "<PenBtn1 id=\"0\" Actid=\"6\">ignored</PenBtn1>"
                             "<PenBtn2 id=\"1\" Actid=\"0\">2|run|/bin/true</PenBtn2>"
                             "<P1Y>0.4</P1Y><P2>0.9</P2><TablePC>5</TablePC>"
                             "<RelativeCoords Speed=\"7\">1</RelativeCoords></Pen3>"));
    ASSERT_EQ(load(), 1);
    const _stAppConfigNode &app = data->CommonAPP;
    EXPECT_FLOAT_EQ(app.Pen[0].P0, 0.25f) << "Pen fills pen 0";
    EXPECT_FLOAT_EQ(app.Pen[0].P1X, 0.75f) << "Pen1 fills pen 0 too";
    const stPenConfig &pen = app.Pen[2];
    EXPECT_EQ(pen.PenBtn[0].id, 1);
    EXPECT_EQ(pen.PenBtn[0].Actid, 4);
    EXPECT_STREQ(pen.PenBtn[0].func, "1|x|a|b");
    EXPECT_EQ(pen.PenBtn[1].Actid, 6);
    EXPECT_STREQ(pen.PenBtn[1].func, "") << "text read only for custom buttons";
    EXPECT_STREQ(pen.PenBtn[2].func, "2|run|/bin/true");
    EXPECT_FLOAT_EQ(pen.P1Y, 0.4f);
    EXPECT_FLOAT_EQ(pen.P2, 0.9f);
    EXPECT_EQ(pen.bTablePC, 1);
    EXPECT_EQ(pen.bRelativeCoords, 1);
    EXPECT_EQ(pen.Speed, 7);
}

TEST_F(ProfileFile, EraserEndWithoutActionErases)
{
    writeSection(sectionWith("<Pen1><PenBtn0 id=\"0\" Actid=\"0\"/></Pen1>"
                             "<Pen2><PenBtn0 id=\"0\" Actid=\"5\"/></Pen2>"
                             "<Pen3><P0>0</P0></Pen3>"));
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->CommonAPP.Pen[0].PenBtn[0].Actid, 27);
    EXPECT_EQ(data->CommonAPP.Pen[1].PenBtn[0].Actid, 5);
    EXPECT_EQ(data->CommonAPP.Pen[2].PenBtn[0].Actid, 27) << "no button element at all";
    EXPECT_EQ(data->CommonAPP.Pen[3].PenBtn[0].Actid, 0) << "pens not in the file are untouched";
}

TEST_F(ProfileFile, FlatKeysByPosition)
{
    writeSection(sectionWith("<SelectID>2</SelectID><K id=\"1\">"
                             "<K1 id=\"0\" Motid=\"1\" Actid=\"3\" Show=\"1\">not read</K1>"
                             "<Kx id=\"1\" Motid=\"2\" Actid=\"0\" Show=\"0\">1|Copy|29:37|</Kx>"
                             "<K9 id=\"-1\" Motid=\"9\" Actid=\"1\" Show=\"4\">neg</K9>"
                             "</K>"));
    ASSERT_EQ(load(), 1);
    const _stAppConfigNode &app = data->CommonAPP;
    EXPECT_EQ(app.SelectID, 2);
    EXPECT_EQ(app.Key[0].Motid, 1);
    EXPECT_EQ(app.Key[0].Actid, 3);
    EXPECT_EQ(app.Key[0].Show, 1);
    EXPECT_STREQ(app.Key[0].func, "");
    EXPECT_EQ(app.Key[1].id, 1);
    EXPECT_EQ(app.Key[1].Motid, 2);
    EXPECT_STREQ(app.Key[1].func, "1|Copy|29:37|");
    EXPECT_EQ(app.Key[2].Motid, 9);
    EXPECT_EQ(app.Key[2].Show, 1);
    EXPECT_STREQ(app.Key[2].func, "") << "only a positive id carries a function";
    EXPECT_EQ(app.KeyGroup[0].bEnable, 0) << "flat list attributes are not read";
}

TEST_F(ProfileFile, GroupedKeys)
{
    const QString info = "<DeviceInfo><SupportGroupKeys>1</SupportGroupKeys></DeviceInfo>";
    writeSection(sectionWith("<K id=\"1\"><K1 id=\"1\" Motid=\"1\">a</K1></K>"
                             "<K_1 id=\"0\"><K1 Motid=\"5\"/><K2 Motid=\"6\"/></K_1>"
                             "<K_3 id=\"2\"><K1 id=\"2\" Motid=\"7\">c</K1></K_3>"
                             "<K_9 id=\"1\"><K1 id=\"1\" Motid=\"8\">beyond</K1></K_9>"
                             "<K_-1 id=\"1\"><K1 Motid=\"8\"/></K_-1>",
                             {}, info));
    ASSERT_EQ(load(), 1);
    const _stAppConfigNode &app = data->CommonAPP;
    EXPECT_EQ(app.KeyGroup[0].bEnable, 1);
    EXPECT_STREQ(app.KeyGroup[0].Key[0].func, "a");
    EXPECT_EQ(app.KeyGroup[1].bEnable, 0);
    EXPECT_EQ(app.KeyGroup[1].Key[1].Motid, 6);
    EXPECT_EQ(app.KeyGroup[2].bEnable, 0);
    EXPECT_EQ(app.KeyGroup[3].bEnable, 1);
    EXPECT_STREQ(app.KeyGroup[3].Key[0].func, "c");
    EXPECT_EQ(app.Key[0].Motid, 0) << "grouped keys leave the flat list alone";
    EXPECT_EQ(app.SelectID, 0) << "a group beyond the four writes nowhere";
}

TEST_F(ProfileFile, WheelsAndRings)
{
    writeSection(sectionWith("<R id=\"3\"><W1 id=\"2\">1|Up|103:111|</W1><W2 id=\"1\">skip</W2>"
                             "<W3 id=\"0\"/><W4 id=\"4\"/><W5 id=\"2\">fifth</W5></R>"
                             "<TR id=\"1\" mode=\"2\"><W1 id=\"2\">tr</W1></TR>"
                             "<R2 id=\"5\"><W1 id=\"0\"/></R2>"
                             "<PR id=\"2\" mode=\"4\" Speed=\"6\"><W1 id=\"2\">pr</W1></PR>"));
    ASSERT_EQ(load(), 1);
    const _stAppConfigNode &app = data->CommonAPP;
    EXPECT_EQ(app.Ring[0].id, 3);
    EXPECT_STREQ(app.Ring[0].Item[0].func, "1|Up|103:111|");
    EXPECT_EQ(app.Ring[0].Item[1].id, 1);
    EXPECT_STREQ(app.Ring[0].Item[1].func, "") << "item id 1 leaves the function untouched";
    EXPECT_EQ(app.Ring[0].Item[3].id, 4);
    EXPECT_EQ(app.Ring[1].id, 2) << "TR, R2 and PR (one ring) fill ring 1 in file order";
    EXPECT_EQ(app.Ring[1].type, 3);
    EXPECT_EQ(app.Ring[1].mode, 4);
    EXPECT_EQ(app.Ring[1].Speed, 6);
    EXPECT_STREQ(app.Ring[1].Item[0].func, "pr");
}

TEST_F(ProfileFile, TouchRingAfterWheelTwo)
{
    writeSection(sectionWith("<R2 id=\"5\"/><TR id=\"1\" mode=\"2\"/>"));
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->CommonAPP.Ring[1].id, 1);
    EXPECT_EQ(data->CommonAPP.Ring[1].mode, 2);
    EXPECT_EQ(data->CommonAPP.Ring[1].type, 1);
}

TEST_F(ProfileFile, PenRollerSkippedWithTwoRings)
{
    const QString info = "<DeviceInfo><DeviceRingNum>2</DeviceRingNum></DeviceInfo>";
    writeSection(sectionWith("<PR id=\"2\" Speed=\"6\"><W1 id=\"2\">pr</W1></PR>", {}, info));
    ASSERT_EQ(load(), 1);
    for (const stRingConfig &ring : data->CommonAPP.Ring) {
        EXPECT_EQ(ring.type, 0);
        EXPECT_STREQ(ring.Item[0].func, "");
    }
}

TEST_F(ProfileFile, EmptyAppsLeaveMapAndCursor)
{
    writeSection(sectionWith(""));
    _stAppConfigNode earlier{};
    data->stAppConfigPtr = &earlier;
    ASSERT_EQ(load(), 1);
    EXPECT_TRUE(apps.isEmpty());
    EXPECT_EQ(data->stAppConfigPtr, &earlier);
}

TEST_F(ProfileFile, ApplicationsInheritFromCommon)
{
    const QString common =
        "<Pen1><PenBtn0 id=\"1\" Actid=\"0\">e</PenBtn0><PenBtn1 id=\"0\" Actid=\"11\"/></Pen1>"
        "<K><K1 id=\"1\" Motid=\"3\" Actid=\"4\" Show=\"1\">common</K1>"
        "<K2 id=\"0\" Motid=\"4\" Actid=\"5\" Show=\"1\"/></K>"
        "<TR id=\"0\" mode=\"2\"/>";
    const QString app = "<app id=\"0\" name=\"x\"><path>/usr/bin/krita</path>"
                        "<Pen1><PenBtn1 id=\"1\" Actid=\"99\">1|k|a|b</PenBtn1>"
                        "<PenBtn0 id=\"0\" Actid=\"0\"/><PenBtn2 id=\"3\"/></Pen1>"
                        "<SelectID SelectID=\"2\">3</SelectID>"
                        "<K><K1 id=\"0\" Motid=\"8\" Actid=\"8\" Show=\"0\">own</K1>"
                        "<K2 id=\"1\">mine</K2></K>"
                        "<TR id=\"1\" mode=\"7\"/></app>";
    writeSection(sectionWith(common, app));
    ASSERT_EQ(load(), 1);
    ASSERT_EQ(apps.size(), 1);
    const _stAppConfigNode *node = apps.value("/usr/bin/krita");
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(data->stAppConfigPtr, node);
    EXPECT_EQ(node->next, nullptr);
    const stPenConfig &pen = node->Pen[0];
    EXPECT_EQ(pen.PenBtn[1].id, 1);
    EXPECT_EQ(pen.PenBtn[1].Actid, 11) << "action numbers come from the common pen";
    EXPECT_STREQ(pen.PenBtn[1].func, "1|k|a|b");
    EXPECT_EQ(pen.PenBtn[0].id, 3) << "an empty eraser end takes the last button id read";
    EXPECT_EQ(pen.PenBtn[0].Actid, 0) << "and the common eraser action, not 27";
    EXPECT_EQ(data->CommonAPP.Pen[0].PenBtn[0].Actid, 0) << "a custom common eraser stays";
    EXPECT_EQ(node->SelectID, 2) << "the attribute, not the text";
    EXPECT_EQ(node->Key[0].id, 0);
    EXPECT_EQ(node->Key[0].Motid, 3);
    EXPECT_EQ(node->Key[0].Show, 1);
    EXPECT_STREQ(node->Key[0].func, "common") << "id 0 keeps the copied common function";
    EXPECT_EQ(node->Key[1].Actid, 5);
    EXPECT_STREQ(node->Key[1].func, "mine");
    EXPECT_EQ(node->Ring[1].mode, 2) << "touch ring mode follows the common one";
    EXPECT_EQ(node->Ring[1].type, 1);
    EXPECT_EQ(node->Ring[1].id, 1);
}

TEST_F(ProfileFile, ApplicationRollerSpeedLivesInTheModeByte)
{
    const QString info = "<DeviceInfo><DeviceRingNum>0</DeviceRingNum></DeviceInfo>";
    writeSection(sectionWith("<PR id=\"1\" mode=\"3\" Speed=\"4\"/>",
                             "<app><path>a</path><PR id=\"2\" mode=\"9\" Speed=\"300\"/></app>",
                             info));
    ASSERT_EQ(load(), 1);
    const _stAppConfigNode *node = apps.value("a");
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->Ring[0].type, 3);
    EXPECT_EQ(node->Ring[0].id, 2);
    EXPECT_EQ(node->Ring[0].mode, 300 & 0xFF);
    EXPECT_EQ(node->Ring[0].Speed, 0);
    EXPECT_EQ(data->CommonAPP.Ring[0].Speed, 4);
    EXPECT_EQ(data->CommonAPP.Ring[0].mode, 3);
}

TEST_F(ProfileFile, ApplicationsChainInFileOrderAndLaterPathWins)
{
    writeSection(sectionWith("", "<app><path>b</path><SelectID SelectID=\"1\"/></app>"
                                 "<app><path>a</path></app>"
                                 "<app><path>b</path><SelectID SelectID=\"3\"/></app>"));
    ASSERT_EQ(load(), 1);
    ASSERT_EQ(apps.size(), 2);
    EXPECT_EQ(apps.value("b")->SelectID, 3);
    EXPECT_EQ(apps.value("a")->next, apps.value("b"));
    EXPECT_EQ(data->stAppConfigPtr, apps.value("b"));
}

TEST_F(ProfileFile, UnparsableNumbersReadAsZero)
{
    writeSection(
        "<DeviceInfo><DeviceKeyNum>eight</DeviceKeyNum><DeviceRingNum>70000</DeviceRingNum>"
        "<DevicePenType> 2 </DevicePenType></DeviceInfo>"
        "<Common><S id=\"0x10\"><SX>1.5</SX></S></Common>"
        "<CommonAPP><Pen1><P0>high</P0><RelativeCoords Speed=\"fast\">x</RelativeCoords>"
        "</Pen1></CommonAPP>");
    data->DeviceKeyNum = 5;
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->DeviceKeyNum, 0);
    EXPECT_EQ(data->DeviceRingNum, 0);
    EXPECT_EQ(data->DevicePenType, 2);
    EXPECT_EQ(data->ScreenId, 0);
    EXPECT_EQ(data->SX, 0);
    EXPECT_FLOAT_EQ(data->CommonAPP.Pen[0].P0, 0.f);
    EXPECT_EQ(data->CommonAPP.Pen[0].Speed, 0);
}

// Hostile files: whatever they hold, the records are never written past.
TEST_F(ProfileFile, OversizedTextIsCutToTheField)
{
    const QString longText(5000, QChar(0x4E2D));
    writeSection(sectionWith(QString("<K><K1 id=\"1\">%1</K1></K><R><W1 id=\"2\">%1</W1></R>"
                                     "<Pen1><PenBtn1 id=\"1\">%1</PenBtn1></Pen1>")
                                 .arg(longText),
                             QString("<app><path>%1</path></app>").arg(longText)));
    ASSERT_EQ(load(), 1);
    const char *func = data->CommonAPP.Key[0].func;
    EXPECT_LT(strlen(func), size_t(kFuncSize));
    EXPECT_EQ(strlen(func) % 3, 0u) << "cut on a character boundary";
    EXPECT_TRUE(QString::fromUtf8(func).startsWith(longText.left(300)));
    EXPECT_LT(strlen(data->CommonAPP.Ring[0].Item[0].func), size_t(kFuncSize));
    EXPECT_LT(strlen(data->CommonAPP.Pen[0].PenBtn[1].func), size_t(kFuncSize));
    ASSERT_EQ(apps.size(), 1);
    EXPECT_LT(strlen(apps.first()->path), size_t(kFuncSize));
}

TEST_F(ProfileFile, TooManyChildrenAndOutOfRangeIndexesAreIgnored)
{
    QString keys;
    for (int i = 0; i < 500; ++i)
        keys += QString("<K%1 id=\"1\" Motid=\"%1\">f%1</K%1>").arg(i + 1);
    QString items;
    for (int i = 0; i < 50; ++i)
        items += QString("<W id=\"2\">w%1</W>").arg(i);
    QString areas;
    for (int i = 0; i < 20; ++i)
        areas += QString("<a X=\"%1\"/>").arg(i);
    writeSection("<DeviceInfo><DeviceRingNum>-3</DeviceRingNum></DeviceInfo>"
                 "<Common><S/><T/><a/><b/><c/><d/><O>" +
                 areas +
                 "</O><SC/><Extra/></Common>"
                 "<CommonAPP><K>" +
                 keys + "</K><R>" + items +
                 "</R>"
                 "<Pen9><P0>1</P0></Pen9><Pen0><P0>1</P0></Pen0><Pen-7><P0>1</P0></Pen-7>"
                 "<Pen99999999999><P0>1</P0></Pen99999999999><PR id=\"1\"/></CommonAPP>"
                 "<Apps><app><path>x</path><K>" +
                 keys + "</K><Pen12/></app></Apps>");
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->CommonAPP.Key[39].Motid, 40);
    EXPECT_STREQ(data->CommonAPP.Key[39].func, "f40");
    EXPECT_STREQ(data->CommonAPP.Ring[0].Item[3].func, "w3");
    EXPECT_EQ(data->OrientArea[3].X, 3);
    EXPECT_EQ(data->CommonAPP.SelectID, 0);
    for (const stPenConfig &pen : data->CommonAPP.Pen)
        EXPECT_FLOAT_EQ(pen.P0, 0.f);
    EXPECT_EQ(data->CommonAPP.Ring[0].type, 0) << "a negative ring count reaches no ring";
    ASSERT_EQ(apps.size(), 1);
    EXPECT_STREQ(apps.first()->Key[39].func, "f40");
}

TEST_F(ProfileFile, HugeAreaValuesAreClamped)
{
    writeSection("<DeviceInfo/><Common><S/><T/><a/><b/><c/><d/><O>"
                 "<a X=\"1e30\" Y=\"-1e30\" W=\"nan\" H=\"inf\"/></O></Common>");
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->OrientArea[0].X, 32767);
    EXPECT_EQ(data->OrientArea[0].Y, -32768);
    EXPECT_EQ(data->OrientArea[0].W, 0);
    EXPECT_EQ(data->OrientArea[0].H, 32767);
}

TEST_F(ProfileFile, SectionWithMissingBlocksStillLoads)
{
    writeSection("<DeviceInfo><DeviceKeyNum>3</DeviceKeyNum></DeviceInfo>");
    ASSERT_EQ(load(), 1);
    EXPECT_EQ(data->DeviceKeyNum, 3);
    EXPECT_TRUE(apps.isEmpty());
}

} // namespace
