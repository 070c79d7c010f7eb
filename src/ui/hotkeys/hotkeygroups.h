#pragma once

#include "keyslot.h"

#include <QObject>
#include <QVector>

class CheckTextButton;

// The four key groups of a grouped device (the remote QRM07) on its key page: which group the
// boxes show, which one the device uses, and the tabs that say both.
class HotKeyGroups : public QObject
{
    Q_OBJECT
public:
    // `tabs` are the four group tabs, group 0 first.
    explicit HotKeyGroups(const QVector<CheckTextButton *> &tabs, QObject *parent = nullptr);

    // The record being edited and the device's settings; nulls while no tablet is selected.
    void SetRecord(_stAppConfigNode *record, stTablet_XMLData *settings);
    // The key boxes of the page, in key order.
    void SetKeySlots(const QVector<KeySlot> &keySlots) { m_Slots = keySlots; }
    int CurrentGroup() const { return m_Group; }

public slots:
    void SelectM07HotKeyGroup(int group);
    void onSelectHotKeyItem(int group, bool on, int);
    // The device switched groups in `record`, which need not be the one being edited.
    void onSelectAppHotKeyItem(int group, bool on, int, _stAppConfigNode *record);

signals:
    // A group is on show; a preview of the keys follows it.
    void GroupShown(_stAppConfigNode *record, int orientation);

private:
    static bool isGroup(int group) { return group >= 0 && group < kKeyGroupCount; }

    QVector<CheckTextButton *> m_Tabs;
    QVector<KeySlot> m_Slots;
    _stAppConfigNode *m_Record = nullptr;
    stTablet_XMLData *m_Settings = nullptr;
    int m_Group = 0;
};
