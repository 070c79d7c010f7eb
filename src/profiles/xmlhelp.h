#pragma once

#include "settingsrecords.h"

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>
#include <QMap>
#include <QString>
#include <QVariant>

// Reads and saves one device's section of the shared profile file, and
// writes and reads the small profile file a device keeps in its memory.
class XMLHelp
{
public:
    explicit XMLHelp(const QString &fileName);

    int LoadConfig(stTablet_XMLData *data, const char *pid,
                   QMap<QString, _stAppConfigNode *> &apps);
    // Updates the section named by `szPidName` in place and replaces the file
    // atomically; a file that cannot be read or parsed is left as it is.
    void SaveConfig(stTablet_XMLData *data, QMap<QString, _stAppConfigNode *> &apps);
    // Sets or, for an empty value, removes the text child of `node`.
    static void SetTextValue(QDomDocument doc, QDomNode node, QVariant value);

    const QString &fileName() const { return m_fileName; }

    // The device file: a "QRM07App" document of the key groups, the selected
    // group and the first wheel. `name` fills its "path".
    QByteArray SaveConfigToDevice(const char *name, _stAppConfigNode *node) const;
    void CreateFileNotesNode(QDomDocument &doc, QDomElement &root, _stAppConfigNode *node) const;
    // Static: the reader thread parses without the helper, which a closing device frees.
    static bool ReadDeviceConfigFileToAppConfig(QByteArray data, _stAppConfigNode &node);

private:
    QString m_fileName;
};
