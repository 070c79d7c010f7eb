#pragma once

#include <QString>
#include <regex>
#include <string>
#include <vector>

// The program's log from install() on, one "log I|D TEXT" line per message; clock times
// (mm:ss:zzz) read "MM:SS:ZZZ".
namespace capturedlog
{

inline std::vector<std::string> &lines()
{
    static std::vector<std::string> captured;
    return captured;
}

inline void install()
{
    lines().clear();
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext &, const QString &text) {
        static const std::regex clock("\\b\\d\\d:\\d\\d:\\d{3}\\b");
        lines().push_back(std::string(type == QtInfoMsg ? "log I " : "log D ") +
                          std::regex_replace(text.toStdString(), clock, "MM:SS:ZZZ"));
    });
}

} // namespace capturedlog
