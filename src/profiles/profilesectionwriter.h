#pragma once

#include "settingsrecords.h"

#include <QDomDocument>
#include <QDomElement>
#include <QMap>
#include <QString>

// Puts the records back into one device section of the profile file, in
// place and in the reader's walk: only values the records own change, and
// every other element and attribute of the file stays as installed.
class ProfileSectionWriter
{
public:
    ProfileSectionWriter(QDomDocument document, const stTablet_XMLData *data);

    void writeDeviceInfo(QDomElement deviceInfo);
    void writeCommon(QDomElement common);
    void writeCommonApp(QDomElement commonApp);
    void writeApps(QDomElement appList, const QMap<QString, _stAppConfigNode *> &apps);

private:
    void writeProfile(QDomElement parent, const _stAppConfigNode &node);
    void writeApp(QDomElement app, const QString &path, const _stAppConfigNode &node);
    void writePen(QDomElement element, const stPenConfig &pen);
    void writeKeyElement(QDomElement element, const _stAppConfigNode &node);
    void writeRing(QDomElement element, const _stAppConfigNode &node);

    QDomElement appTemplate();
    QDomElement templateElement(const QString &tag, QString (*childTag)(int), int children);

    QDomDocument m_document;
    const stTablet_XMLData *m_data;
};
