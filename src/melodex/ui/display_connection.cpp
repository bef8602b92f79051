#include "melodex/ui/display_connection.h"

#include "melodex/ui/cached_image_manager.h"

namespace melodex {

DisplayConnection::DisplayConnection(const DisplayConnection& other)
    : ProjectorClient(other),
      m_foregroundImage(other.m_foregroundImage),
      m_backgroundImage(other.m_backgroundImage),
      m_foregroundImageMode(other.m_foregroundImageMode),
      m_backgroundImageMode(other.m_backgroundImageMode),
      m_mediaFile(other.m_mediaFile) {}

DisplayConnection& DisplayConnection::operator=(const DisplayConnection& other) {
    if (this == &other) return *this;
    ProjectorClient::operator=(other);
    m_foregroundImage = other.m_foregroundImage;
    m_backgroundImage = other.m_backgroundImage;
    m_foregroundImageMode = other.m_foregroundImageMode;
    m_backgroundImageMode = other.m_backgroundImageMode;
    m_mediaFile = other.m_mediaFile;
    return *this;
}

DisplayConnection::~DisplayConnection() {
    theImageMgr.remove(m_backgroundImage);
    m_backgroundImage = nullptr;
    theImageMgr.remove(m_foregroundImage);
    m_foregroundImage = nullptr;
}

bool DisplayConnection::connect(const String& host, int port) {
    if (isConnected()) disconnect();
    if (ProjectorClient::connect(host, port)) {
        // The answer is not needed: isConnected() below tells the outcome.
        (void)updateDisplayStatus();
    }
    return isConnected();
}

bool DisplayConnection::getStatus(DisplayStatus& status) {
    if (!updateDisplayStatus()) return false;
    status = displayStatus();
    return true;
}

bool DisplayConnection::setForegroundImage(CachedImage* image, int mode,
                                           DisplayTransition* transition) {
    if (!isConnected()) return false;
    theImageMgr.remove(m_foregroundImage);
    m_foregroundImage = nullptr;
    String path;
    if (image) {
        m_foregroundImage = theImageMgr.add(image);
        m_foregroundImageMode = mode;
        path = m_foregroundImage->path();
    }
    return ProjectorClient::setForegroundImage(path, mode, transition);
}

bool DisplayConnection::setBackgroundImage(CachedImage* image, int mode,
                                           DisplayTransition* transition) {
    if (!isConnected()) return false;
    theImageMgr.remove(m_backgroundImage);
    m_backgroundImage = nullptr;
    String path;
    if (image) {
        m_backgroundImage = theImageMgr.add(image);
        m_backgroundImageMode = mode;
        path = m_backgroundImage->path();
    }
    return ProjectorClient::setBackgroundImage(path, mode, transition);
}

}  // namespace melodex
