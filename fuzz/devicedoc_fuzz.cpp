// Feeds arbitrary bytes to the device file reader as a file received from a
// remote, read into a zeroed record as the reader thread does. Beyond what
// the sanitizers see, it checks what they cannot: a text field that lost its
// NUL was written past, into its neighbour in the same record, and the
// parts of the record the device file does not carry must stay zero.
#include "recordchecks.h"
#include "settingsrecords.h"
#include "xmlhelp.h"

#include <QByteArray>
#include <QtGlobal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace
{

template <typename T> void expectZero(const T &part)
{
    static const T zero{};
    if (memcmp(&part, &zero, sizeof part) != 0)
        abort();
}

// A group or wheel given twice is read twice: an id from the second may
// stand beside a function from the first, so only the flags are checked.
void expectReadable(const _stAppConfigNode &node)
{
    for (const stRingItem &item : node.Ring[0].Item)
        expectTerminated(item.func);
    for (const stKeyGroup &group : node.KeyGroup) {
        if (group.bEnable > 1)
            abort();
        for (const stKeyConfig &key : group.Key) {
            expectTerminated(key.func);
            if (key.Show > 1)
                abort();
        }
    }
}

// "path", the pens, the plain keys and the second wheel are not in the
// file, and the wheel's own id is not read.
void expectOnlyFileParts(const _stAppConfigNode &node)
{
    expectZero(node.path);
    expectZero(node.Pen);
    expectZero(node.Ring[1]);
    expectZero(node.Key);
    if (node.Ring[0].id != 0 || node.Ring[0].mode != 0 || node.Ring[0].type != 0 ||
        node.Ring[0].Speed != 0 || node.next != nullptr)
        abort();
}

// Without a "SelectID" element the selected group stays the zeroed one.
void expectSelection(const _stAppConfigNode &node, const QByteArray &bytes)
{
    if (node.SelectID != 0 && !bytes.contains("SelectID"))
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // Some 260 KB: on the heap, zeroed, as the reader thread keeps it.
    static const auto node = [] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        return std::make_unique<_stAppConfigNode>();
    }();
    memset(node.get(), 0, sizeof *node);
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<int>(size));
    XMLHelp::ReadDeviceConfigFileToAppConfig(bytes, *node);
    expectReadable(*node);
    expectOnlyFileParts(*node);
    expectSelection(*node, bytes);
    return 0;
}
