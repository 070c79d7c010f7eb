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
    void readScreenMapping(const QDomElement &element);
    void readTabletPannel(const QDomElement &element);
    void readOrientAreas(const QDomElement &element);
    void readCalibration(const QDomElement &element);

    void readPen(const QDomElement &element, stPenConfig &pen);
    void readAppPen(const QDomElement &element, int index, stPenConfig &pen);
    void readPenValues(const QDomElement &child, stPenConfig &pen);
    void readKeys(const QDomElement &element, _stAppConfigNode &node, bool fromCommon);
    void readKeyList(const QDomElement &element, stKeyConfig *keys, const stKeyConfig *common);
    bool readRing(const QDomElement &element, _stAppConfigNode &node, bool inApp);
    void readRingItems(const QDomElement &element, stRingConfig &ring);

    stTablet_XMLData *m_data;
};
