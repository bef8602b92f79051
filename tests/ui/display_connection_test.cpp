#include "melodex/ui/display_connection.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "display_server_process.h"
#include "melodex/ui/cached_image_manager.h"
#include "support/temp_folder.h"

namespace melodex {
namespace {

// Every test talks to a server of its own on loopback.
class DisplayConnectionTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!m_server.started()) GTEST_SKIP() << m_server.error();
    }

    bool connect(DisplayConnection& display) {
        return display.connect("127.0.0.1", m_server.port());
    }

    // The server's own view, through a second client.
    DisplayScreenState mainScreen() {
        ProjectorClient observer;
        EXPECT_TRUE(observer.connect("127.0.0.1", m_server.port()));
        EXPECT_TRUE(observer.updateDisplayStatus());
        return observer.displayStatus().screen(DisplayScreen::Main);
    }

    test::DisplayServerProcess m_server;
    CachedImage m_red{test::testDataPath("display/red.png")};
    CachedImage m_blue{test::testDataPath("display/blue.png")};
};

TEST_F(DisplayConnectionTest, ANewConnectionStartsWithModesOneAndZero) {
    DisplayConnection display;
    EXPECT_EQ(display.getForegroundImageMode(), 1);
    EXPECT_EQ(display.getBackgroundImageMode(), 0);
    EXPECT_EQ(display.getForegroundImage(), nullptr);
    EXPECT_FALSE(display.isConnected());
    ASSERT_TRUE(connect(display));
    EXPECT_EQ(display.getForegroundImageMode(), 1);
    EXPECT_EQ(display.getBackgroundImageMode(), 0);
    String version;
    ASSERT_TRUE(display.getVersionInfo(version));
    EXPECT_EQ(version.rfind("melodex-display ", 0), 0u) << version;
    EXPECT_NE(version.find(", protocol 1"), String::npos) << version;
}

TEST_F(DisplayConnectionTest, ConnectingAgainPassesThroughDisconnectedAndKeepsTheImages) {
    DisplayConnection display;
    ASSERT_TRUE(connect(display));
    ASSERT_TRUE(display.setForegroundImage(&m_red, ImageMode::Centre, nullptr));
    CachedImage* held = display.getForegroundImage();
    ASSERT_TRUE(connect(display));
    EXPECT_TRUE(display.isConnected());
    EXPECT_EQ(display.getForegroundImage(), held);
    EXPECT_EQ(display.getForegroundImageMode(), ImageMode::Centre);
    EXPECT_FALSE(display.connect("127.0.0.1", 1));  // nothing listens there
    EXPECT_FALSE(display.isConnected());
    EXPECT_EQ(display.lastError().code, "connect_failed");
    EXPECT_EQ(display.getForegroundImage(), held);
}

TEST_F(DisplayConnectionTest, ImageCallsWhileDisconnectedChangeNothing) {
    DisplayConnection display;
    ASSERT_TRUE(connect(display));
    ASSERT_TRUE(display.setBackgroundImage(&m_red, ImageMode::Stretch, nullptr));
    CachedImage* held = display.getBackgroundImage();
    display.disconnect();
    EXPECT_FALSE(display.setBackgroundImage(&m_blue, ImageMode::Fit, nullptr));
    EXPECT_FALSE(display.setBackgroundImage(nullptr, ImageMode::Fit, nullptr));
    EXPECT_FALSE(display.setForegroundImage(&m_blue, ImageMode::Fill, nullptr));
    EXPECT_EQ(display.getBackgroundImage(), held);
    EXPECT_EQ(display.getBackgroundImageMode(), ImageMode::Stretch);
    EXPECT_EQ(display.getForegroundImage(), nullptr);
    EXPECT_EQ(theImageMgr.holders(held), 1);
    EXPECT_EQ(theImageMgr.find(m_blue.path()), nullptr);
    DisplayStatus untouched;
    untouched.seq = 77;
    EXPECT_FALSE(display.getStatus(untouched));
    EXPECT_EQ(untouched.seq, 77);
}

TEST_F(DisplayConnectionTest, ANullBackgroundReleasesTheImageSendsAnEmptyPathAndKeepsTheMode) {
    DisplayConnection display;
    ASSERT_TRUE(connect(display));
    DisplayTransition fade = DisplayTransition::fade(250);
    ASSERT_TRUE(display.setBackgroundImage(&m_red, ImageMode::Stretch, &fade));
    DisplayScreenState shown = mainScreen();
    EXPECT_EQ(shown.background.path, m_red.path());
    EXPECT_EQ(shown.background.mode, ImageMode::Stretch);
    EXPECT_EQ(shown.background.transition, fade);

    ASSERT_TRUE(display.setBackgroundImage(nullptr, ImageMode::Centre, nullptr));
    EXPECT_EQ(display.getBackgroundImage(), nullptr);
    EXPECT_EQ(display.getBackgroundImageMode(), ImageMode::Stretch);
    EXPECT_EQ(theImageMgr.find(m_red.path()), nullptr);
    shown = mainScreen();
    EXPECT_EQ(shown.background.path, "");
    EXPECT_EQ(shown.background.url, "");
    EXPECT_EQ(shown.background.mode, ImageMode::Centre);
}

