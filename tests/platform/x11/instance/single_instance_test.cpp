// SPDX-License-Identifier: MIT

#include "platform/x11/instance/single_instance.h"

#include "platform/x11/event_loop.h"
#include "support/x11/observer.h"
#include "support/x11/x_server.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tessarel::x11 {
namespace {

using Kind = SingleInstancePort::Reaction::Kind;

constexpr const char* kSelection = "_TESSAREL_INSTANCE_S0";

/// An instance of the program with its own connection.
struct Copy {
    explicit Copy(const x11test::XServer& server) : loop(server.display()) {}

    [[nodiscard]] bool start() {
        claim = instance.claim([this] { ++reopened; }, [this] { ++lost; });
        return claim != nullptr;
    }

    EventLoop loop;
    X11SingleInstance instance{loop.connection()};
    int reopened = 0;
    int lost = 0;
    SubscriptionPtr claim;
};

class X11SingleInstanceTest : public testing::Test {
protected:
    void takeSelectionByForce() {
        xcb_connection_t* const x = observer.x().get();
        const xcb_window_t window = xcb_generate_id(x);
        xcb_create_window(x, XCB_COPY_FROM_PARENT, window, observer.root(), 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(x, window, observer.x().atom(kSelection), XCB_CURRENT_TIME);
        observer.x().roundTrip();
    }

    x11test::XServer server;
    x11test::Observer observer{server.display()};
    Copy first{server};
    Copy second{server};
};

TEST_F(X11SingleInstanceTest, TheInstanceOwnsTheSelectionOfItsScreen) {
    ASSERT_TRUE(first.start());

    EXPECT_NE(observer.selectionOwner(kSelection), xcb_window_t{XCB_WINDOW_NONE});
}

TEST_F(X11SingleInstanceTest, TheSelectionIsClaimedWithAServerTimestamp) {
    ASSERT_TRUE(first.start());

    // The server rejects a claim with an earlier timestamp only if the first claim had a real one.
    xcb_connection_t* const x = observer.x().get();
    const xcb_window_t window = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, window, observer.root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(x, window, observer.x().atom(kSelection), 1);

    EXPECT_NE(observer.selectionOwner(kSelection), window);
}

TEST_F(X11SingleInstanceTest, ASecondInstanceNotifiesTheFirst) {
    ASSERT_TRUE(first.start());

    EXPECT_FALSE(second.start());
    first.loop.settle();

    EXPECT_EQ(first.reopened, 1);
    EXPECT_EQ(second.reopened, 0);
}

TEST_F(X11SingleInstanceTest, AnEndedInstanceReleasesTheSelection) {
    ASSERT_TRUE(first.start());
    first.claim.reset();

    EXPECT_TRUE(second.start());
    EXPECT_EQ(first.reopened, 0);
}

TEST_F(X11SingleInstanceTest, TheClaimMayBeDestroyedInItsOwnCallback) {
    first.claim = first.instance.claim([this] { first.claim.reset(); }, [] {});
    ASSERT_TRUE(first.claim);
    EXPECT_FALSE(second.start());

    first.loop.settle();

    EXPECT_FALSE(first.claim);
    EXPECT_TRUE(second.start());
}

TEST_F(X11SingleInstanceTest, OtherClientMessagesAreIgnored) {
    ASSERT_TRUE(first.start());
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 8;
    message.window = observer.selectionOwner(kSelection);
    message.type = observer.x().atom("WM_PROTOCOLS");
    xcb_send_event(observer.x().get(), 0, message.window, 0, reinterpret_cast<const char*>(&message));
    observer.x().roundTrip();

    first.loop.settle();

    EXPECT_EQ(first.reopened, 0);
}

TEST_F(X11SingleInstanceTest, TheLossOfTheSelectionIsReportedOnce) {
    ASSERT_TRUE(first.start());
    takeSelectionByForce();

    first.loop.settle();
    first.loop.settle();

    EXPECT_EQ(first.lost, 1);
    EXPECT_EQ(first.reopened, 0);
}

TEST_F(X11SingleInstanceTest, AClearedSelectionIsLostToo) {
    ASSERT_TRUE(first.start());
    xcb_set_selection_owner(observer.x().get(), XCB_WINDOW_NONE, observer.x().atom(kSelection),
                            XCB_CURRENT_TIME);
    observer.x().roundTrip();

    first.loop.settle();

    EXPECT_EQ(first.lost, 1);
}

TEST_F(X11SingleInstanceTest, TheClaimMayBeDestroyedWhenItIsLost) {
    first.claim = first.instance.claim([] {}, [this] { first.claim.reset(); });
    ASSERT_TRUE(first.claim);
    takeSelectionByForce();

    first.loop.settle();

    EXPECT_FALSE(first.claim);
}

TEST_F(X11SingleInstanceTest, ACopyThatHasProcessedTheStartReacts) {
    ASSERT_TRUE(first.start());
    EXPECT_FALSE(second.start());
    first.loop.settle();

    const auto reaction = second.instance.awaitReaction();

    EXPECT_EQ(reaction.kind, Kind::Reopened);
    EXPECT_EQ(reaction.problem, "");
    EXPECT_EQ(first.reopened, 1);
}

TEST_F(X11SingleInstanceTest, ACopyThatEndsInsteadOfReactingCanBeReplaced) {
    ASSERT_TRUE(first.start());
    EXPECT_FALSE(second.start());
    first.claim.reset();

    EXPECT_EQ(second.instance.awaitReaction().kind, Kind::Ended);

    EXPECT_TRUE(second.start());
}

TEST_F(X11SingleInstanceTest, ACopyThatDoesNotReactIsReportedWithItsProcess) {
    ASSERT_TRUE(first.start());
    EXPECT_FALSE(second.start());
    const auto start = std::chrono::steady_clock::now();

    const auto reaction = second.instance.awaitReaction();

    EXPECT_GE(std::chrono::steady_clock::now() - start, X11SingleInstance::kPatience);
    EXPECT_EQ(reaction.kind, Kind::Missing);
    EXPECT_EQ(reaction.problem, "the running copy (process " + std::to_string(::getpid()) +
                                    ") does not react; end it and start again");
}

TEST_F(X11SingleInstanceTest, AnotherProgramThatOwnsTheSelectionIsReportedAtOnce) {
    takeSelectionByForce();
    EXPECT_FALSE(first.start());
    const auto start = std::chrono::steady_clock::now();

    const auto reaction = first.instance.awaitReaction();

    EXPECT_LT(std::chrono::steady_clock::now() - start, X11SingleInstance::kPatience);
    EXPECT_EQ(reaction.kind, Kind::Missing);
    EXPECT_EQ(reaction.problem, "another program owns the selection _TESSAREL_INSTANCE_S0");
}

TEST_F(X11SingleInstanceTest, ASelectionTakenByAnotherClientIsNotReclaimed) {
    ASSERT_TRUE(first.start());
    takeSelectionByForce();
    const xcb_window_t thief = observer.selectionOwner(kSelection);

    first.loop.settle();
    EXPECT_FALSE(second.start());
    first.loop.settle();
    first.claim.reset();

    EXPECT_EQ(first.reopened, 0);
    EXPECT_EQ(observer.selectionOwner(kSelection), thief);
}

TEST_F(X11SingleInstanceTest, ClaimingFailsOnceTheServerIsGone) {
    server.kill();

    EXPECT_FALSE(first.start());
}

/// An instance in a child process, which reports whether it got the selection and then waits.
class CopyProcess {
public:
    explicit CopyProcess(const x11test::XServer& server) {
        std::array<int, 2> ends{};
        EXPECT_EQ(::pipe(ends.data()), 0);
        m_pid = ::fork();
        if (m_pid == 0) {
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            Copy copy(server);
            const char answer = copy.start() ? 'y' : 'n';
            if (::write(ends[1], &answer, 1) == 1)
                ::pause();
            ::_exit(0);
        }
        ::close(ends[1]);
        m_answer = ends[0];
    }
    CopyProcess(const CopyProcess&) = delete;
    CopyProcess& operator=(const CopyProcess&) = delete;
    ~CopyProcess() {
        kill();
        ::close(m_answer);
    }

