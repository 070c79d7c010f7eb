#pragma once

#include "mainwindow.h"

#include <QRect>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>

// A main window over an empty configuration folder of the test's own.
class WindowFixture : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    QTemporaryDir m_Folder;
    std::unique_ptr<MainWindow> m_Window;
};

// Rectangles in failure messages as corners, the form the tests reason in.
inline void PrintTo(const QRect &rect, std::ostream *out)
{
    *out << "QRect(left " << rect.left() << ", top " << rect.top() << ", right " << rect.right()
         << ", bottom " << rect.bottom() << ")";
}