TEST_F(DisplayConnectionTest, ARefusedImageIsStillHeldAndTheConnectionGoesOn) {
    DisplayConnection display;
    ASSERT_TRUE(connect(display));
    CachedImage text(test::testDataPath("display/not-an-image.png"));
    EXPECT_FALSE(display.setForegroundImage(&text, ImageMode::Fill, nullptr));
    EXPECT_EQ(display.lastError().code, "not_an_image");
    ASSERT_NE(display.getForegroundImage(), nullptr);  // a failed send undoes nothing
    EXPECT_EQ(display.getForegroundImage()->path(), text.path());
    EXPECT_EQ(display.getForegroundImageMode(), ImageMode::Fill);
    EXPECT_TRUE(display.ping());
    DisplayStatus status;
    ASSERT_TRUE(display.getStatus(status));
    EXPECT_EQ(status.screen(DisplayScreen::Main).foreground.path,
              "");  // the server's state did not move
}

TEST_F(DisplayConnectionTest, ImagesStayInTheCacheWhileShownAndGoBackAtDestruction) {
    const int before = theImageMgr.count();
    {
        DisplayConnection display;
        ASSERT_TRUE(connect(display));
        ASSERT_TRUE(display.setForegroundImage(&m_red, ImageMode::Fit, nullptr));
        ASSERT_TRUE(display.setBackgroundImage(&m_red, ImageMode::Fill, nullptr));
        EXPECT_EQ(display.getForegroundImage(), display.getBackgroundImage());
        EXPECT_EQ(theImageMgr.holders(display.getForegroundImage()), 2);
        ASSERT_TRUE(display.setForegroundImage(&m_blue, ImageMode::Fit, nullptr));
        EXPECT_EQ(theImageMgr.holders(display.getBackgroundImage()), 1);
        EXPECT_EQ(theImageMgr.count(), before + 2);
    }
    EXPECT_EQ(theImageMgr.count(), before);
}

// Copies share the images without holders of their own, as programs have
// always copied connections; the second destructor's release finds nothing
// left to give back and must not touch the freed image.
TEST_F(DisplayConnectionTest, ACopySharesTheImagesAndBothMayDie) {
    const int before = theImageMgr.count();
    {
        DisplayConnection display;
        ASSERT_TRUE(connect(display));
        ASSERT_TRUE(display.setForegroundImage(&m_red, ImageMode::Centre, nullptr));
        display.setMediaFile("/media/intro.mp4");
        const DisplayConnection copy(display);
        EXPECT_FALSE(copy.isConnected());
        EXPECT_EQ(copy.getForegroundImage(), display.getForegroundImage());
        EXPECT_EQ(copy.getForegroundImageMode(), ImageMode::Centre);
        EXPECT_EQ(copy.getMediaFile(), "/media/intro.mp4");
        EXPECT_EQ(theImageMgr.holders(copy.getForegroundImage()), 1);
    }
    EXPECT_EQ(theImageMgr.count(), before);
}

TEST_F(DisplayConnectionTest, ASubscriberFollowsAnotherControllersChanges) {
    ProjectorClient watcher;
    ASSERT_TRUE(watcher.connect("127.0.0.1", m_server.port()));
    ASSERT_TRUE(watcher.subscribe());
    DisplayConnection display;
    ASSERT_TRUE(connect(display));
    ASSERT_TRUE(display.setForegroundImage(&m_blue, ImageMode::Fit, nullptr));
    ASSERT_TRUE(display.blank(DisplayScreen::Stage, DisplayBlank::Black));
    const std::int64_t last = display.lastChangeSeq();
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(3);
    while (watcher.displayStatus().seq < last && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    const DisplayStatus seen = watcher.displayStatus();
    EXPECT_EQ(seen.seq, last);
    EXPECT_EQ(seen.screen(DisplayScreen::Main).foreground.path, m_blue.path());
    EXPECT_EQ(seen.screen(DisplayScreen::Stage).blank, DisplayBlank::Black);
}

TEST_F(DisplayConnectionTest, ShutdownEndsTheServer) {
    DisplayConnection display;
    ASSERT_TRUE(connect(display));
    EXPECT_TRUE(display.shutdown());
    EXPECT_FALSE(display.isConnected());
    EXPECT_EQ(m_server.waitForExit(3000), 0);
    EXPECT_FALSE(connect(display));
}

}  // namespace
}  // namespace melodex
