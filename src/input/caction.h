#pragma once

#include "multidata.h"
#include "settingsrecords.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

struct TabletDataEX;

// A key token in memory: the Linux key code, then the X11 keycode.
struct _KeyCode {
    unsigned long code;
    uint16_t scan;
};
struct _DEVICE_ATTRIBUTES;

// Turns one decoded report into virtual input, on the reader thread of its device.
// Its bodies: caction.cpp the pen path, caction_dispatch.cpp keys, pen buttons and wheels,
// caction_functions.cpp function strings and the action library, caction_commands.cpp the
// commands that post to the window.
class CAction : public QObject
{
    Q_OBJECT
public:
    explicit CAction(QObject *parent = nullptr);

    _MultiData ActionTabletData(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                                stTablet_XMLData *settings,
                                QMap<QString, _stAppConfigNode *> &appConfigs);
    void FindForeAppConfig(stTablet_XMLData *settings,
                           QMap<QString, _stAppConfigNode *> &appConfigs);
    // The pen functions act on the record that FindForeAppConfig chose.
    void ParsePenData(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                      stTablet_XMLData *settings);
    void ParsePenDataLinuxV1(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                             stTablet_XMLData *settings);
    void ParsePenDataLinux(TabletDataEX &data, _DEVICE_ATTRIBUTES &attributes,
                           stTablet_XMLData *settings);
    void DoAction(TabletDataEX &data, stTablet_XMLData *settings);
    void ParseRingData(TabletDataEX &data, stTablet_XMLData *settings);

    // Functions of keys, pen buttons and wheels. A function string is read up to its first NUL
    // and never beyond kFuncSize bytes, so any record field is safe to pass.
    void ParseKeyData(TabletDataEX &data, stTablet_XMLData *settings);
    short GetKeyIndex(stTablet_XMLData *settings, short motid);
    void DoKeyAction(short pen, bool groupKeys);
    void DoPenBtnAction(short pen);
    void DoRingAction();
    void ParseCustomFunction(char *str, bool pressed, short pen);
    void ParseRingCustomFunction(char *str, short direction, bool pressed);
    void ActionLibrary(int id, bool pressed, short pen);
    void RingActionLibrary(int ringType, int func, short direction);
    void MouserActionLibrary(int id, bool pressed, short pen);
    void PenBtnActionLibrary(int id, bool pressed);
    void ActionCorrectorData(QVector<short> &ids, bool pressed, short pen);
    void KeyEvent(unsigned code, unsigned scan, bool pressed);
    void KeyEvents(QVector<_KeyCode> keys, bool pressed);

    // Commands of the action library; each posts its message to the window.
    void ShowDriver(bool pressed, bool flag);
    void ChangeScreenMapping(bool pressed);
    void ChangeBEKey(bool value, bool forced);
    void PressBEKey(bool pressed);
    void OpenFineMode(bool pressed, short pen);
    void ChangeKLRFunctions(bool pressed, int ring);
    void ChangeTrackPadMode(bool pressed);
    void ChangeKeyFunctions(bool pressed);
    void KeypadPreviewMode(bool pressed);

    // Lifts a pen that is still down or in range when its tablet goes away, so that no
    // tool, touch or mouse button stays held. Call only once the reader has stopped.
    void LeaveProximity();

    // Opens the virtual devices when nothing else has; true when they are usable.
    bool InitInput();
    void setDeviceIndex(int index) { m_deviceIndex = index; }
    int deviceIndex() const { return m_deviceIndex; }

signals:
    void PostActionMsg(int tabletId, int msgId, int msgData);
    void PostActionMsg(int tabletId, int msgId, QString appPath);

private:
    // The tokens field of a keyboard function: one combination follows the key, several are
    // tapped in turn on the press.
    void playKeySequence(const QString &tokens, bool pressed);
    void startProgram(const QString &command);
    void runSystemFunction(const QString &name, short function, bool pressed);
    void runPenButton(stPenBtn &button, bool pressed, short pen);
    void tapLibrary(int id);
    void rotateCanvas(bool up);
    void tapKey(unsigned code);
    void sendKey(unsigned long code, bool pressed);
    void showTip(const QString &text);
    void showActionTip(int id, const QString &suffix = QString());
    QString currentAppName() const;
    void postUsage(const QString &event, const QStringList &fields);
    void SleepFuctions(int ms);
    QString GetJsonData(QString key, QString value);
    QString GetJsonDataSon(QString key, QString value);

    const stPenConfig &currentPen(const TabletDataEX &data) const;
    // False for the first frame of a stroke, which only sets the starting point.
    bool stepMouseMode(uint64_t x, uint64_t y, uint8_t status, const stPenConfig &pen);
    // False when the screen slot of the settings is empty.
    bool mapToScreen(uint64_t x, uint64_t y, uint64_t axisW, uint64_t axisH,
                     const stTablet_XMLData &settings);
    void writePen(const TabletDataEX &data);

    int m_deviceIndex = 0;
    QString m_labelErase;
    QString m_labelPen;
    _MultiData m_data{};
    uint8_t m_penTipActive = 0;
    bool m_eraserEnd = false;
    bool m_eraserReal = false;
    bool m_penAsEraser = false;
    bool m_beChanged = false;
    _stAppConfigNode *m_pCurAppConfig = nullptr;
    stTablet_XMLData *m_pXmlData = nullptr;
    bool m_disableTip = false;
    int m_beNotify = 0;
    int m_screenX = 0;
    int m_screenY = 0;
    bool m_inRange = false;
    // What the virtual pen last got: set by an entering or moving frame, cleared by a leave.
    bool m_penHeld = false;
    bool m_penHeldAsEraser = false;
    bool m_mouseButtonHeld = false;
    bool m_firstStroke = false;
    // Every key that changed in the last report; only the last one is dispatched.
    QVector<short> m_keysDown;
    QVector<short> m_keysUp;
    // The config of the last press: its release acts on the same records.
    _stAppConfigNode *m_pLatchedConfig = nullptr;
};
