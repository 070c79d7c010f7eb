#include "hotkeygroups.h"

#include "checktextbutton.h"
#include "groupnumeral.h"
#include "languagetexts.h"
#include "tipwindow.h"

HotKeyGroups::HotKeyGroups(const QVector<CheckTextButton *> &tabs, QObject *parent)
    : QObject(parent), m_Tabs(tabs)
{
    const QString name = languageText("HotKey.group.name", "Key Group");
    for (int group = 0; group < m_Tabs.size(); ++group) {
        CheckTextButton *tab = m_Tabs[group];
        tab->setText(name + " " + groupNumeral(group));
        connect(tab, &CheckTextButton::clicked, this,
                [this, group] { SelectM07HotKeyGroup(group); });
        connect(tab, &CheckTextButton::switched, this,
                [this, group](bool on) { onSelectHotKeyItem(group, on, 0); });
    }
}

void HotKeyGroups::SetRecord(_stAppConfigNode *record, stTablet_XMLData *settings)
{
    m_Record = record;
    m_Settings = settings;
}

void HotKeyGroups::SelectM07HotKeyGroup(int group)
{
    if (!m_Record || !m_Settings || !isGroup(group))
        return;
    m_Group = group;
    for (int tab = 0; tab < m_Tabs.size(); ++tab) {
        m_Tabs[tab]->setCurrent(tab == group);
        m_Tabs[tab]->setFunction(tab == m_Record->SelectID);
    }
    stKeyConfig *keys = m_Record->KeyGroup[group].Key;
    const int count = qMin<int>(m_Settings->DeviceKeyNum, m_Slots.size());
    for (int key = 0; key < count; ++key)
        m_Slots[key].Show(keys[key]);
    emit GroupShown(m_Record, m_Settings->Orientation);
}

// Turning a group off falls back to group I, which therefore always stays on.
void HotKeyGroups::onSelectHotKeyItem(int group, bool on, int)
{
    if (!m_Record || !isGroup(group))
        return;
    if (on) {
        m_Record->KeyGroup[group].bEnable = true;
        m_Record->SelectID = group;
    } else {
        TipWindow::show("Actions.112");
        m_Record->KeyGroup[group].bEnable = false;
        m_Record->KeyGroup[0].bEnable = true;
        m_Record->SelectID = 0;
    }
    SelectM07HotKeyGroup(group);
}

void HotKeyGroups::onSelectAppHotKeyItem(int group, bool on, int, _stAppConfigNode *record)
{
    if (!record || !isGroup(group))
        return;
    record->SelectID = group;
    if (record != m_Record)
        return;
    record->KeyGroup[group].bEnable = on;
    SelectM07HotKeyGroup(group);
}
