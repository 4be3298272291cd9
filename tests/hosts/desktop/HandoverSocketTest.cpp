#include "hosts/linux/desktop/HandoverSocket.h"
#include "desktop/TemporaryFolder.h"
#include "desktop/WaitFor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <memory>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using Outcome = HandoverSocket::Outcome;

class HandoverSocketTest : public testing::Test {
protected:
    HandoverSocketTest() { makeListener(); }

    void makeListener() {
        listener =
            std::make_unique<HandoverSocket>([this](const QByteArray& lines) { received.push_back(lines); });
    }
    /// Another start hands this over while the event loop of this one runs.
    Outcome handOver(const QByteArray& lines, int bound = 10'000) {
        std::atomic<bool> hasEnded = false;
        Outcome outcome = Outcome::nobodyListens;
        std::thread other([&] {
            outcome = HandoverSocket::handOver(path, lines, bound);
            hasEnded = true;
        });
        EXPECT_TRUE(waitFor([&] { return hasEnded.load(); }));
        other.join();
        return outcome;
    }
    /// A client of its own, connected.
    int connected() {
        const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        const QByteArray name = QFile::encodeName(path);
        std::copy(name.begin(), name.end(), address.sun_path);
        EXPECT_EQ(::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        return socket;
    }

    TemporaryFolder folder;
    QString path = QString::fromStdString((folder.path() / "socket").string());
    std::unique_ptr<HandoverSocket> listener;
    std::vector<QByteArray> received;
};

TEST_F(HandoverSocketTest, LinesArriveAndAreAnswered) {
    ASSERT_TRUE(listener->listen(path));
    EXPECT_EQ(handOver("\n"), Outcome::answered);
    EXPECT_EQ(handOver("file:///tmp/one\ntel:2\n\n"), Outcome::answered);
    EXPECT_THAT(received, ElementsAre("\n", "file:///tmp/one\ntel:2\n\n"));
}

TEST_F(HandoverSocketTest, ManyLinesArriveWhole) {
    ASSERT_TRUE(listener->listen(path));
    QByteArray lines = QByteArray("file:///tmp/some file\n").repeated(100'000);
    lines.append('\n');
    EXPECT_EQ(handOver(lines), Outcome::answered);
    EXPECT_THAT(received, ElementsAre(lines));
}

TEST_F(HandoverSocketTest, NoMoreIsKeptOfAVisitorThatNeverEnds) {
    ASSERT_TRUE(listener->listen(path));
    EXPECT_EQ(handOver(QByteArray(9 * 1024 * 1024, 'x')), Outcome::notAnswered);
    EXPECT_TRUE(received.empty());
}

TEST_F(HandoverSocketTest, AVisitorThatGoesBeforeTheEndHandsNothingOver) {
    ASSERT_TRUE(listener->listen(path));
    const int one = connected();
    const int other = connected();
    ASSERT_EQ(::send(one, "file:///tmp/half\n", 17, MSG_NOSIGNAL), 17);
    processPending();
    ASSERT_EQ(::send(other, "tel:1\n", 6, MSG_NOSIGNAL), 6);
    ::close(one);
    processPending();
    ASSERT_EQ(::send(other, "\n", 1, MSG_NOSIGNAL), 1);
    EXPECT_TRUE(waitFor([&] { return !received.empty(); }));
    char answer = 0;
    EXPECT_EQ(::recv(other, &answer, 1, 0), 1);
    EXPECT_EQ(answer, '!');
    // The end of the connection follows the answer.
    processPending();
    EXPECT_EQ(::recv(other, &answer, 1, 0), 0);
    ::close(other);
    EXPECT_THAT(received, ElementsAre("tel:1\n\n"));
}

TEST_F(HandoverSocketTest, IsTheUsersAlone) {
    ASSERT_TRUE(listener->listen(path));
    EXPECT_EQ(QFileInfo(path).permissions() & ~(QFile::ReadUser | QFile::WriteUser),
              QFile::ReadOwner | QFile::WriteOwner);
}

TEST_F(HandoverSocketTest, WithoutAListenerNobodyListens) {
    EXPECT_EQ(handOver("\n"), Outcome::nobodyListens);
    ASSERT_TRUE(listener->listen(path));
    listener.reset();
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(handOver("\n"), Outcome::nobodyListens);
}

TEST_F(HandoverSocketTest, TakesThePathOverFromADeadOne) {
    QFile dead(path);
    ASSERT_TRUE(dead.open(QFile::WriteOnly));
    dead.close();
    ASSERT_TRUE(listener->listen(path));
    EXPECT_EQ(handOver("\n"), Outcome::answered);
}

TEST_F(HandoverSocketTest, APathThatIsTooLongHasNoListener) {
    // One byte more than an address can hold, with the null byte behind.
    const int room = int{sizeof(sockaddr_un::sun_path)} - int(path.size()) - 1;
    const QString longest = path + QString(room, 'x');
    EXPECT_FALSE(listener->listen(longest + 'x'));
    path = longest + 'x';
    EXPECT_EQ(handOver("\n"), Outcome::nobodyListens);
    makeListener();
    path = longest;
    EXPECT_TRUE(listener->listen(longest));
    EXPECT_EQ(handOver("\n"), Outcome::answered);
}

TEST_F(HandoverSocketTest, OneThatHangsIsNotWaitedForBeyondTheBound) {
    ASSERT_TRUE(listener->listen(path));
    QElapsedTimer time;
    time.start();
    // This thread is the listener's, and does not run its event loop now.
    EXPECT_EQ(HandoverSocket::handOver(path, "\n", 1200), Outcome::notAnswered);
    EXPECT_GE(time.elapsed(), 1150);
    EXPECT_LT(time.elapsed(), 4000);
    EXPECT_EQ(HandoverSocket::handOver(path, QByteArray(9 * 1024 * 1024, 'x'), 100), Outcome::notAnswered);
    processPending();
}

TEST_F(HandoverSocketTest, AnAnswerOfAnotherKindIsNone) {
    const int other = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    const QByteArray name = QFile::encodeName(path);
    std::copy(name.begin(), name.end(), address.sun_path);
    ASSERT_EQ(::bind(other, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(other, 1), 0);
    for (const QByteArray& answer : {QByteArray("?"), QByteArray()}) {
        std::thread server([&] {
            const int visitor = ::accept(other, nullptr, nullptr);
            char byte = 0;
            ::recv(visitor, &byte, 1, 0);
            ::send(visitor, answer.data(), static_cast<std::size_t>(answer.size()), MSG_NOSIGNAL);
            ::close(visitor);
        });
        EXPECT_EQ(HandoverSocket::handOver(path, "\n", 10'000), Outcome::notAnswered);
        server.join();
    }
    ::close(other);
}

} // namespace
} // namespace velloway::test
