#include "xmlhelp.h"

#include "profilesectionreader.h"
#include "profilesectionwriter.h"
#include "profiletags.h"
#include "textfield.h"

#include <QDebug>
#include <QDomDocument>
#include <QFile>
#include <QSaveFile>
#include <QTextStream>
#include <cstring>

namespace
{

// The device keeps eleven keys per group and the items of one wheel.
constexpr int kDeviceFileKeys = 11;

QDomElement textElement(QDomDocument &doc, const QString &tag, const QString &text)
{
    QDomElement element = doc.createElement(tag);
    setElementText(element, text);
    return element;
}

QDomElement numberedElement(QDomDocument &doc, const QString &tag, QString (*childTag)(int),
                            int children)
{
    QDomElement element = doc.createElement(tag);
    for (int i = 0; i < children; ++i)
        element.appendChild(doc.createElement(childTag(i)));
    return element;
}

QDomElement deviceKeyGroup(QDomDocument &doc, const stKeyGroup &group, int index)
{
    QDomElement element = numberedElement(doc, groupTag(index), keyTag, kDeviceFileKeys);
    writeKeyGroup(element, group, Values::All);
    return element;
}

QDomElement deviceRing(QDomDocument &doc, const stRingConfig &ring)
{
    QDomElement element = numberedElement(doc, "R", itemTag, kRingItemCount);
    element.setAttribute("id", ring.id);
    writeRingItems(element, ring);
    return element;
}

void readDeviceKeyGroup(const QDomElement &element, _stAppConfigNode &node)
{
    const int group = groupIndexFromTag(element.tagName());
    if (group >= 0)
        readKeyGroup(element, node.KeyGroup[group], nullptr);
}

// Applications of one section, linked in file order; a later record with
// the same path replaces the earlier one in the map and in the chain.
class AppChain
{
public:
    AppChain(stTablet_XMLData *data, QMap<QString, _stAppConfigNode *> &apps)
        : m_data(data), m_apps(apps)
    {
    }

    void append(_stAppConfigNode *node, int index)
    {
        if (!m_first) {
            qDebug() << "stAppConfigPtr init";
            m_first = node;
        } else {
            qDebug() << "stAppConfigPtr next" << index;
            m_data->stAppConfigPtr->next = node;
        }
        m_data->stAppConfigPtr = node;
    }

    void insert(_stAppConfigNode *node)
    {
        const QString key = QString::fromUtf8(node->path);
        _stAppConfigNode *replaced = m_apps.value(key, nullptr);
        m_apps.insert(key, node);
        if (replaced)
            unlink(replaced);
    }

private:
    void unlink(_stAppConfigNode *node)
    {
        if (m_first == node) {
            m_first = node->next;
        } else {
            _stAppConfigNode *previous = m_first;
            while (previous && previous->next != node)
                previous = previous->next;
            if (previous)
                previous->next = node->next;
        }
        delete node;
    }

    stTablet_XMLData *m_data;
    QMap<QString, _stAppConfigNode *> &m_apps;
    _stAppConfigNode *m_first = nullptr;
};

QDomElement findSection(const QDomElement &root, const QString &wanted)
{
    for (QDomElement section = root.firstChildElement(); !section.isNull();
         section = section.nextSiblingElement()) {
        if (section.tagName() == wanted)
            return section;
        qDebug() << section.tagName();
    }
    return {};
}

void readApps(const QDomElement &appsElement, stTablet_XMLData *data,
              QMap<QString, _stAppConfigNode *> &apps)
{
    ProfileSectionReader reader(data);
    AppChain chain(data, apps);
    qDebug() << "APPS Num:" << appsElement.childNodes().count();
    int index = 0;
    for (QDomElement app = appsElement.firstChildElement(); !app.isNull();
         app = app.nextSiblingElement(), ++index) {
        auto *node = new _stAppConfigNode{};
        chain.append(node, index);
        reader.readApp(app, node);
        chain.insert(node);
    }
}

void readSection(const QDomElement &section, stTablet_XMLData *data,
                 QMap<QString, _stAppConfigNode *> &apps)
{
    ProfileSectionReader reader(data);
    const QDomElement deviceInfo = section.firstChildElement();
    const QDomElement common = deviceInfo.nextSiblingElement();
    const QDomElement commonApp = common.nextSiblingElement();
    const QDomElement appList = commonApp.nextSiblingElement();
    reader.readDeviceInfo(deviceInfo);
    reader.readCommon(common);
    reader.readCommonApp(commonApp);
    readApps(appList, data, apps);
}

bool parseForSave(QFile &file, QDomDocument &document)
{
    QString message;
    int line = 0;
    int column = 0;
    if (!document.setContent(&file, false, &message, &line, &column)) {
        qDebug() << "parse file failed at line" << line << ",column" << column << "," << message;
        return false;
    }
    if (document.isNull()) {
        qDebug() << "document is null!";
        return false;
    }
    return true;
}

void writeSection(QDomDocument &document, QDomElement section, const stTablet_XMLData *data,
                  const QMap<QString, _stAppConfigNode *> &apps)
{
    ProfileSectionWriter writer(document, data);
    const QDomElement deviceInfo = section.firstChildElement();
    const QDomElement common = deviceInfo.nextSiblingElement();
    const QDomElement commonApp = common.nextSiblingElement();
    const QDomElement appList = commonApp.nextSiblingElement();
    writer.writeDeviceInfo(deviceInfo);
    writer.writeCommon(common);
    writer.writeCommonApp(commonApp);
    if (!appList.isNull())
        writer.writeApps(appList, apps);
}

// The new content goes to a temporary file beside the old one, which it
// replaces only once complete: a failed write or a crash never leaves a
// cut-off profile behind.
void replaceFile(const QString &fileName, const QDomDocument &document)
{
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text))
        return;
    QTextStream stream(&file);
    // The format is UTF-8, whatever the locale the process was started in.
    stream.setCodec("UTF-8");
    document.save(stream, 2, QDomNode::EncodingFromTextStream);
    stream.flush();
    // A failed flush is not always remembered by commit(), which would then
    // put a cut-off file in place: cancel explicitly.
    if (stream.status() != QTextStream::Ok || !file.flush())
        file.cancelWriting();
    if (!file.commit())
        qDebug() << "write file" << fileName << "failed, error:" << file.errorString();
}

} // namespace

