#pragma once

#include "replayedtablet.h"

#include <QString>
#include <QtGlobal>
#include <memory>

class CTablet;

// A CTablet set up as a session would leave it, without a device behind it:
// reports are handed to its dispatcher directly.
class ReplayTablet
{
public:
    ReplayTablet();
    ~ReplayTablet();
    ReplayTablet(const ReplayTablet &) = delete;
    ReplayTablet &operator=(const ReplayTablet &) = delete;

    bool setUp(const ReplayedTablet &description);
    const QString &error() const { return m_error; }
    CTablet &tablet() { return *m_tablet; }

    // report points to a full zeroed report buffer; length is what a read returned.
    // Only the reports the reader thread passes on reach the tablet.
    void feed(quint8 *report, int length);

private:
    static void installScreens(const QVector<QRect> &screens);
    void setAttributes(const ReplayedTablet &description);
    bool loadProfile(const ReplayedTablet &description);

    std::unique_ptr<CTablet> m_tablet;
    QString m_error;
};
