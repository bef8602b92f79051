#pragma once

// A controller's connection to the display server. On top of
// ProjectorClient it remembers which image is shown as foreground and as
// background with each one's display mode, holds those images in the image
// cache (theImageMgr) so that they stay alive while shown, reconnects
// cleanly, and carries the path of the current media file.
//
// The image pointers belong to the cache: each came from theImageMgr.add()
// and goes back through theImageMgr.remove(); the connection never deletes
// an image itself. The fields survive a reconnect: after one the connection
// still believes the old images are shown until they are set again.
//
// The client underneath runs its own thread, but this class adds no locking:
// use its image fields and media file from the controlling thread only.
//
//     DisplayConnection display;
//     if (display.connect("127.0.0.1", 7430)) {
//         CachedImage slide("/slides/sunrise.jpg");
//         display.setBackgroundImage(&slide, ImageMode::Fill, nullptr);
//     }

#include "melodex/foundation/text.h"
#include "melodex/ui/cached_image.h"
#include "melodex/ui/display_status.h"
#include "melodex/ui/display_transition.h"
#include "melodex/ui/projector_client.h"

namespace melodex {

class DisplayConnection : public ProjectorClient {
public:
    DisplayConnection() = default;
    // Copies the five fields as they are, pointers included, after the
    // client's copy: the copy does not take a holder in the cache of its own.
    DisplayConnection(const DisplayConnection& other);
    DisplayConnection& operator=(const DisplayConnection& other);
    // Gives both images back to the cache, then ends the client.
    ~DisplayConnection() override;

    // Disconnects first when connected, connects, and fetches the status
    // once; answers isConnected().
    bool connect(const String& host, int port) override;

    // Fetches the status and copies it into `status`; false (and `status`
    // untouched) when the server did not answer.
    bool getStatus(DisplayStatus& status);

    // Shows `image` (null: clears the layer) with `mode`. While disconnected
    // nothing changes and the answer is false. Otherwise the held image goes
    // back to the cache and the new one is taken from it; a null image sends
    // an empty path with `mode` but keeps the stored mode. The answer is the
    // server's; a failed send does not bring the old image back.
    bool setForegroundImage(CachedImage* image, int mode, DisplayTransition* transition);
    bool setBackgroundImage(CachedImage* image, int mode, DisplayTransition* transition);

    CachedImage* getForegroundImage() const { return m_foregroundImage; }
    CachedImage* getBackgroundImage() const { return m_backgroundImage; }
    int getForegroundImageMode() const { return m_foregroundImageMode; }
    int getBackgroundImageMode() const { return m_backgroundImageMode; }

    // Stored only; nothing is sent.
    const String& getMediaFile() const { return m_mediaFile; }
    void setMediaFile(const String& path) { m_mediaFile = path; }

    // The client's own calls by path stay reachable beside the ones above.
    using ProjectorClient::setBackgroundImage;
    using ProjectorClient::setForegroundImage;

private:
    CachedImage* m_foregroundImage = nullptr;
    CachedImage* m_backgroundImage = nullptr;
    int m_foregroundImageMode = ImageMode::Fit;
    int m_backgroundImageMode = ImageMode::Fill;
    String m_mediaFile;
};

}  // namespace melodex
