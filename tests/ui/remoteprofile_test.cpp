#include "ctablet.h"
#include "devicecommands.h"
#include "importsettingdialog.h"

#include <QLabel>
#include <gtest/gtest.h>

namespace
{

// A remote that records what the dialog asks of it.
class RecordingRemote : public CTablet
{
public:
    void SentSaveFileCmd(int mode, unsigned char *data, int length) override
    {
        saves.push_back({mode, data ? QByteArray(reinterpret_cast<char *>(data), length) : ""});
    }
    void SaveConfigToDevice(QString, _stAppConfigNode *) override { offered = true; }

    std::vector<std::pair<int, QByteArray>> saves;
    bool offered = false;
};

QString labelText(const ImportSettingDialog &dialog, const char *name)
{
    return dialog.findChild<QLabel *>(name)->text();
}

// The replies and the retry are played through the real window in e2e_remote; here, what is
// hard to see there: the file goes out in blocks of 29 bytes, the last padded, then the end; the
// bar ends at 100%, also for a file shorter than one block.
TEST(RemoteProfile, WriteSendsTheFileInPaddedBlocks)
{
    for (int size : {60, 10}) {
        RecordingRemote remote;
        remote.m_OutgoingFile = QByteArray(size, 'x');
        ImportSettingDialog dialog;
        dialog.setCurrentTablet(&remote, nullptr, false);
        EXPECT_TRUE(remote.offered);
        emit remote.PostDeviceOperatorMsg(kOpWriteAccepted, 0);
        ASSERT_EQ(remote.saves.size(), size / 29 + 2u) << size;
        for (size_t n = 0; n + 1 < remote.saves.size(); ++n) {
            EXPECT_EQ(remote.saves[n].first, kSaveFileChunk);
            EXPECT_EQ(remote.saves[n].second.size(), 29);
        }
        EXPECT_EQ(remote.saves[size / 29].second.mid(size % 29), QByteArray(29 - size % 29, '\0'));
        EXPECT_EQ(remote.saves.back().first, kSaveFileEnd);
        EXPECT_EQ(labelText(dialog, "PercentLabel"), "100%");
    }
}

} // namespace
