#include "udevruleswriter.h"

namespace
{

// uaccess hands the node to the user at the seat; the group covers sessions without a seat
// and every other user the administrator adds to it.
const char kAccess[] = R"(TAG+="uaccess", GROUP="plugdev", MODE="0660")";

// sysfs spells ids in four lower-case hex digits, and udev compares them as text.
QString sysfsId(quint32 id)
{
    return QString::number(id, 16).rightJustified(4, QLatin1Char('0'));
}

} // namespace

QByteArray UdevRulesWriter::text(const ModelTable &table)
{
    QByteArray out = "# Generated from models.json by scribora-datagen.\n";
    for (const ModelTraits &model : table.models) {
        for (const ProductRow &product : model.products)
            out += productRule(table.vendor, product.pid);
    }
    // static_node: the rights reach the node that exists before the module is loaded.
    out += QByteArray(R"(KERNEL=="uinput", SUBSYSTEM=="misc", OPTIONS+="static_node=uinput", )") +
           kAccess + '\n';
    return out;
}

QByteArray UdevRulesWriter::productRule(quint32 vendor, quint32 pid)
{
    return QStringLiteral(R"(SUBSYSTEM=="usb", ENV{DEVTYPE}=="usb_device", )"
                          R"(ATTR{idVendor}=="%1", ATTR{idProduct}=="%2", )")
               .arg(sysfsId(vendor), sysfsId(pid))
               .toLatin1() +
           kAccess + '\n';
}
