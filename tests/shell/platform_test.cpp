// The real platform's small rules: the port box, a refused write, and the
// lock that tells another running Kelpa of the same user.
#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>

#include <cstdlib>
#include <unistd.h>

#include "shell/qt_platform_qt.h"
#include "shell/qt_socket_qt.h"

namespace kelpa::test {
namespace {

TEST(QtSocket, ThePortBoxMustHoldAWholePortNumber) {
    const std::vector<std::pair<std::string, int>> rows = {
        {"23", 23},     {" 4000 ", 4000}, {"65535", 65535}, {"1", 1},     {"23abc", 0}, {"", 0},
        {"0", 0},       {"65536", 0},     {"-23", 0},       {"+23", 0},   {"2 3", 0},   {"http", 0},
        {"0000023", 0}, {"99999", 0},     {"\t23", 0},
    };
    for (const auto& [text, port] : rows) EXPECT_EQ(qt::QtSocket::portNumber(text), port) << '"' << text << '"';
}

TEST(QtSocket, AWriteWithoutAConnectionIsRefused) {
    qt::QtSocket s;
    EXPECT_FALSE(s.sendData("look\r\n"));
}

TEST(QtHost, TheLockFileLivesInTheUsersRuntimeFolder) {
    const QByteArray saved = qgetenv("XDG_RUNTIME_DIR");
    QTemporaryDir runtime;
    qputenv("XDG_RUNTIME_DIR", runtime.path().toLocal8Bit());
    EXPECT_EQ(qt::QtHost::lockFilePath(), QDir(runtime.path()).filePath("kelpa.lock"));
    qunsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(qt::QtHost::lockFilePath(), QDir::temp().filePath(QStringLiteral("kelpa-%1.lock").arg(getuid())));
    qputenv("XDG_RUNTIME_DIR", "/no/such/folder");
    EXPECT_EQ(qt::QtHost::lockFilePath(), QDir::temp().filePath(QStringLiteral("kelpa-%1.lock").arg(getuid())));
    if (saved.isNull())
        qunsetenv("XDG_RUNTIME_DIR");
    else
        qputenv("XDG_RUNTIME_DIR", saved);
}

}  // namespace
}  // namespace kelpa::test
