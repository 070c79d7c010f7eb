#pragma once

#include "settingsrecords.h"

#include <QDomElement>
#include <QMap>
#include <QString>

// Reads one device's section of the shared profile file into its records.
class XMLHelp
{
public:
    explicit XMLHelp(const QString &fileName);

    int LoadConfig(stTablet_XMLData *data, const char *pid,
                   QMap<QString, _stAppConfigNode *> &apps);

    const QString &fileName() const { return m_fileName; }

private:
    QString m_fileName;
};
