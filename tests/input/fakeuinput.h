#pragma once

#include <cstddef>
#include <string>
#include <utility>
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
    std::pair<unsigned long, unsigned long> file; // device and inode
};

struct State {
    int version = 5;           // the answer to UI_GET_VERSION; negative fails the call
    unsigned openFailures = 0; // bit n fails the open with index n
    size_t writeLimit = 0;     // caps every write to a node; 0 for no cap
    std::vector<Node> nodes;   // one per open attempt, in order
    int strayCalls = 0;        // writes and ioctls on descriptors 0 or below
    bool active = false;
    std::string folder;
};

// Reset by start; never destroyed, as the C library may call in after static destructors ran.
State &state();
void start(const std::string &folder);
void stop();

} // namespace fakeuinput
