// Feeds arbitrary text to the function-string parsers as a key, a pen button
// and a wheel would. The first byte picks the call; the rest is the string.
#include "caction.h"
#include "settingsrecords.h"

#include <QtGlobal>
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ctime>

// The action library sleeps between keys; the fuzzer should not.
extern "C" int nanosleep(const timespec *, timespec *)
{
    return 0;
}
extern "C" int clock_nanosleep(clockid_t, int, const timespec *, timespec *)
{
    return 0;
}

namespace
{

// A first field with a 2 in it may start a program: never on a press here.
bool mayStartProgram(const char *text)
{
    const char *end = std::strchr(text, '|');
    const size_t length = end ? static_cast<size_t>(end - text) : std::strlen(text);
    return std::memchr(text, '2', length) != nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static CAction *action = [] {
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
        return new CAction;
    }();
    if (size == 0)
        return 0;
    const uint8_t control = data[0];
    // Records hold at most kFuncSize - 1 characters and a NUL.
    char func[kFuncSize] = {};
    std::memcpy(func, data + 1, std::min(size - 1, sizeof func - 1));
    if (control & 1) {
        const short direction = (control & 2) ? short(1) : short(-1);
        action->ParseRingCustomFunction(func, direction, (control & 4) != 0);
        return 0;
    }
    const bool pressed = (control & 2) != 0 && !mayStartProgram(func);
    action->ParseCustomFunction(func, pressed, static_cast<short>((control >> 2) & 7));
    return 0;
}
