#pragma once

#include <cstddef>
#include <linux/uinput.h>
#include <string>
#include <vector>

// Stands in for /dev/uinput inside a test executable. The executable defines open, open64,
// ioctl and write: while started, every open of "/dev/uinput" creates a fresh regular file
// in the given folder (a "node"), uinput ioctls on a node are recorded and answered here,
// and everything else goes on to the C library.
namespace fakeuinput
{

struct IoctlCall {
    unsigned long request = 0;
    int value = 0;               // the argument of UI_SET_*BIT
    uinput_setup setup{};        // UI_DEV_SETUP
    uinput_abs_setup absSetup{}; // UI_ABS_SETUP
};

void start(const std::string &folder);
void stop();

// The answer to UI_GET_VERSION; a negative version makes the call fail.
void setVersion(int version);
// Bit n makes the open with index n (counted from start) fail.
void setOpenFailures(unsigned mask);
// Caps every write to a node at this many bytes; 0 for no cap.
void setWriteLimit(size_t bytes);

// One node per open attempt, in order; failed attempts keep their index.
int nodeCount();
bool nodeOpened(int node);
int nodeFlags(int node);
std::string nodePath(int node);
int nodeOf(int fd); // -1 when fd is no node
std::vector<IoctlCall> ioctls(int node);
std::vector<size_t> writeSizes(int node);
// Writes and ioctls on descriptors 0 or below while started.
int strayCalls();

} // namespace fakeuinput