XMLHelp::XMLHelp(const QString &fileName) : m_fileName(fileName) {}

int XMLHelp::LoadConfig(stTablet_XMLData *data, const char *pid,
                        QMap<QString, _stAppConfigNode *> &apps)
{
    if (!data || !pid) {
        qDebug() << "Function  LoadConfig Error:pTabletXMLData is Null";
        return 0;
    }
    if (m_fileName.isEmpty()) {
        qDebug() << "Function  LoadConfig Error:Filename is Null";
        return 0;
    }
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "Function  LoadConfig Error:"
                 << "open file" << m_fileName << "failed, error:" << file.errorString();
        return 0;
    }
    QDomDocument document;
    QString message;
    int line = 0;
    int column = 0;
    if (!document.setContent(&file, false, &message, &line, &column)) {
        qDebug() << "Function  LoadConfig Error:"
                 << "parse file failed at line" << line << ",column" << column << "," << message;
        return 0;
    }
    if (document.isNull()) {
        qDebug() << "Function  LoadConfig Error:"
                 << "document is null!";
        return 0;
    }
    const QDomElement root = document.documentElement();
    qDebug() << root.tagName();
    if (root.hasAttribute("version"))
        qDebug() << root.attribute("version");
    if (root.firstChildElement().isNull()) {
        qDebug() << "Function  LoadConfig Error:pidElement.firstChildElement is Null.";
        return 0;
    }
    const QDomElement section = findSection(root, QString::fromUtf8(pid));
    if (section.isNull()) {
        qDebug() << "can not find the pid xml.";
        return 0;
    }
    copyTextField(data->szPidName, pid);
    qDebug() << "find the xml Config:" << section.tagName();
    readSection(section, data, apps);
    return 1;
}

void XMLHelp::SaveConfig(stTablet_XMLData *data, QMap<QString, _stAppConfigNode *> &apps)
{
    if (!data)
        return;
    qDebug() << "open file" << m_fileName;
    QFile file(m_fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "open file" << m_fileName << "failed, error:" << file.errorString();
        return;
    }
    QDomDocument document;
    if (!parseForSave(file, document))
        return;
    file.close();
    const QDomElement section = findSection(document.documentElement(), fieldText(data->szPidName));
    if (section.isNull()) {
        qDebug() << "can not find the pid xml.";
        return;
    }
    qDebug() << "find the xml Config:" << section.tagName();
    writeSection(document, section, data, apps);
    replaceFile(m_fileName, document);
}

void XMLHelp::SetTextValue(QDomDocument doc, QDomNode node, QVariant value)
{
    const QString text = value.toString();
    QDomNode first = node.firstChild();
    if (text.isEmpty()) {
        if (!first.isNull())
            node.removeChild(first);
        return;
    }
    if (first.isNull()) {
        node.appendChild(doc.createTextNode(text));
        return;
    }
    first.setNodeValue(text);
}

QByteArray XMLHelp::SaveConfigToDevice(const char *name, _stAppConfigNode *node) const
{
    if (!node)
        return {};
    QDomDocument doc;
    doc.appendChild(doc.createProcessingInstruction("xml", "version=\"1.0\" encoding=\"UTF-8\""));
    QDomElement root = doc.createElement("QRM07App");
    doc.appendChild(root);
    root.appendChild(textElement(doc, "path", QString::fromLatin1(name)));
    CreateFileNotesNode(doc, root, node);
    return doc.toByteArray(1);
}

void XMLHelp::CreateFileNotesNode(QDomDocument &doc, QDomElement &root,
                                  _stAppConfigNode *node) const
{
    root.appendChild(textElement(doc, "SelectID", QString::number(node->SelectID)));
    for (int group = 0; group < kKeyGroupCount; ++group)
        root.appendChild(deviceKeyGroup(doc, node->KeyGroup[group], group));
    root.appendChild(deviceRing(doc, node->Ring[0]));
}

// Neither "path" nor the wheel's own "id" is read: both stay zero.
bool XMLHelp::ReadDeviceConfigFileToAppConfig(QByteArray data, _stAppConfigNode &node)
{
    memset(&node, 0, sizeof node);
    QDomDocument document;
    QString message;
    int line = 0;
    int column = 0;
    if (!document.setContent(data, false, &message, &line, &column)) {
        qDebug() << "parse file failed at line" << line << ",column" << column << "," << message;
        return false;
    }
    if (document.isNull()) {
        qDebug() << "document is null!";
        return false;
    }
    for (QDomElement child = document.documentElement().firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString tag = child.tagName();
        if (tag.contains('K'))
            readDeviceKeyGroup(child, node);
        else if (tag == "SelectID")
            node.SelectID = child.text().toShort(nullptr, 10);
        else if (tag == "R")
            readRingItems(child, node.Ring[0]);
    }
    return true;
}
