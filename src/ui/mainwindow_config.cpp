// Export and import of the whole profile file: a plain copy out, and in after its version has
// been compared with the installed file's.
#include "mainwindow.h"

#include "cglobaldata.h"
#include "ctablet.h"
#include "jsonserver.h"
#include "languagetexts.h"
#include "settingform.h"
#include "ui_mainwindow.h"

#include <QDate>
#include <QDebug>
#include <QDomDocument>
#include <QFile>
#include <QFileDialog>
#include <QMessageBox>
#include <QSaveFile>
#include <QStandardPaths>

namespace
{
constexpr int kCannotOpen = 101;
constexpr int kNotXml = 102;
constexpr int kNoDocument = 103;
constexpr int kOtherVersion = 104;
constexpr int kNoVersion = 105;
// The version matched, and the copy failed; nothing is said, and the old file stands.
constexpr int kCopyFailed = -1;

QString installedConfig()
{
    return CGlobalData::configFile("/config.xml");
}

// The profile file is replaced only once the new content is complete: a failed read, a full
// disk or a crash half-way leaves the old file whole.
bool replaceConfig(const QString &from)
{
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        return false;
    QSaveFile target(installedConfig());
    if (!target.open(QIODevice::WriteOnly))
        return false;
    const QByteArray content = source.readAll();
    if (source.error() != QFile::NoError || target.write(content) != content.size()) {
        target.cancelWriting();
        return false;
    }
    return target.commit();
}
} // namespace

QString MainWindow::GetXMLFileVersion(QString path, int &code)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        qDebug() << "open file" << path << "failed, error:" << file.errorString();
        code = kCannotOpen;
        return QString();
    }
    QDomDocument document;
    QString message;
    int line = 0;
    int column = 0;
    if (!document.setContent(&file, &message, &line, &column)) {
        qDebug() << "parse file failed at line" << line << ",column" << column << "," << message;
        code = kNotXml;
        return QString();
    }
    if (document.isNull()) {
        qDebug() << "document is null!";
        code = kNoDocument;
        return QString();
    }
    const QDomElement root = document.documentElement();
    qDebug() << root.tagName();
    if (!root.hasAttribute("version")) {
        qDebug() << "document-rootElem has no version attribute";
        code = kNoVersion;
        return QString();
    }
    // Only the last part may change between compatible files.
    QString version = root.attribute("version");
    const int point = version.lastIndexOf('.');
    if (point > 0)
        version.truncate(point);
    qDebug() << version;
    return version;
}

bool MainWindow::GetConfigXMLFileVersion(QString path, int &code)
{
    m_XmlVersion = GetXMLFileVersion(installedConfig(), code);
    if (m_XmlVersion.isEmpty())
        return false;
    const QString candidate = GetXMLFileVersion(path, code);
    if (candidate.isEmpty())
        return false;
    if (candidate == m_XmlVersion)
        return true;
    code = kOtherVersion;
    return false;
}

bool MainWindow::ExportConfigTo(const QString &path)
{
    if (QFile::exists(path))
        QFile::remove(path);
    return QFile::copy(installedConfig(), path);
}

int MainWindow::ImportConfigFrom(const QString &path)
{
    int code = 0;
    if (!GetConfigXMLFileVersion(path, code)) {
        qDebug() << "GetConfigXMLFileVersion Error" << code;
        return code;
    }
    if (!replaceConfig(path))
        return kCopyFailed;
    qDebug() << "onImportConfigueFile copy ok";
    QStringList profiles;
    for (int slot = 0; slot < kTabletSlots; ++slot) {
        CTablet *tablet = CGlobalData::TabletArray[slot];
        if (!tablet)
            continue;
        tablet->LoadXML(tablet->m_DeviceAttributes.ModelName);
        profiles << GetTabletXmlDataToJson(slot);
    }
    InitUI(currentTabletName());
    sendUsage([&] {
        return JsonServer::GetJsonDataSon(
            "ImportConfigueFile", JsonServer::GetJsonData("path", path) + "," + profiles.join(','));
    });
    return 0;
}

void MainWindow::onExportConfigueFile()
{
    if (m_SettingForm)
        m_SettingForm->hide();
    const QString home = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    const QString offered =
        home + "//Scribora_Config_" + QDate::currentDate().toString("yyyy-MM-dd") + ".scfg";
    const QString chosen =
        QFileDialog::getSaveFileName(this, languageText("Setting.item8", "Save as"), offered,
                                     tr("file(*.scfg)"), nullptr, QFileDialog::ReadOnly);
    if (chosen.isEmpty())
        return;
    // The extension is added whatever the name ends in.
    const QString path = chosen + ".scfg";
    if (!ExportConfigTo(path)) {
        QMessageBox::warning(this, languageText("Common.error", "Error"),
                             languageText("Error.201", "Fail to export configue file!"));
        sendUsageEvent("ExportConfigueFile", "Error");
        return;
    }
    QMessageBox::information(this, languageText("Common.information", "Information"),
                             languageText("Information.801", "Export configue file successfully."));
    sendUsageEvent("ExportConfigueFile", path);
}

void MainWindow::onImportConfigueFile()
{
    if (m_SettingForm)
        m_SettingForm->hide();
    const QString home = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    const QString chosen = QFileDialog::getOpenFileName(
        this, languageText("Setting.item7", "Please choose config file"), home, tr("file(*.scfg)"),
        nullptr, QFileDialog::ReadOnly);
    if (chosen.isEmpty())
        return;
    const int code = ImportConfigFrom(chosen);
    if (code == 0 || code == kCopyFailed)
        return;
    const QString key = QStringLiteral("Error.%1").arg(code);
    QMessageBox::warning(
        this, languageText("Common.error", "Error"),
        languageText(key.toLatin1().constData(), "ERROR:" + QString::number(code)));
}
