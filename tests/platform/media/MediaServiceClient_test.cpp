#include "platform/media/MediaServiceClient.h"

#include "media/MediaSamples.h"
#include "platform/media/AVError.h"
#include "platform/media/MediaHelperProcess.h"
#include "platform/media/MediaSocket.h"
#include "support/TemporaryHome.h"

#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <set>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>

namespace sela {
namespace {

namespace fs = std::filesystem;

const std::string programs = SELA_BINARY_DIR "/bin";

MediaRequest pictureRequest(std::uint32_t maximumSide = 64) {
    MediaRequest request;
    request.operation = MediaOperation::decodePicture;
    request.maximumSide = maximumSide;
    return request;
}

int codeOf(const ErrorRef& error) {
    const auto* known = dynamic_cast<const NSError*>(error.get());
    return known ? known->code() : 0;
}

std::ptrdiff_t openDescriptors() {
    return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
}

/// The value of a line of a task's status, without spaces around it.
std::string statusOf(const fs::path& task, const std::string& name) {
    std::ifstream status(task / "status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":"))
            return line.substr(line.find_first_not_of(" \t", name.size() + 1));
    return {};
}

class MediaServiceClientTest : public testing::Test {
protected:
    std::string file(const std::string& content) const { return home.write("file", content); }

    TemporaryHome home;
};

TEST_F(MediaServiceClientTest, StartsTheHelperOnFirstNeedKeepsItAndReplacesIt) {
    MediaServiceClient client({programs});
    EXPECT_FALSE(client.helperProcessIdentifier(MediaOperation::decodePicture));
    ASSERT_TRUE(client.perform(sample("baseline.jpg"), pictureRequest()));
    const auto helper = client.helperProcessIdentifier(MediaOperation::decodePicture);
    ASSERT_TRUE(helper);
    EXPECT_FALSE(client.perform(sample("text.jpg"), pictureRequest()));
    ASSERT_TRUE(client.perform(sample("quarters.png"), pictureRequest()));
    EXPECT_EQ(client.helperProcessIdentifier(MediaOperation::decodePicture), helper);
    EXPECT_FALSE(client.helperProcessIdentifier(MediaOperation::copyFrame));

    // A helper that ended between two requests causes no failure.
    ::kill(*helper, SIGKILL);
    siginfo_t ended{};
    ::waitid(P_PID, static_cast<id_t>(*helper), &ended, WEXITED | WNOWAIT);
    EXPECT_TRUE(client.perform(sample("baseline.jpg"), pictureRequest()));
}

TEST_F(MediaServiceClientTest, AHelperThatMisbehavesCostsOneFileOnly) {
    MediaServiceClient client({programs + "/misbehaving", 2});
    ASSERT_TRUE(client.perform(file("behave"), pictureRequest()));
    const auto descriptors = openDescriptors();
    for (const char* behaviour : {"crash", "hang", "exit", "answer another request", "claim too many pixels",
                                  "answer too short", "answer too long"}) {
        const auto answer = client.perform(file(behaviour), pictureRequest());
        EXPECT_FALSE(answer) << behaviour;
        EXPECT_EQ(codeOf(answer.error()), AVErrorMediaServicesWereReset) << behaviour;
        EXPECT_TRUE(client.perform(file("behave"), pictureRequest())) << "after " << behaviour;
    }
    EXPECT_TRUE(client.perform(file("end when used"), pictureRequest())) << "as one does at its limit";
    EXPECT_EQ(openDescriptors(), descriptors);
}

TEST_F(MediaServiceClientTest, AVideoThatCostItsHelperIsNotTriedAgain) {
    MediaServiceClient client({programs + "/misbehaving", 2});
    MediaRequest request = pictureRequest();
    request.asset = 7;
    EXPECT_FALSE(client.perform(file("hang"), request));
    EXPECT_EQ(codeOf(client.perform(file("behave"), request).error()), AVErrorMediaServicesWereReset);
    EXPECT_FALSE(client.helperProcessIdentifier(MediaOperation::decodePicture));
    request.asset = 8;
    EXPECT_TRUE(client.perform(file("behave"), request));
    EXPECT_FALSE(client.perform(file("hang"), request));
    for (request.asset = 7; request.asset <= 8; ++request.asset)
        EXPECT_FALSE(client.perform(file("behave"), request)) << request.asset;
}

TEST_F(MediaServiceClientTest, TheHelpersAreLimitedAndEveryThreadIsInTheSandbox) {
    MediaServiceClient client({programs});
    ASSERT_TRUE(client.perform(sample("plain.heic"), pictureRequest()));
    MediaRequest duration;
    duration.operation = MediaOperation::readDuration;
    ASSERT_TRUE(client.perform(sample("second.mp4"), duration));
    int threads = 0;
    for (const auto operation : {MediaOperation::decodePicture, MediaOperation::readDuration}) {
        const pid_t helper = client.helperProcessIdentifier(operation).value();
        const auto limit = [&](__rlimit_resource resource) {
            rlimit found{};
            EXPECT_EQ(::prlimit(helper, resource, nullptr, &found), 0);
            EXPECT_EQ(found.rlim_cur, found.rlim_max);
            return found.rlim_max;
        };
        EXPECT_EQ(limit(RLIMIT_CPU), 120U);
        EXPECT_EQ(limit(RLIMIT_FSIZE), 0U);
#ifndef SELA_SANITIZED
        EXPECT_EQ(limit(RLIMIT_AS), 1610612736U);
#endif
        for (const auto& thread : fs::directory_iterator("/proc/" + std::to_string(helper) + "/task")) {
            EXPECT_EQ(statusOf(thread.path(), "NoNewPrivs"), "1");
            EXPECT_EQ(statusOf(thread.path(), "Seccomp"), "2");
            ++threads;
        }
    }
    EXPECT_GE(threads, 3) << "decoding in threads";
}

TEST_F(MediaServiceClientTest, AHelperHoldsItsSocketAndNothingElse) {
    const FileDescriptor inheritable(::open("/dev/zero", O_RDONLY));
    MediaServiceClient client({programs + "/misbehaving"});
    ASSERT_TRUE(client.perform(file("behave"), pictureRequest()));
    const pid_t helper = client.helperProcessIdentifier(MediaOperation::decodePicture).value();
    std::multiset<std::string> held;
    std::error_code closed; // of the answered request's files, which it may still be closing
    for (const auto& entry : fs::directory_iterator("/proc/" + std::to_string(helper) + "/fd"))
        held.insert(fs::read_symlink(entry, closed).string());
    EXPECT_EQ(held.count("/dev/null"), 3U) << "its standard input, output and error";
    EXPECT_FALSE(held.contains("/dev/zero"));
}

TEST_F(MediaServiceClientTest, WithoutAHelperEveryFileFails) {
    MediaServiceClient client({home.path()});
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(codeOf(client.perform(sample("baseline.jpg"), pictureRequest()).error()),
                  AVErrorMediaServicesWereReset);
}

TEST_F(MediaServiceClientTest, OnlyRegularFilesAreOpened) {
    MediaServiceClient client({programs});
    const std::string pipe = home.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::pair<std::string, int> paths[] = {
        {home.path() / "missing", ENOENT}, {home.path(), EISDIR}, {pipe, EINVAL}, {"/dev/zero", EINVAL}};
    for (const auto& [path, code] : paths)
        EXPECT_EQ(codeOf(client.perform(path, pictureRequest()).error()), code) << path;
    EXPECT_FALSE(client.helperProcessIdentifier(MediaOperation::decodePicture));
}

TEST_F(MediaServiceClientTest, ManyThreadsMayAsk) {
    MediaServiceClient client({programs});
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (const char* name : {"orientation-1.jpg", "orientation-6.jpg", "quarters.png"})
        threads.emplace_back([&client, &wrong, name] {
            const bool turned = std::string_view(name) == "orientation-6.jpg";
            for (int i = 0; i < 10; ++i) {
                const auto answer = client.perform(sample(name), pictureRequest());
                if (!answer || quarters(answer.value().pixels) != (turned ? "brwg" : "rgbw"))
                    ++wrong;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(MediaServiceClientTest, TheHelperEndsWithItsClient) {
    for (const char* program : {"/sela-media", "/sela-media-video"}) {
        auto ends = MediaSocket::makePair();
        ASSERT_TRUE(ends);
        const int childEnd = ::fcntl(ends->second.get(), F_DUPFD_CLOEXEC, mediaHelperSocket + 1);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, childEnd, mediaHelperSocket);
        std::string path = programs + program;
        char* const arguments[] = {path.data(), nullptr};
        pid_t helper = 0;
        ASSERT_EQ(::posix_spawn(&helper, path.c_str(), &actions, nullptr, arguments, environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        ::close(childEnd);
        ends.reset();
        int status = -1;
        EXPECT_EQ(::waitpid(helper, &status, 0), helper);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << program << " " << status;
    }
}

} // namespace
} // namespace sela