    [[nodiscard]] bool started() const {
        char answer = '?';
        EXPECT_EQ(::read(m_answer, &answer, 1), 1);
        return answer == 'y';
    }

    void kill() {
        if (m_pid <= 0)
            return;
        ::kill(m_pid, SIGKILL);
        ::waitpid(m_pid, nullptr, 0);
        m_pid = 0;
    }

private:
    pid_t m_pid = 0;
    int m_answer = -1;
};

TEST_F(X11SingleInstanceTest, AKilledInstanceReleasesTheSelection) {
    CopyProcess killed(server);
    ASSERT_TRUE(killed.started());
    EXPECT_FALSE(CopyProcess(server).started());

    killed.kill();

    EXPECT_TRUE(observer.waitUntil([&] { return observer.selectionOwner(kSelection) == XCB_WINDOW_NONE; }));
    EXPECT_TRUE(CopyProcess(server).started());
}

TEST_F(X11SingleInstanceTest, OfTwoInstancesStartedTogetherExactlyOneStays) {
    for (int round = 0; round < 10; ++round) {
        CopyProcess one(server);
        CopyProcess other(server);
        EXPECT_NE(one.started(), other.started());
        one.kill();
        other.kill();
        ASSERT_TRUE(
            observer.waitUntil([&] { return observer.selectionOwner(kSelection) == XCB_WINDOW_NONE; }));
    }
}

} // namespace
} // namespace tessarel::x11
