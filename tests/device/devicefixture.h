#pragma once

#include "cglobaldata.h"
#include "ctablet.h"
#include "fakeusb.h"
#include "zelkdevice.h"

#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <memory>

using fakeusb::Bytes;

// A configuration folder of the test's own, scripted USB devices, and the
// shared state reset around each test.
class DeviceFixture : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    void writeConfig(const QString &sections);
    void writeNames(const QString &ini);

    static const ZelkDevice &row(uint32_t pid);
    // 52324 by 29600 at 5080 lpi, pressure 8191, in descriptor 100.
    static fakeusb::Device tablet(const std::string &name, uint16_t pid, uint8_t port);
    static QString section(const QString &model);
    // Polls `done`, handling events, for up to 8 s.
    static bool waitFor(const std::function<bool()> &done);

    QTemporaryDir m_Folder;
};

// `length` bytes starting with `head`, zero-padded.
Bytes frame(size_t length, std::initializer_list<uint8_t> head);
// Of the device tests' own data folder.
// "02 b4 01": hex bytes; "*60@41" 60 bytes counting up from 0x41; "..10" zeros up to 10 bytes.
Bytes bytes(const QString &text);
// The rows of data/<name>, "#" lines left out, as their "|"-separated columns.
std::vector<QStringList> table(const QString &name);
// Hands a report over as the reader would, in a buffer of exactly its length.
void feed(CTablet &tablet, const Bytes &report);
