#pragma once

#include "settingsrecords.h"

#include <QDomElement>

// Fills the records from one device section of the profile file. The top of
// the section is read by position and everything below by name; indexes
// taken from tags are bounded to the records' arrays.
class ProfileSectionReader
{
public:
    explicit ProfileSectionReader(stTablet_XMLData *data);

    void readDeviceInfo(const QDomElement &deviceInfo);
    void readCommon(const QDomElement &common);
    void readCommonApp(const QDomElement &commonApp);
    void readApp(const QDomElement &app, _stAppConfigNode *node);

private:
    void readOrientAreas(const QDomElement &element);
    void readProfile(const QDomElement &parent, _stAppConfigNode &node, bool inApp);
    void readPen(const QDomElement &element, stPenConfig &pen, const stPenConfig *common);
    void readKeyElement(const QDomElement &element, _stAppConfigNode &node, bool inApp);
    void readRing(const QDomElement &element, _stAppConfigNode &node, bool inApp);

    stTablet_XMLData *m_data;
};
