#include "eventprinter.h"

#include <libevdev/libevdev.h>

namespace
{

void printName(FILE *out, const char *name, unsigned number)
{
    if (name)
        std::fprintf(out, "%s ", name);
    else
        std::fprintf(out, "%u ", number);
}

} // namespace

void EventPrinter::printEvent(const char *device, const input_event &event)
{
    std::fprintf(m_out, "%s ", device);
    printName(m_out, libevdev_event_type_get_name(event.type), event.type);
    printName(m_out, libevdev_event_code_get_name(event.type, event.code), event.code);
    std::fprintf(m_out, "%d\n", event.value);
}

void EventPrinter::printMessage(int tablet, int id, const QString &value)
{
    std::fprintf(m_out, "msg %d %d %s\n", tablet, id, value.toUtf8().constData());
}

void EventPrinter::flush()
{
    std::fflush(m_out);
}
