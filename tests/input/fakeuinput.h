#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Stands in for /dev/uinput inside a test executable, which then defines open, ioctl
// and write: while started, every open of "/dev/uinput" makes a fresh file in the given
// folder (a "node"); uinput ioctls and writes on a node are answered and described here,
// everything else goes on to the C library.
namespace fakeuinput
{

struct Node {
    int flags = 0;
    int fd = -1; // -1 when the open failed
    // "GET_VERSION", "KEYBIT 330", "ABS_SETUP code min max resolution", "DEV_SETUP 'name'
    // bus vendor product version", "RECORD ..." for the record of old kernels, in order.
    std::vector<std::string> calls;
};

void start(const std::string &folder);
void stop();

struct Options {
    int version = 5;           // the answer to UI_GET_VERSION; negative fails the call
    unsigned openFailures = 0; // bit n fails the open with index n
    size_t writeLimit = 0;     // caps every write to a node; 0 for no cap
};
Options &options(); // reset by start

// One node per open attempt, in order.
const std::vector<Node> &nodes();
// Writes and ioctls on descriptors 0 or below while started.
int strayCalls();

} // namespace fakeuinput
