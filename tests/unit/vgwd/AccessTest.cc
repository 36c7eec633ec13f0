// Who may what, for each credential that a peer can have.
#include <vgwd/serve/Access.h>

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <unistd.h>

namespace Vgwd {
namespace {

constexpr uid_t owner = 1000;
constexpr gid_t readers = 2000;
constexpr gid_t writers = 2001;

Access bothGroups() {
    Access access;
    access.owner = owner;
    access.readGroup = readers;
    access.writeGroup = writers;
    return access;
}

PeerRole roleOf(Access const& access, uid_t user, std::vector<gid_t> groups) {
    return access.ofUnixPeer(Credentials{user, 1, std::move(groups)}).role;
}

TEST(Access, OwnerAndRootWriteWhateverTheirGroups) {
    for (Access const& access : {bothGroups(), Access{owner, {}, {}, false, {}}}) {
        EXPECT_EQ(roleOf(access, owner, {9}), PeerRole::writer);
        EXPECT_EQ(roleOf(access, 0, {}), PeerRole::writer);
    }
}

TEST(Access, MembersOfTheWriteGroupWriteAndOfTheReadGroupRead) {
    EXPECT_EQ(roleOf(bothGroups(), 5, {9, writers}), PeerRole::writer);
    EXPECT_EQ(roleOf(bothGroups(), 5, {readers}), PeerRole::reader);
    EXPECT_EQ(roleOf(bothGroups(), 5, {readers, writers}), PeerRole::writer);
}

TEST(Access, AnyoneElseIsRefusedByName) {
    Identity const identity = bothGroups().ofUnixPeer(Credentials{5, 1, {9, 10}});
    EXPECT_EQ(identity.role, PeerRole::refused);
    EXPECT_EQ(identity.refusal, "uid 5 may not read here");
}

TEST(Access, GroupsThatAreNotNamedLetNobodyIn) {
    Access const access{owner, {}, {}, false, {}};
    EXPECT_EQ(roleOf(access, 5, {0, readers, writers}), PeerRole::refused);
}

TEST(Access, WhoCanNotBeIdentifiedIsRefused) {
    EXPECT_EQ(bothGroups().ofUnixPeer(std::nullopt).role, PeerRole::refused);
    EXPECT_EQ(bothGroups().ofTcpPeer().role, PeerRole::refused);
    EXPECT_EQ(bothGroups().ofTlsPeer("").role, PeerRole::refused);
}

TEST(Access, PlainTcpNeverWrites) {
    Access access = bothGroups();
    access.tcpReads = true;
    EXPECT_EQ(access.ofTcpPeer().role, PeerRole::reader);
}

TEST(Access, CertificatesReadAndNamedOnesWrite) {
    Access access = bothGroups();
    access.writerNames = {"controller"};
    EXPECT_EQ(access.ofTlsPeer("controller").role, PeerRole::writer);
    EXPECT_EQ(access.ofTlsPeer("Controller").role, PeerRole::reader);
    EXPECT_EQ(access.ofTlsPeer("leaf-1").role, PeerRole::reader);
    EXPECT_EQ(access.ofTlsPeer("leaf-1").name, "cn leaf-1");
}

TEST(Access, TheKernelTellsUserAndAllGroupsOfThePeer) {
    int ends[2];
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
    auto const credentials = credentialsOf(ends[0]);
    ASSERT_TRUE(credentials);
    EXPECT_EQ(credentials->user, ::geteuid());
    EXPECT_EQ(credentials->process, ::getpid());
    EXPECT_EQ(credentials->groups.front(), ::getegid());
    EXPECT_EQ(credentials->groups.size(), 1 + static_cast<std::size_t>(::getgroups(0, nullptr)));
    ::close(ends[0]);
    ::close(ends[1]);
}

TEST(Access, ADescriptorThatIsNoSocketIdentifiesNobody) {
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    EXPECT_FALSE(credentialsOf(ends[0]));
    ::close(ends[0]);
    ::close(ends[1]);
}

}  // namespace
}  // namespace Vgwd
