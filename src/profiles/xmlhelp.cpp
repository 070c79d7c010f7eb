#include "xmlhelp.h"

#include "profilesectionreader.h"
#include "textfield.h"

#include <QDebug>
#include <QDomDocument>
#include <QFile>

namespace
{

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

QDomElement findSection(const QDomElement &root, const char *pid)
{
    const QString wanted = QString::fromUtf8(pid);
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
    const QDomElement section = findSection(root, pid);
    if (section.isNull()) {
        qDebug() << "can not find the pid xml.";
        return 0;
    }
    copyTextField(data->szPidName, pid);
    qDebug() << "find the xml Config:" << section.tagName();
    readSection(section, data, apps);
    return 1;
}
