#include "fakeuinput.h"

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <linux/uinput.h>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace fakeuinput
{
namespace
{

using OpenFunction = int (*)(const char *, int, ...);

// Told by file identity, so that a reused descriptor number is no node.
Node *nodeFor(int fd)
{
    State &s = state();
    struct stat info = {};
    if (s.active && fd <= 0)
        ++s.strayCalls;
    if (!s.active || fd <= 0 || fstat(fd, &info) != 0)
        return nullptr;
    for (Node &node : s.nodes)
        if (node.fd >= 0 &&
            node.file == std::pair<unsigned long, unsigned long>(info.st_dev, info.st_ino))
            return &node;
    return nullptr;
}

int openFile(OpenFunction real, const char *path, int flags, va_list args)
{
    const mode_t mode =
        (flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE ? va_arg(args, int) : 0;
    State &s = state();
    if (!s.active || !path || std::strcmp(path, "/dev/uinput") != 0)
        return real(path, flags, mode);
    const size_t index = s.nodes.size();
    s.nodes.push_back({flags, -1, {}, {}});
    if (s.openFailures & (1u << index)) {
        errno = EACCES;
        return -1;
    }
    const std::string node = s.folder + "/uinput" + std::to_string(index);
    const int fd = real(node.c_str(), flags | O_CREAT | O_TRUNC, 0600);
    struct stat info = {};
    if (fd >= 0 && fstat(fd, &info) == 0)
        s.nodes[index] = {flags, fd, {}, {info.st_dev, info.st_ino}};
    return fd;
}

std::string describe(unsigned long request, void *argument)
{
    static const std::pair<unsigned long, const char *> kNames[] = {
        {UI_GET_VERSION, "GET_VERSION"}, {UI_DEV_CREATE, "DEV_CREATE"},
        {UI_DEV_DESTROY, "DEV_DESTROY"}, {UI_SET_EVBIT, "EVBIT "},
        {UI_SET_KEYBIT, "KEYBIT "},      {UI_SET_ABSBIT, "ABSBIT "},
        {UI_SET_RELBIT, "RELBIT "},      {UI_ABS_SETUP, "ABS_SETUP "},
        {UI_DEV_SETUP, "DEV_SETUP "}};
    std::ostringstream out;
    for (const auto &[known, name] : kNames)
        if (known == request)
            out << name;
    const auto *setup = static_cast<const uinput_setup *>(argument);
    const auto *abs = static_cast<const uinput_abs_setup *>(argument);
    if (request == UI_ABS_SETUP)
        out << abs->code << " " << abs->absinfo.minimum << " " << abs->absinfo.maximum << " "
            << abs->absinfo.resolution;
    else if (request == UI_DEV_SETUP)
        out << "'" << setup->name << "' " << std::hex << setup->id.bustype << " "
            << setup->id.vendor << " " << setup->id.product << " " << setup->id.version;
    else if (out.str().back() == ' ') // the bit of UI_SET_*BIT
        out << reinterpret_cast<intptr_t>(argument);
    return out.str().empty() ? "ioctl " + std::to_string(request) : out.str();
}

void describeRecord(Node &node, const void *buffer, size_t count)
{
    uinput_user_dev record{};
    std::memcpy(&record, buffer, std::min(count, sizeof record));
    std::ostringstream out;
    out << "RECORD '" << std::string(record.name, strnlen(record.name, sizeof record.name)) << "' "
        << std::hex << record.id.bustype << " " << record.id.vendor << " " << record.id.product
        << " " << record.id.version << std::dec;
    node.calls.push_back(out.str());
    for (int axis = 0; axis < ABS_CNT; ++axis) {
        if (record.absmin[axis] || record.absmax[axis] || record.absfuzz[axis] ||
            record.absflat[axis])
            node.calls.push_back("RECORD_ABS " + std::to_string(axis) + " " +
                                 std::to_string(record.absmin[axis]) + " " +
                                 std::to_string(record.absmax[axis]) + " " +
                                 std::to_string(record.absfuzz[axis] + record.absflat[axis]));
    }
}

} // namespace

State &state()
{
    static State *instance = new State;
    return *instance;
}

void start(const std::string &folder)
{
    state() = State{};
    state().folder = folder;
    state().active = true;
}

void stop()
{
    state().active = false;
}

} // namespace fakeuinput

using namespace fakeuinput;

extern "C" int open(const char *path, int flags, ...)
{
    static const auto real = reinterpret_cast<OpenFunction>(dlsym(RTLD_NEXT, "open"));
    va_list args;
    va_start(args, flags);
    const int fd = openFile(real, path, flags, args);
    va_end(args);
    return fd;
}

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept
{
    static const auto real =
        reinterpret_cast<int (*)(int, unsigned long, ...)>(dlsym(RTLD_NEXT, "ioctl"));
    va_list args;
    va_start(args, request);
    void *argument = va_arg(args, void *);
    va_end(args);
    Node *node = nodeFor(fd);
    if (!node)
        return real(fd, request, argument);
    node->calls.push_back(describe(request, argument));
    if (request != UI_GET_VERSION)
        return 0;
    if (state().version < 0) {
        errno = EINVAL;
        return -1;
    }
    *static_cast<unsigned *>(argument) = static_cast<unsigned>(state().version);
    return 0;
}

extern "C" ssize_t write(int fd, const void *buffer, size_t count)
{
    static const auto real =
        reinterpret_cast<ssize_t (*)(int, const void *, size_t)>(dlsym(RTLD_NEXT, "write"));
    Node *node = nodeFor(fd);
    if (node && state().writeLimit != 0 && count > state().writeLimit)
        count = state().writeLimit;
    if (node)
        describeRecord(*node, buffer, count);
    return real(fd, buffer, count);
}
