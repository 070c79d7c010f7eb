#include "uinputfixture.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

using Seam = UinputTest;

// The real open would give the character device, or fail where there is none.
TEST_F(Seam, OpenOfTheUinputNodeGivesAFreshRegularFile)
{
    const int fd = open("/dev/uinput", O_WRONLY | O_NONBLOCK);
    ASSERT_GE(fd, 0);
    struct stat info = {};
    ASSERT_EQ(fstat(fd, &info), 0);
    EXPECT_TRUE(S_ISREG(info.st_mode));
    EXPECT_EQ(fakeuinput::nodeOf(fd), 0);
    EXPECT_EQ(fakeuinput::nodePath(0), m_folder.filePath("uinput0").toStdString());
    close(fd);
}

// The real ioctl answers ENOTTY on a regular file.
TEST_F(Seam, IoctlOnANodeIsAnsweredHere)
{
    const int fd = open("/dev/uinput", O_WRONLY | O_NONBLOCK);
    ASSERT_GE(fd, 0);
    unsigned version = 0;
    ASSERT_EQ(ioctl(fd, UI_GET_VERSION, &version), 0);
    EXPECT_EQ(version, 5u);
    fakeuinput::setVersion(-1);
    EXPECT_EQ(ioctl(fd, UI_GET_VERSION, &version), -1);
    EXPECT_EQ(calls(0), (std::vector<std::string>{"GET_VERSION", "GET_VERSION"}));
    close(fd);
}

TEST_F(Seam, OtherFilesReachTheCLibrary)
{
    const QString path = m_folder.filePath("plain");
    const int fd = open(path.toLocal8Bit().constData(), O_WRONLY | O_CREAT, 0600);
    ASSERT_GE(fd, 0);
    unsigned version = 0;
    errno = 0;
    EXPECT_EQ(ioctl(fd, UI_GET_VERSION, &version), -1);
    EXPECT_EQ(errno, ENOTTY);
    EXPECT_EQ(write(fd, "abc", 3), 3);
    EXPECT_EQ(fakeuinput::nodeCount(), 0);
    close(fd);
}

TEST_F(Seam, WriteLimitShortensWritesToNodesOnly)
{
    const int fd = open("/dev/uinput", O_WRONLY | O_NONBLOCK);
    ASSERT_GE(fd, 0);
    fakeuinput::setWriteLimit(2);
    EXPECT_EQ(write(fd, "abcdef", 6), 2);
    EXPECT_EQ(bytes(0), "ab");
    EXPECT_EQ(fakeuinput::writeSizes(0), std::vector<size_t>{2});
    close(fd);
}

} // namespace
