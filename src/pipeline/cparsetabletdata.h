#pragma once

#include "tabletdata.h"

// Every report buffer is this long, zeroed before the read, whatever the read returned.
constexpr int kReportBufferSize = 64;

// Turns one raw input report of a tablet into a TabletDataEX, and keeps what it
// takes to tell a press from a hold. One per tablet, used on its reader thread only.
class CParseTabletData
{
public:
    // Process-wide wheel history, shared by all tablets.
    struct WheelHistory {
        int lastWhell;
        int lnum;
        int rnum;
    };

    // report must point to a full report buffer of kReportBufferSize bytes; length is
    // what the read returned. Returns 0 when there is nothing to act on.
    int ParseData(unsigned char *report, int length, TabletDataEX *out);

    int ChangeDataToKeyState(const unsigned char *report, TabletKeyData &keys);
    int ChangeM07DataToKeyState(const unsigned char *report, TabletKeyData &keys, bool wheelStep);
    int ChangeToKeyBoard(const unsigned char *report, TabletKeyData &keys);
    bool ChangeToPenBtnState(uint8_t bits, PenBtnData &out);

    // Up to four hexadecimal digits; -1 on any other character.
    static int str_to_int(const wchar_t *text);

    // For tests only: the wheel history outlives every decoder.
    static WheelHistory wheelHistory();
    static void resetWheelState();

private:
    int parsePen(const unsigned char *report, int length, TabletDataEX *out);
    int parseKeysAndWheels(const unsigned char *report, TabletDataEX *out);
    int parseKeyboardRemote(const unsigned char *report, TabletDataEX *out);
    void parsePenIdentity(const unsigned char *report);
    void decodePenButtons(uint8_t bits, TabletDataEX *out);
    bool readKeyBits(const unsigned char *report, int firstByte, int count, TabletKeyData &keys);
    bool clearKeyActive();
    void storeKeys(const TabletKeyData &keys);

    uint8_t m_KeyActive = 0;
    uint8_t m_PenButtonActive = 0;
    uint8_t m_KeyState[kTabletKeyCount] = {};
    uint8_t m_PenButtonState[kPenButtonCount] = {};
    uint8_t m_ForcedPenId = 0;
};
