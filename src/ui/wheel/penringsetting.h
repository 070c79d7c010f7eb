#pragma once

#include "scriboradialog.h"
#include "settingsrecords.h"
#include "wheelslot.h"

#include <QString>

class QButtonGroup;

namespace Ui
{
class PenRingSetting;
}

// The roller of a pen: which of its four functions it runs, what each of them is, and how
// fast it turns. It edits the roller ring of the record given, in place.
class PenRingSetting : public ScriboraDialog
{
    Q_OBJECT
public:
    explicit PenRingSetting(QWidget *parent = nullptr);
    ~PenRingSetting() override;

    // The roller is the ring after the device's wheels, `Ring[DeviceRingNum]`.
    void LoadDefaultHotkeyInfo(_stAppConfigNode *record, stTablet_XMLData *settings);

public slots:
    void onWheelComboBoxActivated(int slot);
    void onWheelRadioClick(int slot);

signals:
    void SendJsonDataToServer(QString message);

private slots:
    void on_pushButton_ok_clicked();
    void on_CloseButton_clicked();

private:
    void InitLanguageUI();
    stRingConfig *ring() const;
    void onSpeedChanged(int value);

    Ui::PenRingSetting *ui;
    WheelSlot m_Slots[kRingItemCount];
    QButtonGroup *m_Radios;
    _stAppConfigNode *m_Record = nullptr;
    stTablet_XMLData *m_Settings = nullptr;
    int m_Ring = -1;
};
