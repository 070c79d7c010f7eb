#include "windowfixture.h"

#include "cglobaldata.h"
#include "fakeusb.h"

#include <QSettings>

void WindowFixture::SetUp()
{
    fakeusb::reset();
    CGlobalData::ConfigFolder = m_Folder.path();
    m_Window = std::make_unique<MainWindow>();
}

void WindowFixture::TearDown()
{
    m_Window.reset();
    delete CGlobalData::Name_Config;
    CGlobalData::Name_Config = nullptr;
    delete CGlobalData::Language_Config;
    CGlobalData::Language_Config = nullptr;
    fakeusb::reset();
}
