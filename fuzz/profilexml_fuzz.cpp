// Feeds arbitrary bytes to the profile reader as the configuration file, and
// loads the section of one model from it as a device session does. Beyond
// what the sanitizers see, it checks what they cannot: a text field that
// lost its NUL was written past, into its neighbour in the same record, and
// an application record must only link to records the map owns.
#include "recordchecks.h"
#include "settingsrecords.h"
#include "xmlhelp.h"

#include <QMap>
#include <QSet>
#include <QString>
#include <QtGlobal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

// The seeds hold this model's section, with others around it.
constexpr char kModel[] = "QTB0610";

void expectOwnedChain(const stTablet_XMLData &data, const QMap<QString, _stAppConfigNode *> &apps,
                      const _stAppConfigNode *before)
{
    QSet<const _stAppConfigNode *> owned;
    for (const _stAppConfigNode *node : apps)
        owned.insert(node);
    if (data.stAppConfigPtr != before && !owned.contains(data.stAppConfigPtr))
        abort();
    for (const _stAppConfigNode *node : apps) {
        expectTerminated(*node);
        if (node->next && !owned.contains(node->next))
            abort();
    }
}

// The reader takes a file name: an anonymous file in memory, rewritten per input.
class MemoryFile
{
public:
    MemoryFile() : m_fd(memfd_create("config.xml", 0)) {}

    QString write(const uint8_t *data, size_t size)
    {
        if (ftruncate(m_fd, 0) != 0 || pwrite(m_fd, data, size, 0) != ssize_t(size))
            abort();
        return QString("/proc/self/fd/%1").arg(m_fd);
    }

private:
    int m_fd;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    static MemoryFile *file = [] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        return new MemoryFile;
    }();
    static const auto data = std::make_unique<stTablet_XMLData>();
    // A session loads into a zeroed record; a reload keeps an earlier cursor.
    memset(data.get(), 0, sizeof *data);
    static _stAppConfigNode earlier{};
    data->stAppConfigPtr = &earlier;
    QMap<QString, _stAppConfigNode *> apps;
    XMLHelp(file->write(bytes, size)).LoadConfig(data.get(), kModel, apps);
    expectTerminated(data->szPidName);
    expectTerminated(data->CommonAPP);
    expectOwnedChain(*data, apps, &earlier);
    qDeleteAll(apps);
    return 0;
}
