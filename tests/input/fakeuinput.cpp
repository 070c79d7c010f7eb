#include "fakeuinput.h"

#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fakeuinput
{
namespace
{

struct Node {
    std::string path;
    bool opened = false;
    int flags = 0;
    dev_t device = 0;
    ino_t inode = 0;
    std::vector<IoctlCall> calls;
    std::vector<size_t> writes;
};

struct State {
    bool active = false;
    std::string folder;
    int version = UINPUT_VERSION;
    unsigned openFailures = 0;
    size_t writeLimit = 0;
    std::vector<Node> nodes;
    int strayCalls = 0;
};

// Never destroyed: the C library may call in after static destructors ran.
State &state()
{
    static State *instance = new State;
    return *instance;
}

using OpenFunction = int (*)(const char *, int, ...);
using IoctlFunction = int (*)(int, unsigned long, ...);
using WriteFunction = ssize_t (*)(int, const void *, size_t);

template <typename Function> Function nextSymbol(const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// Nodes are told by their file identity, so a reused descriptor number never matches.
int nodeIndexFor(int fd)
{
    const State &s = state();
    struct stat info = {};
    if (!s.active || fd < 0 || fstat(fd, &info) != 0)
        return -1;
    for (size_t index = 0; index < s.nodes.size(); ++index) {
        const Node &node = s.nodes[index];
        if (node.opened && node.device == info.st_dev && node.inode == info.st_ino)
            return static_cast<int>(index);
    }
    return -1;
}

void countStray(int fd)
{
    if (state().active && fd <= 0)
        ++state().strayCalls;
}

int openNode(OpenFunction real, int flags)
{
    State &s = state();
    const int index = static_cast<int>(s.nodes.size());
    s.nodes.push_back({});
    Node &node = s.nodes.back();
    node.flags = flags;
    if (s.openFailures & (1u << index)) {
        errno = EACCES;
        return -1;
    }
    node.path = s.folder + "/uinput" + std::to_string(index);
    const int fd = real(node.path.c_str(), flags | O_CREAT | O_TRUNC, 0600);
    struct stat info = {};
    if (fd < 0)
        return fd;
    fstat(fd, &info);
    node.opened = true;
    node.device = info.st_dev;
    node.inode = info.st_ino;
    return fd;
}

int openFile(OpenFunction real, const char *path, int flags, va_list args)
{
    mode_t mode = 0;
    if ((flags & O_CREAT) || (flags & O_TMPFILE) == O_TMPFILE)
        mode = va_arg(args, mode_t);
    if (state().active && path && std::strcmp(path, "/dev/uinput") == 0)
        return openNode(real, flags);
    return real(path, flags, mode);
}

int answer(int nodeIndex, unsigned long request, void *argument)
{
    State &s = state();
    Node &node = s.nodes[static_cast<size_t>(nodeIndex)];
    IoctlCall call;
    call.request = request;
    switch (request) {
    case UI_GET_VERSION:
        node.calls.push_back(call);
        if (s.version < 0) {
            errno = EINVAL;
            return -1;
        }
        *static_cast<unsigned *>(argument) = static_cast<unsigned>(s.version);
        return 0;
    case UI_DEV_SETUP:
        std::memcpy(&call.setup, argument, sizeof call.setup);
        break;
    case UI_ABS_SETUP:
        std::memcpy(&call.absSetup, argument, sizeof call.absSetup);
        break;
    case UI_SET_EVBIT:
    case UI_SET_KEYBIT:
    case UI_SET_ABSBIT:
    case UI_SET_RELBIT:
        call.value = static_cast<int>(reinterpret_cast<intptr_t>(argument));
        break;
    default:
        break;
    }
    node.calls.push_back(call);
    return 0;
}

const Node &nodeAt(int node)
{
    return state().nodes.at(static_cast<size_t>(node));
}

} // namespace

void start(const std::string &folder)
{
    State &s = state();
    s = State{};
    s.folder = folder;
    s.active = true;
}

void stop()
{
    state().active = false;
}

void setVersion(int version)
{
    state().version = version;
}

void setOpenFailures(unsigned mask)
{
    state().openFailures = mask;
}

void setWriteLimit(size_t bytes)
{
    state().writeLimit = bytes;
}

int nodeCount()
{
    return static_cast<int>(state().nodes.size());
}

bool nodeOpened(int node)
{
    return nodeAt(node).opened;
}

int nodeFlags(int node)
{
    return nodeAt(node).flags;
}

std::string nodePath(int node)
{
    return nodeAt(node).path;
}

int nodeOf(int fd)
{
    return nodeIndexFor(fd);
}

std::vector<IoctlCall> ioctls(int node)
{
    return nodeAt(node).calls;
}

std::vector<size_t> writeSizes(int node)
{
    return nodeAt(node).writes;
}

int strayCalls()
{
    return state().strayCalls;
}

} // namespace fakeuinput

using namespace fakeuinput;

extern "C" int open(const char *path, int flags, ...)
{
    static const auto real = nextSymbol<OpenFunction>("open");
    va_list args;
    va_start(args, flags);
    const int fd = openFile(real, path, flags, args);
    va_end(args);
    return fd;
}

extern "C" int open64(const char *path, int flags, ...)
{
    static const auto real = nextSymbol<OpenFunction>("open64");
    va_list args;
    va_start(args, flags);
    const int fd = openFile(real, path, flags, args);
    va_end(args);
    return fd;
}

extern "C" int ioctl(int fd, unsigned long request, ...) noexcept
{
    static const auto real = nextSymbol<IoctlFunction>("ioctl");
    va_list args;
    va_start(args, request);
    void *argument = va_arg(args, void *);
    va_end(args);
    countStray(fd);
    const int node = nodeIndexFor(fd);
    if (node < 0)
        return real(fd, request, argument);
    return answer(node, request, argument);
}

extern "C" ssize_t write(int fd, const void *buffer, size_t count)
{
    static const auto real = nextSymbol<WriteFunction>("write");
    countStray(fd);
    const int node = nodeIndexFor(fd);
    if (node >= 0) {
        State &s = state();
        if (s.writeLimit != 0 && count > s.writeLimit)
            count = s.writeLimit;
        s.nodes[static_cast<size_t>(node)].writes.push_back(count);
    }
    return real(fd, buffer, count);
}
