// The display server as a controller meets it on the wire: the transcript
// of a session, every kind of bad input, many clients at once, and clients
// that misbehave.

#include <atomic>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "display_server_process.h"
#include "melodex/ui/projector_client.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

using test::LineClient;

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
}

class DisplayProtocolTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!m_server.started()) GTEST_SKIP() << m_server.error();
    }

    // A connection that has said hello.
    std::unique_ptr<LineClient> greeted() {
        auto client = std::make_unique<LineClient>(m_server.port());
        EXPECT_NE(client->request(R"({"id":0,"op":"hello","versions":[1]})").find(R"("ok":true)"),
                  std::string::npos);
        return client;
    }

    static bool pings(LineClient& client) {
        return client.request(R"({"id":"p","op":"ping"})").find(R"("id":"p","ok":true)") !=
               std::string::npos;
    }

    test::DisplayServerProcess m_server;
};

// tests/data/display/transcript.txt holds requests ("> ") and the replies
// expected ("< "); @DATA@ stands for the test data folder, @VERSION@ for
// the server's version.
TEST_F(DisplayProtocolTest, AnswersAGreetedSessionAsTheTranscriptSays) {
    std::ifstream file(test::testDataPath("display/transcript.txt"));
    ASSERT_TRUE(file) << "no transcript";
    LineClient client(m_server.port());
    std::string data = test::testDataPath("display");
    data.resize(data.size() - std::string("/display").size());
    std::string line;
    int replies = 0;
    while (std::getline(file, line)) {
        replaceAll(line, "@DATA@", data);
        replaceAll(line, "@VERSION@", MELODEX_VERSION);
        if (line.rfind("> ", 0) == 0) {
            ASSERT_TRUE(client.send(line.substr(2) + "\n"));
        } else if (line.rfind("< ", 0) == 0) {
            EXPECT_EQ(client.readLine(), line.substr(2));
            ++replies;
        }
    }
    EXPECT_EQ(replies, 4);
}

TEST_F(DisplayProtocolTest, AnswersBadInputWithTypedErrorsAndStaysUsable) {
    const std::string image = test::testDataPath("display/red.png");
    struct Case {
        std::string line;
        std::string reply;  // what the reply must contain
    };
    const Case cases[] = {
        {std::string(70000, 'x'), R"({"error":{"code":"line_too_long")"},
        {"{\"id\":1,\"op\":\"status\"" + std::string(66000, ' ') + "}",
         R"("code":"line_too_long")"},
        {"this is not JSON", R"({"error":{"code":"parse_error")"},
        {R"({"id":2,"op":)", R"("code":"parse_error")"},
        {R"(["status"])", R"("code":"bad_request")"},
        {R"({"id":[3],"op":"status"})", R"("code":"bad_request")"},
        {R"({"id":4})", R"("code":"bad_request")"},
        {R"({"id":5,"op":42})", R"("code":"bad_request")"},
        {R"({"id":6,"op":"dance"})", R"("code":"unknown_op")"},
        {R"({"id":7,"op":"set_image","layer":"foreground","path":7})",
         R"("code":"invalid_params")"},
        {R"({"id":8,"op":"set_image","layer":"middle","path":""})", R"("code":"invalid_params")"},
        {R"({"id":9,"op":"set_image","layer":"foreground"})", R"("code":"invalid_params")"},
        {R"({"id":10,"op":"set_image","layer":"foreground","path":"red.png"})",
         R"("code":"invalid_params")"},
        {R"({"id":11,"op":"set_image","layer":"foreground","path":"/no/such/file.png"})",
         R"("code":"not_found")"},
        {R"({"id":12,"op":"set_image","layer":"foreground","path":")" +
             test::testDataPath("display") + "\"}",
         R"("code":"not_found")"},
        {R"({"id":13,"op":"set_image","layer":"foreground","path":")" +
             test::testDataPath("display/not-an-image.png") + "\"}",
         R"("code":"not_an_image")"},
        {R"({"id":14,"op":"set_image","layer":"foreground","path":")" + image + R"(","mode":9})",
         R"("code":"invalid_params")"},
        {R"({"id":15,"op":"set_image","layer":"foreground","path":")" + image +
             R"(","transition":{"type":"wipe"}})",
         R"("code":"invalid_params")"},
        {R"({"id":16,"op":"set_image","layer":"foreground","path":")" + image +
             R"(","transition":{"type":"fade","duration_ms":-5}})",
         R"("code":"invalid_params")"},
        {R"({"id":17,"op":"blank","mode":"grey"})", R"("code":"invalid_params")"},
        {R"({"id":18,"op":"clear","screen":"lobby"})", R"("code":"invalid_params")"},
        {R"({"id":19,"op":"set_stage","current":[{"text":"a","chords":[{"offset":-1,"name":"G"}]}]})",
         R"("code":"invalid_params")"},
        {R"({"id":20,"op":"subscribe","screens":"main"})", R"("code":"invalid_params")"},
        {R"({"id":21,"op":"shown","seq":"last"})", R"("code":"invalid_params")"},
        {R"({"id":22,"op":"hello","versions":[7]})", R"("code":"unsupported_version")"},
        {"{\"id\":23,\"op\":\"set_stage\",\"title\":\"\xC3\x28\"}",
         R"("code":"parse_error")"},  // not UTF-8
    };
    auto client = greeted();
    for (const Case& c : cases) {
        const std::string reply = client->request(c.line);
        EXPECT_NE(reply.find(c.reply), std::string::npos)
            << c.line.substr(0, 120) << "\n -> " << reply;
        ASSERT_TRUE(pings(*client)) << "after " << c.line.substr(0, 120);
    }
    // Blank lines are skipped, a CR before the LF is allowed.
    EXPECT_TRUE(client->send("\n  \n"));
    EXPECT_EQ(client->request("{\"id\":30,\"op\":\"ping\"}\r").find(R"({"id":30,"ok":true)"), 0u);
    // Nothing above changed the state.
    EXPECT_NE(client->request(R"({"id":31,"op":"status"})").find(R"("result":{"screens")"),
              std::string::npos);
    EXPECT_NE(client->request(R"({"id":32,"op":"status"})").find(R"("seq":0)"), std::string::npos);
}

