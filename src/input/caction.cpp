#include "caction.h"

#include "cglobaldata.h"
#include "deviceattributes.h"
#include "myinput.h"
#include "tabletdata.h"

CAction::CAction(QObject *parent) : QObject(parent)
{
    m_labelErase = languageText("Pen.LabelErase", "Eraser");
    m_labelPen = languageText("Pen.LabelPen", "Pen");
}

_MultiData CAction::ActionTabletData(TabletDataEX &, _DEVICE_ATTRIBUTES &, stTablet_XMLData *,
                                     QMap<QString, _stAppConfigNode *> &)
{
    m_data = {};
    return m_data;
}

bool CAction::InitInput()
{
    if (CGlobalData::MyInputDriver.absFd() == 0)
        CGlobalData::MyInputDriver.Init();
    return CGlobalData::MyInputDriver.absFd() != 0;
}
