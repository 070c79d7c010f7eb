#include "xmlhelp.h"

#include <QDomDocument>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>

namespace
{

std::unique_ptr<_stAppConfigNode> emptyNode()
{
    return std::make_unique<_stAppConfigNode>();
}

// What the device keeps: the selection, eleven keys of four groups and the
// items of the first wheel.
std::unique_ptr<_stAppConfigNode> editedNode()
{
    auto node = emptyNode();
    strcpy(node->path, "/usr/bin/krita");
    node->SelectID = 2;
    node->KeyGroup[0].bEnable = 1;
    node->KeyGroup[3].bEnable = 1;
    for (int g = 0; g < kKeyGroupCount; ++g) {
        for (int k = 0; k < kKeyCount; ++k) {
            stKeyConfig &key = node->KeyGroup[g].Key[k];
            key.id = static_cast<int16_t>(g * 20 + k + 1);
            key.Show = k % 2;
            key.Actid = static_cast<int16_t>(k + 100);
            key.Motid = static_cast<int16_t>(g);
            snprintf(key.func, sizeof key.func, "1|k%d.%d|<&>\"|\u4e2d", g, k);
        }
    }
    node->KeyGroup[1].Key[4].id = 0;  // written without its text
    node->KeyGroup[1].Key[5].id = -3; // written with its text, read without it
    node->Ring[0].id = 5;
    node->Ring[0].Item[0] = {"3|Zoom|1", 2};
    node->Ring[0].Item[1] = {"only for id 2", 1};
    node->Ring[0].Item[3] = {"3|Zoom|2", 2};
    node->Ring[1].Item[0] = {"second wheel", 2};
    node->Pen[0].PenBtn[0].id = 1;
    node->Key[0].id = 9;
    return node;
}

// editedNode() as the device gives it back, worked out from the format: no path, the first
// eleven keys, text only for ids above 0, the first wheel's items without its id.
std::unique_ptr<_stAppConfigNode> expectedReadBack()
{
    auto node = editedNode();
    memset(node->path, 0, sizeof node->path);
    for (stKeyGroup &group : node->KeyGroup)
        memset(&group.Key[11], 0, sizeof group.Key - 11 * sizeof group.Key[0]);
    memset(node->KeyGroup[1].Key[4].func, 0, kFuncSize);
    memset(node->KeyGroup[1].Key[5].func, 0, kFuncSize);
    node->Ring[0].id = 0;
    memset(node->Ring[0].Item[1].func, 0, kFuncSize);
    memset(&node->Ring[1], 0, sizeof node->Ring[1]);
    memset(node->Pen, 0, sizeof node->Pen);
    memset(node->Key, 0, sizeof node->Key);
    return node;
}

TEST(DeviceFile, ReadsBackWhatTheDeviceKeeps)
{
    const auto edited = editedNode();
    const QByteArray file = XMLHelp("").SaveConfigToDevice("", edited.get());
    auto read = emptyNode();
    ASSERT_TRUE(XMLHelp::ReadDeviceConfigFileToAppConfig(file, *read));
    const auto expected = expectedReadBack();
    EXPECT_EQ(read->SelectID, 2);
    EXPECT_STREQ(read->KeyGroup[3].Key[10].func, expected->KeyGroup[3].Key[10].func);
    EXPECT_EQ(read->KeyGroup[3].Key[11].id, 0) << "the twelfth key is not stored";
    EXPECT_EQ(read->Ring[0].id, 0) << "the wheel's id is written but not read";
    EXPECT_STREQ(read->path, "");
    EXPECT_EQ(memcmp(read.get(), expected.get(), sizeof *read), 0);
}

TEST(DeviceFile, HasTheDevicesLayout)
{
    const auto edited = editedNode();
    const QByteArray file = XMLHelp("").SaveConfigToDevice("QRM07", edited.get());
    const QList<QByteArray> lines = file.split('\n');
    ASSERT_GT(lines.size(), 4);
    EXPECT_EQ(lines[0], "<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    EXPECT_EQ(lines[1], "<QRM07App>");
    EXPECT_EQ(lines[2], " <path>QRM07</path>");
    EXPECT_EQ(lines[3], " <SelectID>2</SelectID>");
    EXPECT_TRUE(lines[5].startsWith("  <K1 ")) << lines[5].constData();

    QDomDocument document;
    ASSERT_TRUE(document.setContent(file));
    QStringList tags;
    for (QDomElement e = document.documentElement().firstChildElement(); !e.isNull();
         e = e.nextSiblingElement())
        tags << e.tagName();
    EXPECT_EQ(tags, QStringList({"path", "SelectID", "K", "K_1", "K_2", "K_3", "R"}));
    const QDomElement group = document.documentElement().firstChildElement("K_3");
    EXPECT_EQ(group.attribute("id"), "1");
    EXPECT_EQ(group.childNodes().count(), 11);
    EXPECT_EQ(group.lastChildElement().tagName(), "K11");
    const QDomElement key = group.firstChildElement();
    EXPECT_EQ(key.attribute("Show"), "0");
    EXPECT_EQ(key.attribute("Actid"), "100");
    EXPECT_EQ(key.attribute("Motid"), "3");
    const QDomElement ring = document.documentElement().firstChildElement("R");
    EXPECT_EQ(ring.attribute("id"), "5");
    EXPECT_EQ(ring.childNodes().count(), 4);
    EXPECT_EQ(ring.firstChildElement().text(), "3|Zoom|1");
    EXPECT_TRUE(ring.firstChildElement().nextSiblingElement().text().isEmpty());
}

TEST(DeviceFile, AnEmptyNameLeavesThePathEmpty)
{
    const auto node = emptyNode();
    const QByteArray file = XMLHelp("").SaveConfigToDevice("", node.get());
    EXPECT_EQ(file.split('\n').value(2), " <path/>");
    EXPECT_FALSE(file.contains('\0'));
    EXPECT_FALSE(file.contains('\xFF'));
}

struct HostileCase {
    const char *name;
    QByteArray file;
    bool parsed;
    std::function<void(const _stAppConfigNode &)> expect;
};

void PrintTo(const HostileCase &value, std::ostream *out)
{
    *out << value.name;
}

QByteArray repeated(const char *element, int count)
{
    QByteArray result;
    for (int i = 0; i < count; ++i)
        result += QByteArray(element).replace("%", QByteArray::number(i + 1));
    return result;
}

class HostileFile : public ::testing::TestWithParam<HostileCase>
{
};

// The node starts full of 0x55 bytes: a read first zeroes it, and writes
// outside the record's slots would show up next to them.
TEST_P(HostileFile, StaysInsideTheRecord)
{
    auto node = emptyNode();
    memset(node.get(), 0x55, sizeof *node);
    EXPECT_EQ(XMLHelp::ReadDeviceConfigFileToAppConfig(GetParam().file, *node), GetParam().parsed);
    EXPECT_EQ(node->path[0], '\0');
    EXPECT_EQ(node->next, nullptr);
    GetParam().expect(*node);
}

INSTANTIATE_TEST_SUITE_P(
    DeviceFile, HostileFile,
    ::testing::Values(
        HostileCase{"broken", "<QRM07App><K>", false,
                    [](const _stAppConfigNode &n) { EXPECT_EQ(n.SelectID, 0); }},
        HostileCase{"empty", "", false,
                    [](const _stAppConfigNode &n) { EXPECT_EQ(n.KeyGroup[0].bEnable, 0); }},
        HostileCase{"groupsBeyondFour",
                    "<QRM07App><K_4 id=\"1\"><K1 id=\"1\">x</K1></K_4><K_-1 id=\"1\"/>"
                    "<K_3 id=\"1\"><K1 id=\"4\">f</K1></K_3></QRM07App>",
                    true,
                    [](const _stAppConfigNode &n) {
                        EXPECT_EQ(n.KeyGroup[3].bEnable, 1);
                        EXPECT_EQ(n.KeyGroup[3].Key[0].id, 4);
                        EXPECT_STREQ(n.KeyGroup[3].Key[0].func, "f");
                        for (int g = 0; g < 3; ++g) {
                            EXPECT_EQ(n.KeyGroup[g].bEnable, 0);
                            EXPECT_EQ(n.KeyGroup[g].Key[0].id, 0);
                        }
                        EXPECT_EQ(n.SelectID, 0);
                    }},
        HostileCase{
            "moreKeysThanSlots",
            "<QRM07App><K_2 id=\"0\">" + repeated("<K% id=\"%\"/>", 45) + "</K_2></QRM07App>", true,
            [](const _stAppConfigNode &n) {
                EXPECT_EQ(n.KeyGroup[2].Key[39].id, 40);
                EXPECT_EQ(n.KeyGroup[3].bEnable, 0);
                EXPECT_EQ(n.KeyGroup[3].Key[0].id, 0);
            }},
        HostileCase{"moreWheelItemsThanSlots",
                    "<QRM07App><R id=\"-5\">" + repeated("<W% id=\"2\">w%</W%>", 6) +
                        "</R></QRM07App>",
                    true,
                    [](const _stAppConfigNode &n) {
                        EXPECT_STREQ(n.Ring[0].Item[3].func, "w4");
                        EXPECT_EQ(n.Ring[0].id, 0);
                        EXPECT_EQ(n.Ring[1].Item[0].id, 0);
                        EXPECT_EQ(n.Ring[1].Item[0].func[0], '\0');
                    }},
        HostileCase{"textLongerThanFields",
                    "<QRM07App><K><K1 id=\"1\">" + QByteArray(3000, 'a') +
                        "</K1></K><R><W1 id=\"2\">" + QByteArray(3000, 'b') +
                        "</W1></R></QRM07App>",
                    true,
                    [](const _stAppConfigNode &n) {
                        EXPECT_EQ(strnlen(n.KeyGroup[0].Key[0].func, kFuncSize), 1023u);
                        EXPECT_EQ(strnlen(n.Ring[0].Item[0].func, kFuncSize), 1023u);
                        EXPECT_EQ(n.KeyGroup[0].Key[0].Show, 0);
                        EXPECT_EQ(n.Ring[0].Item[0].id, 2);
                    }},
        HostileCase{
            "textOnlyWhereTheIdAllows",
            "<QRM07App><path>/bin/x</path><SelectID>-2</SelectID>"
            "<K><K1 id=\"0\">no</K1><K2 id=\"-1\">no</K2><K3 id=\"x\" Show=\"7\">no</K3></K>"
            "<R><W1 id=\"1\">no</W1></R></QRM07App>",
            true,
            [](const _stAppConfigNode &n) {
                EXPECT_EQ(n.SelectID, -2);
                EXPECT_STREQ(n.KeyGroup[0].Key[0].func, "");
                EXPECT_EQ(n.KeyGroup[0].Key[1].id, -1);
                EXPECT_STREQ(n.KeyGroup[0].Key[1].func, "");
                EXPECT_EQ(n.KeyGroup[0].Key[2].id, 0) << "invalid text is 0";
                EXPECT_EQ(n.KeyGroup[0].Key[2].Show, 1);
                EXPECT_STREQ(n.Ring[0].Item[0].func, "");
            }}),
    [](const auto &info) { return std::string(info.param.name); });

} // namespace