TEST_F(DisplayProtocolTest, WantsHelloFirstAndTheRightVersion) {
    LineClient client(m_server.port());
    EXPECT_NE(
        client.request(R"({"id":1,"op":"status"})").find(R"({"error":{"code":"hello_required")"),
        std::string::npos);
    EXPECT_NE(client.request(R"({"id":2,"op":"hello","versions":"1"})")
                  .find(R"("code":"invalid_params")"),
              std::string::npos);
    EXPECT_NE(client.request(R"({"id":3,"op":"hello","versions":[2,1]})").find(R"("protocol":1)"),
              std::string::npos);
    EXPECT_TRUE(pings(client));
}

TEST(DisplayServerTokenTest, AServerWithATokenWantsItInHello) {
    test::DisplayServerProcess server({"--token", "s3cret"});
    if (!server.started()) GTEST_SKIP() << server.error();
    LineClient client(server.port());
    EXPECT_NE(
        client.request(R"({"id":1,"op":"hello","versions":[1]})").find(R"("code":"unauthorized")"),
        std::string::npos);
    EXPECT_NE(client.request(R"({"id":2,"op":"status"})").find(R"("code":"hello_required")"),
              std::string::npos);
    EXPECT_NE(client.request(R"({"id":3,"op":"hello","token":"s3cret"})").find(R"("ok":true)"),
              std::string::npos);
    ProjectorClient controller;
    EXPECT_FALSE(controller.connect("127.0.0.1", server.port()));
    EXPECT_EQ(controller.lastError().code, "unauthorized");
    controller.setToken("s3cret");
    EXPECT_TRUE(controller.connect("127.0.0.1", server.port()));
}

TEST_F(DisplayProtocolTest, ServesEightClientsAtOnce) {
    constexpr int Clients = 8;
    constexpr int Rounds = 40;
    const std::string images[] = {test::testDataPath("display/red.png"),
                                  test::testDataPath("display/blue.png")};
    std::atomic<int> failures = 0;
    std::vector<std::thread> threads;
    for (int c = 0; c < Clients; ++c) {
        threads.emplace_back([&, c] {
            ProjectorClient client;
            if (!client.connect("127.0.0.1", m_server.port())) {
                ++failures;
                return;
            }
            if (c % 2 == 0 && !client.subscribe()) ++failures;
            for (int i = 0; i < Rounds; ++i) {
                if (!client.setImage(DisplayScreen(i % 2), DisplayLayer(c % 2), images[(c + i) % 2],
                                     i % 4, nullptr))
                    ++failures;
                if (!client.updateDisplayStatus()) ++failures;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(failures, 0);
    ProjectorClient check;
    ASSERT_TRUE(check.connect("127.0.0.1", m_server.port()));
    ASSERT_TRUE(check.updateDisplayStatus());
    EXPECT_EQ(check.displayStatus().seq, Clients * Rounds);
}

TEST_F(DisplayProtocolTest, AClientThatLeavesMidLineDisturbsNoOne) {
    auto steady = greeted();
    {
        auto leaver = greeted();
        ASSERT_TRUE(leaver->send(R"({"id":1,"op":"set_image","layer":"backgr)"));
    }  // closed half-way through its line
    EXPECT_TRUE(pings(*steady));
    auto newcomer = greeted();
    EXPECT_TRUE(pings(*newcomer));
    EXPECT_NE(steady->request(R"({"id":2,"op":"status"})").find(R"("seq":0)"), std::string::npos);
}

// One client sends requests without ever reading the replies; the server
// lets it go once its output piles up, and answers the others meanwhile.
TEST_F(DisplayProtocolTest, AClientThatNeverReadsHoldsUpNoOne) {
    auto steady = greeted();
    auto greedy = greeted();
    // A long stage text makes each status reply some 20 kB, so that a few
    // hundred unread replies outgrow what the server holds for a peer.
    std::string lines;
    for (int i = 0; i < 200; ++i)
        lines += std::string(i ? "," : "") + R"({"text":")" + std::string(90, 'a') + "\"}";
    ASSERT_NE(steady->request(R"({"id":1,"op":"set_stage","current":[)" + lines + "]}")
                  .find(R"("ok":true)"),
              std::string::npos);
    std::string burst;
    for (int i = 0; i < 500; ++i)
        burst += R"({"id":1,"op":"status"})"
                 "\n";
    std::thread flood([&] { greedy->send(burst); });
    int answered = 0;
    for (int i = 0; i < 20; ++i)
        answered += pings(*steady) ? 1 : 0;
    flood.join();
    EXPECT_EQ(answered, 20);
    EXPECT_TRUE(pings(*steady));
}

}  // namespace
}  // namespace melodex
