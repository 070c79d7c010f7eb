#pragma once

#include "cglobaldata.h"
#include "ctablet.h"
#include "fakeusb.h"
#include "zelkdevice.h"

#include <QSettings>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>

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
    // The descriptor-100 payload of a tablet with these ranges.
    static fakeusb::Bytes capabilities(uint32_t maxX, uint32_t maxY, uint16_t pressure,
                                       uint16_t lpi);
    static fakeusb::Device tablet(const std::string &name, uint16_t pid, uint8_t port);
    static QString section(const QString &model, int keys = 4);

    QTemporaryDir m_Folder;
};
